#include "clirunner.h"

#include <QTemporaryDir>
#include <QtTest>

class TestCliSettings : public QObject {
    Q_OBJECT

private slots:
    void helpVersionAndUsageErrors()
    {
        QCOMPARE(runCli(QString(), { QStringLiteral("--help") }).exitCode, 0);
        const CliResult version = runCli(QString(), { QStringLiteral("--version") });
        QCOMPARE(version.exitCode, 0);
        QVERIFY(version.out.startsWith("velmora-cli "));
        QCOMPARE(runCli(m_dir.path(), { QStringLiteral("no-such-command") }).exitCode, 2);
        QCOMPARE(runCli(m_dir.path(), { QStringLiteral("settings") }).exitCode, 2);
        QCOMPARE(runCli(m_dir.path(), { QStringLiteral("settings"), QStringLiteral("list"), QStringLiteral("--bogus") })
                     .exitCode,
            2);
        QCOMPARE(runCli(QString(), { QStringLiteral("settings"), QStringLiteral("--settings-dir") }).exitCode, 2);
    }

    void setGetAndList()
    {
        const QString dir = m_dir.path();
        QCOMPARE(runCli(dir,
                     { QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("Tools.leftColor"),
                         QStringLiteral("1;2;3;255") })
                     .exitCode,
            0);
        runCli(
            dir, { QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("Other.x"), QStringLiteral("y") });
        const CliResult get
            = runCli(dir, { QStringLiteral("settings"), QStringLiteral("get"), QStringLiteral("Tools.leftColor") });
        QCOMPARE(get.exitCode, 0);
        QCOMPARE(get.out, QByteArray("1;2;3;255\n"));
        const CliResult list
            = runCli(dir, { QStringLiteral("settings"), QStringLiteral("list"), QStringLiteral("Tools.") });
        QCOMPARE(list.out, QByteArray("Tools.leftColor\t1;2;3;255\n"));
        const CliResult missing
            = runCli(dir, { QStringLiteral("settings"), QStringLiteral("get"), QStringLiteral("No.key") });
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(!missing.err.isEmpty());
        QVERIFY(QFile::exists(dir + QStringLiteral("/settings.db")));
        QVERIFY(QFileInfo(dir + QStringLiteral("/history")).isDir());
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliSettings)
#include "tst_cli_settings.moc"
