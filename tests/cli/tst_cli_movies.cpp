#include "clirunner.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class TestCliMovies : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_settings;
    QStringList m_items; // five grey items, 0 to 240

    void needFfmpeg()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty()
            || QStandardPaths::findExecutable(QStringLiteral("ffprobe")).isEmpty())
            QSKIP("ffmpeg and ffprobe are not installed");
    }

    /** Frames and size of a movie as ffprobe counts them. */
    QString probe(const QString& movie)
    {
        QProcess process;
        process.start(QStringLiteral("ffprobe"),
            { "-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries",
                "stream=width,height,nb_read_frames", "-of", "csv=p=0", movie });
        process.waitForFinished(30000);
        return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
    }

    double zMean(const QString& item)
    {
        const CliResult r = runCli(m_settings, { "info", item });
        return QJsonDocument::fromJson(r.out).object().value("z").toObject().value("mean").toDouble();
    }

    QStringList leftovers()
    {
        return QDir(m_settings + "/temp").entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    }

private slots:
    void initTestCase()
    {
        m_settings = m_dir.filePath("settings");
        for (int i = 0; i < 5; ++i) {
            const QString item = m_dir.filePath(QStringLiteral("grey%1.img.velm").arg(i));
            const int level = i * 60;
            const QString color = QStringLiteral("#%1%1%1").arg(level, 2, 16, QLatin1Char('0'));
            QCOMPARE(runCli(m_settings, { "new", "--size", "32x24", "--color", color, "--out", item }).exitCode, 0);
            m_items << item;
        }
    }

    void exportThenImportRoundTrip()
    {
        needFfmpeg();
        const QString movie = m_dir.filePath("greys.mp4");
        CliResult r = runCli(
            m_settings, QStringList { "movie-export" } + m_items + QStringList { "--out", movie, "--fps", "5" });
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QCOMPARE(probe(movie), QStringLiteral("32,24,5"));

        const QString all = m_dir.filePath("all");
        r = runCli(m_settings, { "movie-import", movie, "--out-dir", all });
        QVERIFY2(r.exitCode == 0, r.err.constData());
        const QStringList files = QDir(all).entryList(QDir::Files, QDir::Name);
        QCOMPARE(files.size(), 5);
        const CliResult info = runCli(m_settings, { "info", QDir(all).filePath(files.first()) });
        QCOMPARE(QJsonDocument::fromJson(info.out).object().value("width").toInt(), 32);

        const QString part = m_dir.filePath("part");
        r = runCli(m_settings, { "movie-import", movie, "--out-dir", part, "--start", "0.4", "--frames", "2" });
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QCOMPARE(QDir(part).entryList(QDir::Files).size(), 2);
        QVERIFY(qAbs(zMean(part + "/greys.0.img.velm") - 120) < 6);
        QVERIFY(qAbs(zMean(part + "/greys.1.img.velm") - 180) < 6);
        QCOMPARE(leftovers(), QStringList());
    }

    void oddSizedItemsExportPaddedOrScaled()
    {
        needFfmpeg();
        const QString odd = m_dir.filePath("odd.img.velm");
        QCOMPARE(runCli(m_settings, { "synth", "--size", "33x25", "--out", odd }).exitCode, 0);
        for (const QString& mode : { QStringLiteral("pad"), QStringLiteral("scale") }) {
            const QString movie = m_dir.filePath(QStringLiteral("odd-%1.mp4").arg(mode));
            const CliResult r
                = runCli(m_settings, { "movie-export", odd, odd, "--out", movie, "--odd", mode, "--from-z" });
            QVERIFY2(r.exitCode == 0, r.err.constData());
            QVERIFY(r.err.contains("34 x 26"));
            QCOMPARE(probe(movie), QStringLiteral("34,26,2"));
        }
    }

    void brokenMovieLeavesNothingBehind()
    {
        needFfmpeg();
        const QString broken = m_dir.filePath("broken.avi");
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("RIFF") + QByteArray(5000, '\x17'));
        file.close();
        const QString out = m_dir.filePath("from-broken");
        const CliResult r = runCli(m_settings, { "movie-import", broken, "--out-dir", out });
        QCOMPARE(r.exitCode, 1);
        QVERIFY(r.err.contains("FFMPEG can't read file: "));
        QCOMPARE(QDir(out).entryList(QDir::Files), QStringList());
        QCOMPARE(leftovers(), QStringList());
    }

    void missingOrOldFfmpegIsNamed()
    {
        QTemporaryDir other;
        const QString settings = other.filePath("settings");
        const QString tools = other.filePath("tools");
        QVERIFY(QDir().mkpath(tools));
        QCOMPARE(runCli(settings, { "settings", "set", "FormOptions.ffmpegPath", tools }).exitCode, 0);
        CliResult r = runCli(settings, { "movie-export", m_items.first(), "--out", other.filePath("m.mp4") });
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("ffmpeg"), r.err.constData());
        QVERIFY(!QFile::exists(other.filePath("m.mp4")));

        // A build from 2011 that prints its date the old way.
        QFile fake(tools + "/ffmpeg");
        QVERIFY(fake.open(QIODevice::WriteOnly));
        fake.write("#!/bin/sh\necho 'ffmpeg version 0.8 Copyright (c) 2000-2011'\necho '  built on Jun 12 2011 "
                   "17:47:34 with gcc 4.6'\n");
        fake.close();
        fake.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::copy(fake.fileName(), tools + "/ffprobe");
        const QString movie = other.filePath("any.mp4");
        QFile::copy(fake.fileName(), movie);
        r = runCli(settings, { "movie-import", movie, "--out-dir", other.filePath("out") });
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("FFMPEG version too old: Your FFMPEG version from the year 2011 is too old."),
            r.err.constData());
    }
};

QTEST_GUILESS_MAIN(TestCliMovies)
#include "tst_cli_movies.moc"
