#include "../../support/scopedsettings.h"

#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegversion.h"
#include "core/media/movieframes.h"
#include "core/media/qsciffmpeg.h"
#include "core/media/qsciffmpegexportworker.h"
#include "core/media/qscimovie.h"
#include "core/media/workerthread.h"
#include "core/project/collectiontab.h"
#include "core/project/movieimportqueue.h"
#include "core/project/project.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

namespace {

QImage grey(int level, const QSize& size = QSize(32, 24))
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(QColor(level, level, level));
    return image;
}

int meanGrey(const QImage& image)
{
    const QImage g = image.convertToFormat(QImage::Format_Grayscale8);
    qint64 sum = 0;
    for (int y = 0; y < g.height(); ++y)
        for (int x = 0; x < g.width(); ++x)
            sum += g.constScanLine(y)[x];
    return int(sum / (qint64(g.width()) * g.height()));
}

QStringList ffmpegLeftovers(const QString& dir)
{
    return QDir(dir).entryList(
        { QStringLiteral("ffmpeg*"), QStringLiteral("tmp*.png") }, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
}

} // namespace

class TestMovies : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;
    bool m_haveFfmpeg = false;
    QString m_movie; // five grey frames 0, 60, 120, 180, 240 at 5 frames per second, 32 x 24

    void needFfmpeg()
    {
        if (!m_haveFfmpeg)
            QSKIP("ffmpeg and ffprobe are not installed");
    }

