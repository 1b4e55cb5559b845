#include "clirunner.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliPlots : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // 8 x 4 points, a step of 2 between columns 3 and 4, 0.25 um a point.
        QByteArray matrix;
        for (int row = 0; row < 4; ++row)
            matrix += "0\t0\t0\t0\t2\t2\t2\t2\n";
        QFile file(path("step.txt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(matrix);
        file.close();
        QCOMPARE(cli({ "import-z", path("step.txt"), "--out", path("step.img.velm"), "--x-unit", "um", "--y-unit", "um",
                         "--z-unit", "nm", "--x-size", "2", "--y-size", "1" })
                     .exitCode,
            0);
    }

    void profileAcrossAStep()
    {
        const CliResult r = cli({ "profile", path("step.img.velm"), "--from", "1,2", "--to", "6,2", "--width", "3",
            "--out", path("p.csv") });
        QCOMPARE(r.exitCode, 0);
        QFile file(path("p.csv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
        QCOMPARE(lines.size(), 7);
        QCOMPARE(lines[0], QByteArray("distance [um],z [nm]"));
        QCOMPARE(lines[1], QByteArray("0,0"));
        QCOMPARE(lines[6], QByteArray("1.25,2"));

        QCOMPARE(
            cli({ "profile", path("step.img.velm"), "--from", "1", "--to", "6,2", "--out", path("q.csv") }).exitCode,
            2);
        QCOMPARE(cli({ "profile", path("step.img.velm"), "--from", "1,1", "--to", "6,2", "--width", "0", "--out",
                         path("q.csv") })
                     .exitCode,
            2);
        const CliResult missing
            = cli({ "profile", path("none.img.velm"), "--from", "1,1", "--to", "2,2", "--out", path("q.csv") });
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.startsWith("File does not exist: "));
        QVERIFY(!QFile::exists(path("q.csv")));
    }

    void plot2dFromCsvWithPictureAndInfo()
    {
        QFile csv(path("t.csv"));
        QVERIFY(csv.open(QIODevice::WriteOnly));
        csv.write("t,a,b\n0,1,4\n1,2,3\n2,4,2\n3,8,1\n");
        csv.close();
        const CliResult r = cli({ "plot2d", "--csv", path("t.csv"), "--x", "t", "--y", "a,2", "--out",
            path("t.plot2d.velm"), "--png", path("t.png"), "--title", "Two <curves>" });
        QCOMPARE(r.exitCode, 0);
        const QImage picture(path("t.png"));
        QVERIFY(picture.width() >= 400 && picture.height() >= 300);

        const CliResult info = cli({ "info", path("t.plot2d.velm") });
        QCOMPARE(info.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(info.out).object();
        QCOMPARE(json.value("type").toString(), QStringLiteral("2dPlot"));
        QCOMPARE(json.value("settings").toObject().value("title").toString(), QStringLiteral("Two <curves>"));
        const QJsonArray plots = json.value("plots").toArray();
        QCOMPARE(plots.size(), 2);
        QCOMPARE(plots[0].toObject().value("plotName").toString(), QStringLiteral("a"));
        QCOMPARE(plots[1].toObject().value("plotName").toString(), QStringLiteral("b"));
        QCOMPARE(plots[1].toObject().value("values").toArray(), QJsonArray({ 0, 4, 1, 3, 2, 2, 3, 1 }));

        QCOMPARE(
            cli({ "plot2d", "--csv", path("t.csv"), "--x", "t", "--y", "zz", "--out", path("u.plot2d.velm") }).exitCode,
            2);
        QVERIFY(!QFile::exists(path("u.plot2d.velm")));
        const CliResult broken = cli({ "info", path("t.csv.plot2d.velm") });
        QCOMPARE(broken.exitCode, 1);
    }

    void plot2dReadsDecimalCommasAndColumnNumbers()
    {
        QFile csv(path("komma.csv"));
        QVERIFY(csv.open(QIODevice::WriteOnly));
        csv.write("0,5;1,25\n1,5;-2,75\n");
        csv.close();
        QCOMPARE(cli({ "plot2d", "--csv", path("komma.csv"), "--x", "0", "--y", "1", "--out", path("k.plot2d.velm") })
                     .exitCode,
            0);
        const QJsonObject json = QJsonDocument::fromJson(cli({ "info", path("k.plot2d.velm") }).out).object();
        QCOMPARE(json.value("plots").toArray().first().toObject().value("values").toArray(),
            QJsonArray({ 0.5, 1.25, 1.5, -2.75 }));
        QCOMPARE(json.value("settings").toObject().value("xRangeMax").toString(), QStringLiteral("1.5"));
    }

    void plot3dWritesAStandalonePage()
    {
        QCOMPARE(cli({ "plot3d", path("step.img.velm"), "--html", path("s.html") }).exitCode, 0);
        QFile file(path("s.html"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray page = file.readAll();
        QVERIFY(page.startsWith("<!DOCTYPE html>"));
        QVERIFY(!page.contains("src="));
        QVERIFY(!page.contains("${"));
        QVERIFY(page.contains("var numCols = 8;"));
        QVERIFY(page.contains("useWebGL = false"));
        QCOMPARE(cli({ "plot3d", path("step.img.velm") }).exitCode, 2);
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }
    CliResult cli(const QStringList& args) const { return runCli(m_dir.path(), args); }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliPlots)
#include "tst_cli_plots.moc"
