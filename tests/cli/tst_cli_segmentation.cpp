#include "clirunner.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliSegmentation : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void regionsBecomeObjects()
    {
        // Two peaks joined by a ridge at 2, rising 7 and 5 above it.
        QFile text(path("z.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("0 0 0 0 0 0 0\n0 9 2 2 2 7 0\n0 0 0 0 0 0 0\n");
        text.close();
        QCOMPARE(cli({ "import-z", path("z.txt"), "--out", path("z.img.velm") }).exitCode, 0);
        CliResult run
            = cli({ "apply", path("z.img.velm"), "--out", path("w.img.velm"), "watershed", "--min-depth", "4" });
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.trimmed(), QByteArray("2 objects found"));
        QCOMPARE(objects("w.img.velm"), 2);
        QCOMPARE(cli({ "apply", path("z.img.velm"), "--out", path("w1.img.velm"), "watershed", "--min-depth", "6" })
                     .out.trimmed(),
            QByteArray("1 object found"));

        QCOMPARE(cli({ "apply", path("z.img.velm"), "--out", path("m.img.velm"), "mask-rect", "--rect", "1,0,2,2" })
                     .exitCode,
            0);
        QCOMPARE(objects("m.img.velm"), 0);
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("o.img.velm"), "mask-to-objects", "--connect", "4" })
                     .out.trimmed(),
            QByteArray("1 object found"));
        QCOMPARE(objects("o.img.velm"), 1);

        run = cli({ "apply", path("z.img.velm"), "--out", path("x.img.velm"), "mask-to-objects" });
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.err.contains("Select the areas"));
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("x.img.velm"), "mask-to-objects", "--connect", "6" })
                     .exitCode,
            2);
        QCOMPARE(cli({ "apply", path("z.img.velm"), "--out", path("x.img.velm"), "watershed", "--min-depth", "-1" })
                     .exitCode,
            2);
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    CliResult cli(const QStringList& args) { return runCli(m_dir.filePath(QStringLiteral("settings")), args); }
    int objects(const char* name)
    {
        return QJsonDocument::fromJson(cli({ "info", path(name) }).out)
            .object()
            .value(QStringLiteral("objects"))
            .toInt();
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliSegmentation)
#include "tst_cli_segmentation.moc"
