#include "clirunner.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>

class TestCliEffects : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void denoiseRemovesASpikeAndLeavesTheInput()
    {
        write("spike.txt", "1 1 1 1\n1 1 9 1\n1 1 1 1\n");
        QCOMPARE(cli({ "import-z", path("spike.txt"), "--out", path("s.img.velm") }).exitCode, 0);
        QCOMPARE(
            cli({ "apply", path("s.img.velm"), "--out", path("d.img.velm"), "denoise", "--radius", "1" }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("d.img.velm") }).out, QByteArray("1\t1\t1\t1\n1\t1\t1\t1\n1\t1\t1\t1\n"));
        QCOMPARE(cli({ "export-z", path("s.img.velm") }).out, QByteArray("1\t1\t1\t1\n1\t1\t9\t1\n1\t1\t1\t1\n"));

        // Only the selected points change: the top row is masked, the spike below it stays.
        QCOMPARE(cli({ "apply", path("s.img.velm"), "--out", path("m.img.velm"), "mask-rect", "--rect", "0,0,4,1" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("md.img.velm"), "denoise", "--radius", "1.5",
                         "--selection" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("md.img.velm") }).out, QByteArray("1\t1\t1\t1\n1\t1\t9\t1\n1\t1\t1\t1\n"));
    }

    void derivativeOptionsReachTheEffect()
    {
        write("plane.txt", "0 3 6 9 12\n0 3 6 9 12\n0 3 6 9 12\n");
        QCOMPARE(cli({ "import-z", path("plane.txt"), "--out", path("p.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "apply", path("p.img.velm"), "--out", path("g.img.velm"), "derivative", "--mode", "gradient",
                         "--direction", "x" })
                     .exitCode,
            0);
        QCOMPARE(
            cli({ "export-z", path("g.img.velm") }).out, QByteArray("0\t6\t6\t6\t0\n0\t6\t6\t6\t0\n0\t6\t6\t6\t0\n"));
        // Wrap reads the far column; f = -1 subtracts the surface.
        QCOMPARE(cli({ "apply", path("p.img.velm"), "--out", path("w.img.velm"), "derivative", "--mode", "gradient",
                         "--direction", "x", "--border", "wrap", "--origin", "-1" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("w.img.velm") }).out.split('\n').first(), QByteArray("9\t3\t0\t-3\t-3"));
        // Directional at 90 degrees: right-hand neighbours count +1, so a rising row gives 3 * 2 * 3 inside.
        QCOMPARE(cli({ "apply", path("p.img.velm"), "--out", path("r.img.velm"), "derivative", "--mode", "directional",
                         "--angle", "90" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("r.img.velm") }).out.split('\n').at(1).split('\t').at(2), QByteArray("18"));
    }

    void levellingOperations()
    {
        // Rows offset against each other on a tilted plane: row alignment leaves the tilt, plane levelling the rows.
        write("rows.txt", "10 11 12 13\n0 1 2 3\n5 6 7 8\n");
        QCOMPARE(cli({ "import-z", path("rows.txt"), "--out", path("rows.img.velm") }).exitCode, 0);
        QCOMPARE(
            cli({ "apply", path("rows.img.velm"), "--out", path("al.img.velm"), "align-rows", "--method", "median" })
                .exitCode,
            0);
        const QList<QByteArray> aligned = cli({ "export-z", path("al.img.velm") }).out.trimmed().split('\n');
        QCOMPARE(aligned.size(), 3);
        QCOMPARE(aligned.at(0), aligned.at(2));
        QCOMPARE(aligned.at(1), aligned.at(2));

        write("tilt.txt", "7 9 11\n4 6 8\n1 3 5\n");
        QCOMPARE(cli({ "import-z", path("tilt.txt"), "--out", path("t.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "apply", path("t.img.velm"), "--out", path("tl.img.velm"), "level-plane" }).exitCode, 0);
        for (const QByteArray& value : cli({ "export-z", path("tl.img.velm") }).out.simplified().split(' '))
            QVERIFY2(std::abs(value.toDouble()) < 1e-12, value.constData());
        QCOMPARE(cli({ "apply", path("t.img.velm"), "--out", path("tz.img.velm"), "zero-min" }).exitCode, 0);
        QCOMPARE(cli({ "export-z", path("tz.img.velm") }).out, QByteArray("6\t8\t10\n3\t5\t7\n0\t2\t4\n"));
    }

    void filtersReachTheCore()
    {
        write("step.txt", "0 0 1 1\n0 0 1 1\n0 0 1 1\n");
        QCOMPARE(cli({ "import-z", path("step.txt"), "--out", path("st.img.velm") }).exitCode, 0);
        QCOMPARE(
            cli({ "apply", path("st.img.velm"), "--out", path("sx.img.velm"), "sobel", "--direction", "x" }).exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("sx.img.velm") }).out, QByteArray("0\t4\t4\t0\n0\t4\t4\t0\n0\t4\t4\t0\n"));
        // An unnormalised kernel that copies the left neighbour, the first column mirrored.
        QCOMPARE(cli({ "apply", path("st.img.velm"), "--out", path("k.img.velm"), "convolve", "--kernel",
                         "0,0,0;2,0,0;0,0,0", "--no-normalise" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("k.img.velm") }).out, QByteArray("0\t0\t0\t2\n0\t0\t0\t2\n0\t0\t0\t2\n"));
    }

    void zFormulaOverThePoints()
    {
        write("m.txt", "1 2 3\n4 5 6\n");
        QCOMPARE(cli({ "import-z", path("m.txt"), "--out", path("m.img.velm") }).exitCode, 0);
        QCOMPARE(cli({ "apply", path("m.img.velm"), "--out", path("f.img.velm"), "z-formula", "--formula", "$z*$y+$x",
                         "--clip", "0:9" })
                     .exitCode,
            0);
        QCOMPARE(cli({ "export-z", path("f.img.velm") }).out, QByteArray("0\t1\t2\n4\t6\t8\n"));
        const CliResult power
            = cli({ "apply", path("m.img.velm"), "--out", path("p.img.velm"), "z-formula", "--formula", "$z^2" });
        QCOMPARE(power.exitCode, 1);
        QVERIFY(power.err.contains("The formula gives no number"));
    }

    void thinningLeavesTheSkeleton()
    {
        write("five.txt", "0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n");
        QCOMPARE(cli({ "import-z", path("five.txt"), "--out", path("five.img.velm") }).exitCode, 0);
        QCOMPARE(
            cli({ "apply", path("five.img.velm"), "--out", path("bar.img.velm"), "mask-rect", "--rect", "0,1,5,3" })
                .exitCode,
            0);
        QCOMPARE(cli({ "apply", path("bar.img.velm"), "--out", path("thin.img.velm"), "thin-mask" }).exitCode, 0);
        // A line along the middle row of the bar is left, nothing else.
        const QList<QByteArray> rows = cli({ "export-mask", path("thin.img.velm") }).out.trimmed().split('\n');
        QCOMPARE(rows.size(), 5);
        for (int row : { 0, 1, 3, 4 })
            QCOMPARE(rows.at(row), QByteArray("0\t0\t0\t0\t0"));
        QVERIFY(rows.at(2).count('1') >= 2);
    }

    void failuresSayWhyAndWriteNothing_data()
    {
        QTest::addColumn<QStringList>("operation");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("too many points") << QStringList { "derivative", "--mode", "gradient", "--points", "2" } << 1
                                         << QByteArray("Number of chosen neighbour points exceeds image dimensions!");
        QTest::newRow("nothing selected") << QStringList { "denoise", "--radius", "2", "--selection" } << 1
                                          << QByteArray("Function cannot be applied to selection since there is "
                                                        "nothing selected!");
        QTest::newRow("odd angle") << QStringList { "derivative", "--mode", "directional", "--angle", "30" } << 2
                                   << QByteArray("derivative --mode");
        QTest::newRow("no radius") << QStringList { "denoise" } << 2 << QByteArray("--radius");
        QTest::newRow("masked plane without mask") << QStringList { "level-plane",
            "--masked" } << 1 << QByteArray("Function cannot be applied to selection since there is nothing selected!");
        QTest::newRow("gaussian without sigma") << QStringList { "gaussian" } << 2 << QByteArray("--sigma");
        QTest::newRow("even kernel") << QStringList { "convolve", "--kernel", "1,2;3,4" } << 2
                                     << QByteArray("--kernel");
        QTest::newRow("thinning without mask")
            << QStringList { "thin-mask" } << 1 << QByteArray("Function cannot be applied to selection");
        QTest::newRow("polynomial without order") << QStringList { "level-poly" } << 2 << QByteArray("--order");
        QTest::newRow("points in a line")
            << QStringList { "level-three-point", "--points", "0,0;1,0;4,0" } << 1 << QByteArray("one line");
    }

    void failuresSayWhyAndWriteNothing()
    {
        QFETCH(QStringList, operation);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, message);
        write("small.txt", "1 2 3 4 5\n6 7 8 9 10\n11 12 13 14 15\n");
        QCOMPARE(cli({ "import-z", path("small.txt"), "--out", path("small.img.velm") }).exitCode, 0);
        const CliResult result
            = cli(QStringList { "apply", path("small.img.velm"), "--out", path("out.img.velm") } + operation);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.err.contains(message), result.err.constData());
        QVERIFY(!QFile::exists(path("out.img.velm")));
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

QTEST_GUILESS_MAIN(TestCliEffects)
#include "tst_cli_effects.moc"
