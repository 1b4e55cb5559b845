#include "clirunner.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliObjects : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QCOMPARE(cli({ "synth", "--size", "256x256", "--grains", "12", "--seed", "3", "--out", path("s.img.velm") })
                     .exitCode,
            0);
    }

    void objectsCountsMeasuresAndStoresRecords()
    {
        const QStringList search { "--r1-min", "3", "--r1-max", "25", "--delta-z-min", "5", "--type", "2" };
        const CliResult run
            = cli(QStringList { "objects", path("s.img.velm"), "--out", path("o.img.velm"), "--csv", path("m.csv") }
                + search);
        QCOMPARE(run.exitCode, 0);
        const int count = run.out.trimmed().toInt();
        QVERIFY2(count >= 6 && count <= 12, run.out.constData());

        QFile csv(path("m.csv"));
        QVERIFY(csv.open(QIODevice::ReadOnly));
        QList<QByteArray> lines = csv.readAll().trimmed().split('\n');
        // The processing log leads as comment lines, the search among them.
        QVERIFY(lines.first().startsWith('#'));
        QVERIFY(lines.join('\n').contains("Object recognition  type=2, protrusions, fill=50, deltaZMin=5"));
        while (lines.first().startsWith('#'))
            lines.removeFirst();
        QCOMPARE(lines.size(), count + 1);
        QVERIFY(lines.first().contains("Area.pbm [px]"));
        QVERIFY(lines.first().contains("Fractal-dimension.bcm"));

        const QJsonObject info = QJsonDocument::fromJson(cli({ "info", path("o.img.velm"), "--objects" }).out).object();
        QCOMPARE(info.value(QStringLiteral("objects")).toInt(), count);
        QVERIFY(info.value(QStringLiteral("objectRecords")).toArray().first().toString().contains("fillPixels"));

        // apply runs the same search: the same count, and the mask marks the objects.
        QCOMPARE(
            cli(QStringList { "apply", path("s.img.velm"), "--out", path("a.img.velm"), "objects", "--mark" } + search)
                .exitCode,
            0);
        const QJsonObject applied = QJsonDocument::fromJson(cli({ "info", path("a.img.velm") }).out).object();
        QCOMPARE(applied.value(QStringLiteral("objects")).toInt(), count);
        QVERIFY(applied.value(QStringLiteral("maskSelected")).toInt() > 0);

        QCOMPARE(
            cli(QStringList { "objects", path("s.img.velm"), "--physical", "--csv", path("p.csv") } + search).exitCode,
            0);
        QFile physical(path("p.csv"));
        QVERIFY(physical.open(QIODevice::ReadOnly));
        QVERIFY(physical.readAll().contains("Area.pbm [xUnits*yUnits]"));
    }

    void refusalsAndBadOptions()
    {
        CliResult run = cli({ "objects", path("s.img.velm") });
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.err.contains("Please select additional minimum defining values!"));
        run = cli({ "objects", path("s.img.velm"), "--area-min", "3" });
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.err.contains("Please select additional maximum defining values!"));
        run = cli({ "objects", path("s.img.velm"), "--r1-min", "3", "--r1-max", "9", "--zrange", "40:40" });
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.err.contains("Choose a valid z range"));
        QCOMPARE(cli({ "objects", path("s.img.velm"), "--type", "7" }).exitCode, 2);
        QCOMPARE(cli({ "objects", path("s.img.velm"), "--opt", "ImageProcessing.noSuchKey=1" }).exitCode, 2);
        // --opt reaches any key of the search: a huge minimum area leaves nothing.
        run = cli({ "objects", path("s.img.velm"), "--r1-min", "3", "--r1-max", "25", "--opt",
            "ImageProcessing.areaMinCheck=1", "--opt", "ImageProcessing.areaMin=100000" });
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.trimmed(), QByteArray("0"));
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    CliResult cli(const QStringList& args) { return runCli(m_dir.filePath(QStringLiteral("settings")), args); }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliObjects)
#include "tst_cli_objects.moc"
