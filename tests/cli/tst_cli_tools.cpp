#include "clirunner.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>

namespace {

constexpr int W = 24, H = 16;

/** A bump at (6, 5) as displayed (row 0 on top). */
double clean(int x, int row)
{
    return 10 * std::exp(-((x - 6) * (x - 6) + (row - 5) * (row - 5)) / 4.5);
}

} // namespace

class TestCliTools : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void resolveDoubleTipRemovesTheGhostNamedByTheMarks()
    {
        // The bump's ghost half as high, 5 right and 3 down.
        QByteArray text;
        for (int row = 0; row < H; ++row) {
            for (int x = 0; x < W; ++x) {
                const double ghost = x >= 5 && row >= 3 ? 0.5 * clean(x - 5, row - 3) : 0;
                text += QByteArray::number(clean(x, row) + ghost, 'g', 17) + (x + 1 < W ? "\t" : "\n");
            }
        }
        write("tip.txt", text);
        QCOMPARE(cli({ "import-z", path("tip.txt"), "--out", path("tip.img.velm") }).exitCode, 0);
        const CliResult run = cli({ "apply", path("tip.img.velm"), "--out", path("clean.img.velm"),
            "resolve-double-tip", "--feature", "6,5", "--ghost", "12,8" });
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out.trimmed(), QByteArray("ghost 5,3 ratio 0.5"));
        const QList<QByteArray> rows = cli({ "export-z", path("clean.img.velm") }).out.trimmed().split('\n');
        QCOMPARE(rows.size(), H);
        double worst = 0;
        for (int row = 0; row < H; ++row) {
            const QList<QByteArray> values = rows.at(row).split('\t');
            for (int x = 0; x < W; ++x)
                worst = std::max(worst, std::abs(values.at(x).toDouble() - clean(x, row)));
        }
        QVERIFY2(worst < 0.5, qPrintable(QString::number(worst)));

        QCOMPARE(cli({ "apply", path("tip.img.velm"), "--out", path("x.img.velm"), "resolve-double-tip", "--feature",
                         "6,5" })
                     .exitCode,
            2);
        QCOMPARE(cli({ "apply", path("tip.img.velm"), "--out", path("x.img.velm"), "resolve-double-tip", "--feature",
                         "6,5", "--ghost", "12,8", "--ratio", "1.5" })
                     .exitCode,
            2);
        QVERIFY(!QFile::exists(path("x.img.velm")));
    }

    void brushesChangeOnlyWhatTheyCover()
    {
        write("spike.txt", "1 1 1 1 1\n1 9 1 1 9\n1 1 1 1 1\n");
        QCOMPARE(cli({ "import-z", path("spike.txt"), "--out", path("s.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("b.img.velm"), "smoothen-brush", "--path", "1,1",
                         "--radius", "0", "--smoothing", "1" })
                     .exitCode,
            0);
        // The mean of the spike and its four neighbours; the other spike is not under the brush.
        const QList<QByteArray> middle = cli({ "export-z", path("b.img.velm") }).out.split('\n').at(1).split('\t');
        QCOMPARE(middle.size(), 5);
        QCOMPARE(middle.at(1).toDouble(), 2.6);
        QCOMPARE(middle.at(0).toDouble(), 1.0);
        QCOMPARE(middle.at(4).toDouble(), 9.0);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("c.img.velm"), "colorize-brush", "--path", "0,0;4,0",
                         "--color", "#0000ff" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("c.img.velm"), "colorize-brush", "--path", "0,0",
                         "--color", "no colour" })
                     .exitCode,
            2);
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("c.img.velm"), "smoothen-brush", "--path", "0;0" })
                     .exitCode,
            2);
    }

    void exportLatexNamesTheItem()
    {
        write("one.txt", "1\n");
        QCOMPARE(cli({ "import-z", path("one.txt"), "--out", path("one.img.velm") }).exitCode, 0);
        const CliResult run = cli({ "export-latex", path("one.img.velm") });
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.startsWith("% "));
        QCOMPARE(cli({ "export-latex", path("missing.img.velm") }).exitCode, 1);
    }

private:
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    CliResult cli(const QStringList& args) { return runCli(m_dir.filePath(QStringLiteral("settings")), args); }
    void write(const char* name, const QByteArray& text)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliTools)
#include "tst_cli_tools.moc"
