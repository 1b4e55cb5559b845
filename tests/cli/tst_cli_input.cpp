// What velmora-cli does with input a new user gets wrong: absurd counts, special output files, values that are
// no numbers, gradients that paint nothing, and files it cannot read.

#include "clirunner.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>
#include <unistd.h>

class TestCliInput : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QCOMPARE(cli({ "synth", "--size", "12x8", "--seed", "3", "--out", path("s.img.velm") }).exitCode, 0);
    }

    void countsAndSizesAreCheckedBeforeAnythingIsAllocated()
    {
        const CliResult grains
            = cli({ "synth", "--size", "10x10", "--grains", "100000000", "--out", path("g.img.velm") });
        QCOMPARE(grains.exitCode, 2);
        QVERIFY2(grains.err.contains("1000000"), grains.err.constData());
        QCOMPARE(cli({ "synth", "--size", "10x10", "--grains", "-1", "--out", path("g.img.velm") }).exitCode, 2);
        QCOMPARE(cli({ "synth", "--size", "10x10", "--grains", "0", "--out", path("g.img.velm") }).exitCode, 0);

        const CliResult large = cli({ "new", "--size", "16384x16384", "--out", path("l.img.velm") });
        QCOMPARE(large.exitCode, 2);
        QVERIFY2(large.err.contains("too large") && large.err.contains("at most"), large.err.constData());
        const CliResult malformed = cli({ "new", "--size", "16384by2", "--out", path("l.img.velm") });
        QCOMPARE(malformed.exitCode, 2);
        QVERIFY(!malformed.err.contains("too large"));
        QCOMPARE(cli({ "new", "--size", "99999999999x2", "--out", path("l.img.velm") }).exitCode, 2);
        QVERIFY(!QFile::exists(path("l.img.velm")));

        const CliResult twice = runCli(
            QString(), { "--settings-dir", settings(), "--settings-dir", settings(), "info", path("s.img.velm") });
        QCOMPARE(twice.exitCode, 2);
        QVERIFY2(twice.err.contains("more than once") && !twice.err.contains("unknown command"), twice.err.constData());
        QCOMPARE(cli({ "--threads", "100000000", "info", path("s.img.velm") }).exitCode, 2);
        QCOMPARE(cli({ "export-z", path("s.img.velm"), "--out", path("a.txt"), "--out", path("b.txt") }).exitCode, 2);
    }

    void specialFilesAreWrittenNotReplaced()
    {
        const CliResult toNull = cli({ "apply", path("s.img.velm"), "--out", "/dev/null", "flip-h" });
        QCOMPARE(toNull.exitCode, 0);
        QVERIFY(!QFileInfo("/dev/null").isFile());
        if (QFileInfo::exists("/dev/full")) {
            const CliResult full = cli({ "apply", path("s.img.velm"), "--out", "/dev/full", "flip-h" });
            QCOMPARE(full.exitCode, 1);
            QVERIFY(full.err.startsWith("Unable to write file: /dev/full"));
            QVERIFY(!QFileInfo("/dev/full").isFile());
        }
        const CliResult text = cli({ "export-z", path("s.img.velm"), "--out", "-" });
        QCOMPARE(text.exitCode, 0);
        QCOMPARE(text.out.count('\n'), 8);
        const CliResult png = cli({ "render", path("s.img.velm"), "--out", "-" });
        QCOMPARE(png.exitCode, 0);
        QCOMPARE(QImage::fromData(png.out, "PNG").size(), QSize(12, 8));
        QVERIFY(!QFile::exists(path("-")));
    }

    void nonFiniteValuesAreKeptSkippedAndNeverMade()
    {
        write("n.txt", "1 nan 3\n4 inf 6\n");
        QCOMPARE(cli({ "import-z", path("n.txt"), "--out", path("n.img.velm") }).exitCode, 0);
        const QJsonObject z
            = QJsonDocument::fromJson(cli({ "info", path("n.img.velm") }).out).object().value("z").toObject();
        QCOMPARE(z.value("min").toDouble(), 1.0);
        QCOMPARE(z.value("max").toDouble(), 6.0);
        QCOMPARE(z.value("mean").toDouble(), 3.5);
        QCOMPARE(z.value("nonFinite").toInt(), 2);

        QCOMPARE(
            cli({ "render", path("n.img.velm"), "--out", path("n.png"), "--from-z", "--gradient", "1" }).exitCode, 0);
        const QImage picture(path("n.png"));
        QCOMPARE(picture.pixelColor(1, 0), picture.pixelColor(1, 1)); // nan and inf: one fixed colour
        QVERIFY(picture.pixelColor(0, 0) != picture.pixelColor(2, 1)); // the rest still spans the gradient
        QVERIFY(picture.pixelColor(2, 1) != QColor(Qt::black));

        QCOMPARE(cli({ "synth", "--size", "4x4", "--noise", "nan", "--out", path("x.img.velm") }).exitCode, 2);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("x.img.velm"), "recalibrate-z", "--multiply", "nan" })
                     .exitCode,
            2);
        QCOMPARE(
            cli({ "apply", path("s.img.velm"), "--out", path("x.img.velm"), "recalibrate-z", "--add", "inf" }).exitCode,
            2);
        QCOMPARE(
            cli({ "apply", path("s.img.velm"), "--out", path("x.img.velm"), "recalibrate-z", "--multiply", "1e308" })
                .exitCode,
            1);
        QVERIFY(!QFile::exists(path("x.img.velm")));
    }

    void gradientsThatPaintNothingAreRefused()
    {
        QCOMPARE(cli({ "gradient", "--token", "garbage" }).exitCode, 2);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("x.img.velm"), "set-gradient", "--token", "garbage" })
                     .exitCode,
            2);
        QCOMPARE(
            cli({ "render", path("s.img.velm"), "--out", path("x.png"), "--from-z", "--gradient", "garbage" }).exitCode,
            2);
        const CliResult withoutZ = cli({ "render", path("s.img.velm"), "--out", path("x.png"), "--gradient", "3" });
        QCOMPARE(withoutZ.exitCode, 2);
        QVERIFY(withoutZ.err.contains("--from-z"));
        QVERIFY(!QFile::exists(path("x.png")));
        const QByteArray builtIn = cli({ "gradient", "--builtin", "3" }).out.trimmed();
        QCOMPARE(cli({ "gradient", "--token", QString::fromLatin1(builtIn) }).exitCode, 0);
    }

    void importTakesSpreadsheetTextAndPositiveSizes()
    {
        write("c.txt", "# scan 17, top row first\n1,2;3\n4\t5 , 6\n");
        QCOMPARE(cli({ "import-z", path("c.txt"), "--out", path("c.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("c.img.velm") }).out, QByteArray("1\t2\t3\n4\t5\t6\n"));
        for (const QString& size : QStringList { "0", "-3", "inf", "nan" }) {
            QCOMPARE(cli({ "import-z", path("c.txt"), "--out", path("x.img.velm"), "--x-size", size }).exitCode, 2);
            QCOMPARE(cli({ "import-z", path("c.txt"), "--out", path("x.img.velm"), "--y-size", size }).exitCode, 2);
        }
        QCOMPARE(cli({ "import-z", path("c.txt"), "--out", path("c2.img.velm"), "--x-size", "1.5", "--y-size", "2" })
                     .exitCode,
            0);
        const QJsonObject properties
            = QJsonDocument::fromJson(cli({ "info", path("c2.img.velm") }).out).object().value("properties").toObject();
        QCOMPARE(properties.value("sciValues.xUnitPerPixel").toString().toDouble(), 0.5);
        QCOMPARE(properties.value("sciValues.yUnitPerPixel").toString().toDouble(), 1.0);
    }

    void failedReadsSayWhy_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        QByteArray good;
        QFile source(path("s.img.velm"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        good = source.readAll();
        QTest::newRow("empty") << QByteArray() << "the file is empty";
        QTest::newRow("truncated header") << good.left(40) << "file ends at byte 40, the header needs";
        QByteArray damaged = good;
        const int bar = damaged.indexOf('|');
        for (int i = bar + 8; i < bar + 40; ++i)
            damaged[i] = char(damaged[i] ^ 0x5A);
        QTest::newRow("damaged header") << damaged << "a compressed block is damaged";
        QByteArray damagedZ = good;
        for (int i = damagedZ.size() - 200; i < damagedZ.size() - 20; ++i)
            damagedZ[i] = char(damagedZ[i] ^ 0x5A);
        QTest::newRow("damaged z") << damagedZ << "a compressed block is damaged";
        QTest::newRow("truncated z") << good.left(good.size() - 10)
                                     << QString("file ends at byte %1, the z-matrix needs").arg(good.size() - 10);
    }

    void failedReadsSayWhy()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        write("r.img.velm", content);
        const CliResult result = cli({ "info", path("r.img.velm") });
        QCOMPARE(result.exitCode, 1);
        const QList<QByteArray> lines = result.err.trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0), ("Unable to read from file: " + path("r.img.velm")).toUtf8());
        QVERIFY2(lines.at(1).startsWith(reason.toUtf8()), lines.at(1).constData());
    }

    void foldersAndPermissionsAreNamed()
    {
        QVERIFY(QDir().mkpath(path("folder.img.velm")));
        const CliResult folder = cli({ "export-z", path("folder.img.velm") });
        QCOMPARE(folder.exitCode, 1);
        QVERIFY(folder.err.endsWith("\nis a directory\n"));
        if (geteuid() == 0)
            QSKIP("the superuser reads every file");
        write("locked.img.velm", "x");
        QFile::setPermissions(path("locked.img.velm"), QFileDevice::WriteOwner);
        QVERIFY(cli({ "info", path("locked.img.velm") }).err.contains("permission denied"));
    }

    void diagnosticsOnlyOnRequestAndOnStandardError()
    {
        // A settings folder that cannot be made: every access to the store fails.
        write("plain", "a file, not a folder");
        const QString broken = path("plain/settings");
        const CliResult quiet = runCli(broken, { "synth", "--size", "4x4", "--out", path("q.img.velm") });
        QCOMPARE(quiet.exitCode, 0);
        QCOMPARE(quiet.out, QByteArray());
        QCOMPARE(quiet.err, QByteArray());
        const CliResult verbose
            = runCli(broken, { "--verbose", "synth", "--size", "4x4", "--out", path("q.img.velm") });
        QCOMPARE(verbose.exitCode, 0);
        QCOMPARE(verbose.out, QByteArray());
        QVERIFY(!verbose.err.isEmpty());
        QVERIFY2(verbose.err.count('\n') <= 2, verbose.err.constData()); // one report, however many accesses failed
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QString settings() const { return m_dir.filePath(QStringLiteral("settings")); }
    CliResult cli(const QStringList& args) { return runCli(settings(), args); }
    void write(const char* name, const QByteArray& content)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliInput)
#include "tst_cli_input.moc"
