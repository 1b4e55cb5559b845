#include "clirunner.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliFormula : public QObject {
    Q_OBJECT

private slots:
    void writesTheTableAsCsv()
    {
        const CliResult r
            = runCli(m_dir.path(), { "formula", "--rows", "3", "--cols", "2", "--formula", "$row * 10 + $col" });
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.out, QByteArray("11,12\n21,22\n31,32\n"));
        QVERIFY(r.err.isEmpty());
    }

    void recurrenceFromAnInputFileWithFailuresOnStderr()
    {
        const QString in = m_dir.filePath("in.csv");
        QFile file(in);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("1,a \"quoted\"\n");
        file.close();
        const QString out = m_dir.filePath("out.csv");
        const CliResult r = runCli(m_dir.path(),
            { "formula", "--rows", "4", "--cols", "2", "--in", in, "--only-selected", "0,0;1,0;2,0;3,0;0,1",
                "--formula", "cell($row-2, $col-1) * 3", "--out", out });
        QCOMPARE(r.exitCode, 0);
        QVERIFY(r.out.isEmpty());
        QCOMPARE(r.err, QByteArray("0,0: NaN\n0,1: NaN\n"));
        QFile written(out);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), QByteArray("1,\"a \"\"quoted\"\"\"\n3,\n9,\n27,\n"));
    }

    void refusesBadInput()
    {
        QCOMPARE(runCli(m_dir.path(), { "formula", "--rows", "2", "--formula", "1" }).exitCode, 2);
        QCOMPARE(runCli(m_dir.path(), { "formula", "--rows", "0", "--cols", "2", "--formula", "1" }).exitCode, 2);
        QCOMPARE(runCli(m_dir.path(),
                     { "formula", "--rows", "2", "--cols", "2", "--formula", "1", "--only-selected", "1;2" })
                     .exitCode,
            2);
        const CliResult missing = runCli(m_dir.path(),
            { "formula", "--rows", "2", "--cols", "2", "--formula", "1", "--in", m_dir.filePath("none.csv") });
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.startsWith("File does not exist: "));
        const CliResult huge
            = runCli(m_dir.path(), { "formula", "--rows", "100000", "--cols", "100000", "--formula", "1" });
        QCOMPARE(huge.exitCode, 1);
        const CliResult unwritable = runCli(m_dir.path(),
            { "formula", "--rows", "1", "--cols", "1", "--formula", "1", "--out", m_dir.filePath("no/dir/x.csv") });
        QCOMPARE(unwritable.exitCode, 1);
        QVERIFY(!unwritable.err.isEmpty());
    }

    void tableFilesAndInfo()
    {
        const QString table = m_dir.filePath("t.table.velm");
        QCOMPARE(runCli(m_dir.path(), { "formula", "--rows", "3", "--cols", "2", "--formula", "$row", "--out", table })
                     .exitCode,
            0);
        const CliResult info = runCli(m_dir.path(), { "info", table });
        QCOMPARE(info.exitCode, 0);
        const QJsonObject json = QJsonDocument::fromJson(info.out).object();
        QCOMPARE(json.value("type").toString(), QStringLiteral("table"));
        QCOMPARE(json.value("rows").toInt(), 3);
        QCOMPARE(json.value("filledCells").toInt(), 6);
        const QJsonObject first = json.value("columnStatistics").toArray().at(0).toObject();
        QCOMPARE(first.value("mean").toDouble(), 2.0);
        QCOMPARE(first.value("sd").toDouble(), 1.0);

        QFile file(table);
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.resize(file.size() - 5);
        file.close();
        const CliResult broken = runCli(m_dir.path(), { "info", table });
        QCOMPARE(broken.exitCode, 1);
        QVERIFY(broken.err.startsWith("File corrupted.: "));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliFormula)
#include "tst_cli_formula.moc"