private slots:
    void initTestCase()
    {
        m_settings = std::make_unique<ScopedSettings>();
        m_haveFfmpeg = !FfmpegCommands::ffmpeg().isEmpty() && !FfmpegCommands::ffprobe().isEmpty();
        if (!m_haveFfmpeg)
            return;
        QList<QImage> frames;
        for (int i = 0; i < 5; ++i)
            frames << grey(i * 60);
        QSciFFMPEGExportWorker::Options options;
        options.output = m_settings->filePath(QStringLiteral("greys.mp4"));
        options.fps = 5;
        options.size = QSize(32, 24);
        options.tempDir = Options::tempDir();
        QSciFFMPEGExportWorker worker(frames, options);
        QStringList log;
        connect(&worker, &QSciFFMPEGExportWorker::log, this, [&log](const QString& line) { log << line; });
        QString message;
        QVERIFY2(worker.encode(&message), qPrintable(message));
        QCOMPARE(log.first(), QStringLiteral("Starting encoder..."));
        QCOMPARE(log.last(), QStringLiteral("Finished"));
        m_movie = options.output;
    }

    void cleanupTestCase() { m_settings.reset(); }

    void buildYear_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("year");
        QTest::addColumn<bool>("passes");
        QTest::newRow("Debian, copyright only")
            << "ffmpeg version 5.1.9-0+deb12u1 Copyright (c) 2000-2026 the FFmpeg developers\n"
               "built with gcc 12 (Debian 12.2.0-14+deb12u1)\n"
            << 2026 << true;
        QTest::newRow("built on, new") << "ffmpeg version 1.2 Copyright (c) 2000-2013\nbuilt on Mar  4 2013 12:01:02"
                                       << 2013 << true;
        QTest::newRow("built on wins over copyright")
            << "ffmpeg version 0.11 Copyright (c) 2000-2016\n  built on Jun 12 2012 17:47:34 with gcc 4.6" << 2012
            << false;
        QTest::newRow("old copyright only") << "ffmpeg version 0.7 Copyright (c) 2000-2011" << 2011 << false;
        QTest::newRow("no year read is no reason to refuse") << "ffmpeg version N-12345-gabcdef" << 0 << true;
    }

    void buildYear()
    {
        QFETCH(QString, output);
        QFETCH(int, year);
        QFETCH(bool, passes);
        QCOMPARE(FfmpegVersion::buildYear(output), year);
        const FfmpegVersion::Result result = FfmpegVersion::judge(output);
        QCOMPARE(result.passed(), passes);
        if (!passes) {
            QCOMPARE(result.title, QStringLiteral("FFMPEG version too old"));
            QCOMPARE(result.message,
                QStringLiteral("Your FFMPEG version from the year %1 is too old.\n"
                               "You should at least use a version from the year 2013")
                    .arg(year));
        }
    }

    void versionCheckOfMissingOrBrokenPrograms()
    {
        FfmpegVersion::Result result = FfmpegVersion::check(QString());
        QCOMPARE(result.status, FfmpegVersion::Status::Missing);
        QVERIFY(result.message.contains(QStringLiteral("ffmpeg")));
        result = FfmpegVersion::check(m_settings->filePath(QStringLiteral("no-such-ffmpeg")));
        QCOMPARE(result.status, FfmpegVersion::Status::CannotRun);
        QCOMPARE(result.title, QStringLiteral("FFMPEG error"));
        QCOMPARE(result.message, QStringLiteral("Error calling 'ffmpeg -version'."));
    }

    void commandLinesKeepTheirOrderInAnyLocale()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(FfmpegCommands::preview(1.5, QStringLiteral("/m.avi"), QStringLiteral("/t/")),
            QStringList({ "-ss", "1.500", "-i", "/m.avi", "-vframes", "1", "/t/ffmpegPreview.bmp" }));
        QCOMPARE(FfmpegCommands::import(0.25, QStringLiteral("/m.avi"), 7, QStringLiteral("/t")),
            QStringList({ "-ss", "0.250", "-i", "/m.avi", "-vframes", "7", "/t/ffmpeg_import-%d.bmp" }));
        QCOMPARE(FfmpegCommands::exportMovie(5, 34, 26, QStringLiteral("/o.mp4")),
            QStringList({ "-r", "5", "-i", "tmp%010d.png", "-r", "5", "-vf", "scale=34:26", "-c:v", "libx264",
                "-preset", "slow", "-pix_fmt", "yuv420p", "/o.mp4" }));
        QCOMPARE(FfmpegCommands::exportFrameName(12), QStringLiteral("tmp0000000012.png"));
        QLocale::setDefault(QLocale::c());
    }

    void probeOutput()
    {
        QSciMovie::Info info;
        QVERIFY(QSciFFMPEG::parseProbe(QStringLiteral("width=32\nheight=24\nr_frame_rate=30000/1001\n"
                                                      "avg_frame_rate=25/1\nduration=N/A\nnb_frames=N/A\n"
                                                      "duration=2.000000\n"),
            &info));
        QCOMPARE(info.size, QSize(32, 24));
        QCOMPARE(info.fps, 25.0);
        QCOMPARE(info.duration, 2.0);
        QCOMPARE(info.frameCount, 50); // counted from the container's duration when the stream has none
        QVERIFY(!QSciFFMPEG::parseProbe(QStringLiteral("codec_type=audio\nduration=3.0\n"), &info));
    }

    void oddSidesArePaddedOrScaled()
    {
        QImage frame = grey(200, QSize(33, 25));
        frame.setPixel(32, 24, qRgb(255, 0, 0));
        QCOMPARE(MovieFrames::movieSize(QSize(32, 24)), QSize(32, 24));
        QVERIFY(MovieFrames::oddSizeText(QSize(32, 24), MovieFrames::OddSize::Pad).isEmpty());

        const QImage padded = MovieFrames::fit(frame, QSize(33, 25), MovieFrames::OddSize::Pad);
        QCOMPARE(padded.size(), QSize(34, 26));
        QCOMPARE(padded.pixel(32, 24), qRgb(255, 0, 0)); // the item's points stay where they were
        QCOMPARE(padded.pixel(33, 10), qRgb(0, 0, 0));
        QCOMPARE(padded.pixel(10, 25), qRgb(0, 0, 0));
        QVERIFY(MovieFrames::oddSizeText(QSize(33, 25), MovieFrames::OddSize::Pad).contains(QStringLiteral("34 x 26")));

        const QImage scaled = MovieFrames::fit(frame, QSize(33, 25), MovieFrames::OddSize::Scale);
        QCOMPARE(scaled.size(), QSize(34, 26));
        QCOMPARE(qGray(scaled.pixel(33, 0)), 200); // stretched, no border
    }

    void frameBecomesItemWithZFromGreyRowsFromTheBottom()
    {
        QImage frame = grey(0, QSize(4, 3));
        frame.setPixel(0, 0, qRgb(255, 255, 255)); // top left as shown
        QSciImage item;
        MovieFrames::toItem(frame, QSize(), QStringLiteral("/x/run.avi"), 3, 0.4, item);
        QCOMPARE(item.size(), QSize(4, 3));
        QCOMPARE(item.z(0, 2), 255.0);
        QCOMPARE(item.z(0, 0), 0.0);
        QCOMPARE(item.name(), QStringLiteral("run 3"));
        MovieFrames::toItem(frame, QSize(8, 6), QStringLiteral("/x/run.avi"), 1, 0, item);
        QCOMPARE(item.size(), QSize(8, 6));
    }

    void queueMakesOneUndoableStepAndIgnoresFramesAfterAbort()
    {
        Project project;
        CollectionTab* tab = project.addTab();
        QStringList log;
        {
            MovieImportQueue queue(&project, tab, QStringLiteral("/x/run.avi"), 3);
            connect(&queue, &MovieImportQueue::log, this, [&log](const QString& line) { log << line; });
            queue.start();
            queue.addFrame(grey(10), 0, 0);
            queue.addFrame(grey(20), 1, 0.2);
            queue.abort();
            queue.addFrame(grey(30), 2, 0.4);
            queue.finish(true);
            QVERIFY(queue.items().at(1)->left() > queue.items().at(0)->right()); // side by side, not stacked
        }
        QCOMPARE(tab->count(), 2);
        QCOMPARE(log,
            QStringList({ "Importing movie", "Ignore frame, aborted...", "Import finished, closing transaction" }));
        QVERIFY(QSciHistoryManager::instance()->undo());
        QCOMPARE(tab->count(), 0);

        MovieImportQueue failed(&project, tab, QStringLiteral("/x/run.avi"), 3);
        failed.addFrame(grey(10), 0, 0);
        failed.finish(false);
        QCOMPARE(tab->count(), 0);
    }

    void exportedMovieImportsFrameByFrame()
    {
        needFfmpeg();
        QString message;
        const std::shared_ptr<QSciMovie> movie = QSciMovie::open(m_movie, &message);
        QVERIFY2(movie, qPrintable(message));
        QVERIFY(movie->usesFfmpeg());
        QCOMPARE(movie->info().size, QSize(32, 24));
        QCOMPARE(movie->info().frameCount, 5);
        QCOMPARE(movie->info().fps, 5.0);

        const std::atomic_bool never { false };
        QList<int> levels;
        const auto collect = [&levels](const QImage& frame, int) {
            levels << meanGrey(frame);
            return true;
        };
        QVERIFY2(movie->readFrames(0, 5, Options::tempDir(), never, collect, &message), qPrintable(message));
        QCOMPARE(levels.size(), 5);
        for (int i = 0; i < 5; ++i)
            QVERIFY2(qAbs(levels.at(i) - i * 60) <= 6, qPrintable(QString::number(levels.at(i))));

        levels.clear();
        QVERIFY(movie->readFrames(0.4, 2, Options::tempDir(), never, collect, &message));
        QCOMPARE(levels.size(), 2);
        QVERIFY(qAbs(levels.at(0) - 120) <= 6 && qAbs(levels.at(1) - 180) <= 6);

        QImage frame;
        QVERIFY(movie->preview(0.6, Options::tempDir(), never, &frame, &message));
        QVERIFY(qAbs(meanGrey(frame) - 180) <= 6);
        QVERIFY(!movie->preview(30, Options::tempDir(), never, &frame, &message));
        QVERIFY(message.startsWith(QStringLiteral("Seek timestamp")));
        QCOMPARE(ffmpegLeftovers(Options::tempDir()), QStringList());
    }

    void brokenMovieIsRefused()
    {
        needFfmpeg();
        QFile broken(m_settings->filePath(QStringLiteral("broken.mp4")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write(QByteArray(4096, 'x'));
        broken.close();
        QString message;
        QVERIFY(!QSciMovie::open(broken.fileName(), &message));
        QCOMPARE(message, QStringLiteral("FFMPEG can't read file: ") + broken.fileName());
        QCOMPARE(ffmpegLeftovers(Options::tempDir()), QStringList());
    }

    void cancelKillsTheEncoderAndLeavesNothing()
    {
        // An encoder that never ends by itself.
        QTemporaryDir tools;
        QFile fake(tools.filePath(QStringLiteral("ffmpeg")));
        QVERIFY(fake.open(QIODevice::WriteOnly));
        fake.write("#!/bin/sh\n[ \"$1\" = -version ] && { echo 'Copyright (c) 2000-2024'; exit 0; }\nexec sleep 60\n");
        fake.close();
        fake.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        Options::setString(QStringLiteral("FormOptions.ffmpegPath"), tools.path());

        QSciFFMPEGExportWorker::Options options;
        options.output = m_settings->filePath(QStringLiteral("never.mp4"));
        options.size = QSize(32, 24);
        options.tempDir = Options::tempDir();
        auto* worker = new QSciFFMPEGExportWorker({ grey(1), grey(2) }, options);
        QStringList log;
        connect(worker, &QSciFFMPEGExportWorker::log, this, [&log](const QString& line) { log << line; });
        QSignalSpy finished(worker, &QSciFFMPEGExportWorker::finished);
        const std::shared_ptr<std::atomic_bool> cancel = worker->cancelFlag();
        QElapsedTimer clock;
        clock.start();
        WorkerThread::start(worker, [worker] { worker->run(); });
        QTRY_VERIFY(log.contains(QStringLiteral("Starting encoder...")));
        *cancel = true;
        QTRY_COMPARE(finished.count(), 1);
        Options::remove(QStringLiteral("FormOptions.ffmpegPath"));
        QVERIFY(clock.elapsed() < 10000);
        QCOMPARE(finished.first().at(0).toBool(), false);
        QCOMPARE(log.mid(log.size() - 2), QStringList({ "Cancel requested...", "Encoder termianted" }));
        QVERIFY(!QFile::exists(options.output));
        QCOMPARE(ffmpegLeftovers(Options::tempDir()), QStringList());
        QCOMPARE(QDir(m_settings->path()).entryList({ QStringLiteral(".never*") }, QDir::Files | QDir::Hidden),
            QStringList());
    }

    void animatedGifIsReadWithoutFfmpeg()
    {
        needFfmpeg(); // only to make the GIF
        const QString gif = m_settings->filePath(QStringLiteral("greys.gif"));
        QCOMPARE(QProcess::execute(FfmpegCommands::ffmpeg(),
                     { "-v", "error", "-y", "-i", m_movie, "-vf", "fps=5", "-loop", "0", gif }),
            0);
        QString message;
        const std::shared_ptr<QSciMovie> movie = QSciMovie::open(gif, &message);
        QVERIFY2(movie, qPrintable(message));
        QVERIFY(!movie->usesFfmpeg());
        QCOMPARE(movie->info().frameCount, 5);
        QCOMPARE(movie->info().size, QSize(32, 24));
        QList<int> levels;
        const std::atomic_bool never { false };
        QVERIFY(movie->readFrames(
            0.4, 2, QString(), never,
            [&levels](const QImage& frame, int) {
                levels << meanGrey(frame);
                return true;
            },
            &message));
        QCOMPARE(levels.size(), 2);
        QVERIFY2(qAbs(levels.at(0) - 120) <= 12, qPrintable(QString::number(levels.at(0))));
    }
};

QTEST_GUILESS_MAIN(TestMovies)
#include "tst_movies.moc"
