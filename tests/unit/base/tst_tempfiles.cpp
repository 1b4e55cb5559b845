#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "core/base/tempfiles.h"

class TestTempFiles : public QObject {
    Q_OBJECT

private:
    static void touch(const QString& path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x");
    }

private slots:
    void removesFfmpegFilesInAnyCaseAndNothingElse()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QStringList doomed { QStringLiteral("ffmpeg"), QStringLiteral("ffmpeg_frame0001.png"),
            QStringLiteral("FFMPEG.list"), QStringLiteral("FfMpEgx.txt"), QStringLiteral(".ffmpeg") };
        const QStringList kept { QStringLiteral("xffmpeg.png"), QStringLiteral("ffmpe.png"),
            QStringLiteral("ff_mpeg.txt"), QStringLiteral("frame_ffmpeg.png"), QStringLiteral("ffmpegdir/inner") };
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("ffmpegdir")));
        for (const QString& name : doomed + kept)
            touch(dir.filePath(name));
        // ".ffmpeg" starts with a dot, not with the six letters: it stays.
        QCOMPARE(TempFiles::removeFfmpegLeftovers(dir.path()), 4);

        QDir folder(dir.path());
        const QStringList left = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
        QCOMPARE(left,
            (QStringList { QStringLiteral(".ffmpeg"), QStringLiteral("ff_mpeg.txt"), QStringLiteral("ffmpe.png"),
                QStringLiteral("frame_ffmpeg.png"), QStringLiteral("xffmpeg.png") }));
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("ffmpegdir/inner"))));
    }

    void missingFolderIsNoError()
    {
        QTemporaryDir dir;
        QCOMPARE(TempFiles::removeFfmpegLeftovers(dir.filePath(QStringLiteral("nowhere"))), 0);
        QCOMPARE(TempFiles::removeFfmpegLeftovers(QString()), 0);
    }
};

QTEST_GUILESS_MAIN(TestTempFiles)
#include "tst_tempfiles.moc"
