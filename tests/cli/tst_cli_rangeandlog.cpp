#include "clirunner.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliRangeAndLog : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QFile text(path("row.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("-3 0 5 10 100\n1 2 3 4 5\n");
        text.close();
        QCOMPARE(cli({ "import-z", path("row.txt"), "--out", path("row.img.velm") }).exitCode, 0);
    }

    void renderTakesAFixedOrCutRange()
    {
        // The default gradient runs from black to white: below the minimum black, above the maximum white.
        QCOMPARE(
            cli({ "render", path("row.img.velm"), "--out", path("f.png"), "--from-z", "--zrange", "0:10" }).exitCode,
            0);
        const QImage fixed(path("f.png"));
        QCOMPARE(fixed.pixelColor(0, 0), QColor(Qt::black));
        QCOMPARE(fixed.pixelColor(1, 0), QColor(Qt::black));
        QVERIFY(qGray(fixed.pixel(2, 0)) > 100 && qGray(fixed.pixel(2, 0)) < 155);
        QCOMPARE(fixed.pixelColor(3, 0), QColor(Qt::white));
        QCOMPARE(fixed.pixelColor(4, 0), QColor(Qt::white));

        // Full range: 100 squeezes the rest into the dark end; a 20% cut at each end spreads them out.
        QCOMPARE(cli({ "render", path("row.img.velm"), "--out", path("a.png"), "--from-z" }).exitCode, 0);
        QCOMPARE(
            cli({ "render", path("row.img.velm"), "--out", path("c.png"), "--from-z", "--zrange-cut", "20" }).exitCode,
            0);
        QVERIFY(qGray(QImage(path("a.png")).pixel(2, 0)) < 40);
        QVERIFY(qGray(QImage(path("c.png")).pixel(2, 0)) > 60);
        QCOMPARE(QImage(path("c.png")).pixelColor(4, 0), QColor(Qt::white));

        for (const QStringList& bad :
            { QStringList { "--from-z", "--zrange", "1" }, QStringList { "--from-z", "--zrange", "a:b" },
                QStringList { "--zrange", "0:1" }, QStringList { "--from-z", "--zrange-cut", "50" },
                QStringList { "--from-z", "--zrange", "0:1", "--zrange-cut", "1" } }) {
            const CliResult result = cli(QStringList { "render", path("row.img.velm"), "--out", path("x.png") } + bad);
            QVERIFY2(result.exitCode == 2, qPrintable(bad.join(QLatin1Char(' '))));
        }
        QVERIFY(!QFile::exists(path("x.png")));
    }

    void logAndRangeTravelWithTheFile()
    {
        QCOMPARE(cli({ "apply", path("row.img.velm"), "--out", path("l1.img.velm"), "level-plane" }).exitCode, 0);
        QCOMPARE(
            cli({ "apply", path("l1.img.velm"), "--out", path("l2.img.velm"), "denoise", "--radius", "1.5" }).exitCode,
            0);
        QCOMPARE(
            cli({ "apply", path("l2.img.velm"), "--out", path("l3.img.velm"), "set-color-range", "--zrange", "-1:2.5" })
                .exitCode,
            0);
        const QJsonObject info = QJsonDocument::fromJson(cli({ "info", path("l3.img.velm") }).out).object();
        const QJsonArray log = info.value("processingLog").toArray();
        QCOMPARE(log.size(), 2);
        QVERIFY2(log.at(0).toString().contains("Plane subtraction"), qPrintable(log.at(0).toString()));
        QVERIFY2(log.at(1).toString().contains("Denoise  radius=1.5, loops=1"), qPrintable(log.at(1).toString()));
        const QJsonObject range = info.value("colorRange").toObject();
        QCOMPARE(range.value("mode").toString(), QString("fixed"));
        QCOMPARE(range.value("min").toDouble(), -1.0);
        QCOMPARE(range.value("max").toDouble(), 2.5);
        QCOMPARE(cli({ "apply", path("l3.img.velm"), "--out", path("l4.img.velm"), "set-color-range" }).exitCode, 2);
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    CliResult cli(const QStringList& args) { return runCli(m_dir.filePath(QStringLiteral("settings")), args); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliRangeAndLog)
#include "tst_cli_rangeandlog.moc"
