#include "clirunner.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class TestCliGradient : public QObject {
    Q_OBJECT

private slots:
    void printsTokenRampAndColour()
    {
        const CliResult token = run({ QStringLiteral("--builtin"), QStringLiteral("15") });
        QCOMPARE(token.exitCode, 0);
        QVERIFY(token.out.startsWith("3|rep1|55|c0act1|15|c0col9|0;0;0;2555|c0pos1|05|c1act1|1"));
        QCOMPARE(token.out.count('\n'), 1);
        QCOMPARE(
            run({ QStringLiteral("--builtin"), QStringLiteral("15"), QStringLiteral("--token-out") }).out, token.out);

        // A token read back prints unchanged.
        const QString text = QString::fromUtf8(token.out.trimmed());
        QCOMPARE(run({ QStringLiteral("--token"), text }).out, token.out);

        const CliResult colour
            = run({ QStringLiteral("--token"), text, QStringLiteral("--color-at"), QStringLiteral("0.5,0,1") });
        QCOMPARE(colour.exitCode, 0);
        QCOMPARE(colour.out, QByteArray("234,234,234,255\n"));

        const CliResult ramp = run({ QStringLiteral("--builtin"), QStringLiteral("1"), QStringLiteral("--ramp"),
            QStringLiteral("--color-at"), QStringLiteral("-5,0,1") });
        QCOMPARE(ramp.exitCode, 0);
        const QList<QByteArray> lines = ramp.out.trimmed().split('\n');
        QCOMPARE(lines.size(), 1001);
        const QRegularExpression rgba(QStringLiteral("^\\d{1,3},\\d{1,3},\\d{1,3},\\d{1,3}$"));
        for (const QByteArray& line : lines)
            QVERIFY2(rgba.match(QString::fromUtf8(line)).hasMatch(), line.constData());
        QCOMPARE(lines.first(), QByteArray("0,0,0,255"));
        QCOMPARE(lines.at(999), QByteArray("255,255,255,255"));
        QCOMPARE(lines.last(), lines.first());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("no source") << QStringList { QStringLiteral("--ramp") };
        QTest::newRow("both sources") << QStringList { QStringLiteral("--builtin"), QStringLiteral("1"),
            QStringLiteral("--token"), QStringLiteral("3|rep1|1") };
        QTest::newRow("builtin 0") << QStringList { QStringLiteral("--builtin"), QStringLiteral("0") };
        QTest::newRow("builtin 17") << QStringList { QStringLiteral("--builtin"), QStringLiteral("17") };
        QTest::newRow("builtin text") << QStringList { QStringLiteral("--builtin"), QStringLiteral("two") };
        QTest::newRow("builtin without value") << QStringList { QStringLiteral("--builtin") };
        QTest::newRow("two numbers") << QStringList { QStringLiteral("--builtin"), QStringLiteral("1"),
            QStringLiteral("--color-at"), QStringLiteral("1,2") };
        QTest::newRow("not numbers") << QStringList { QStringLiteral("--builtin"), QStringLiteral("1"),
            QStringLiteral("--color-at"), QStringLiteral("a,b,c") };
        QTest::newRow("unknown option") << QStringList { QStringLiteral("--builtin"), QStringLiteral("1"),
            QStringLiteral("--bogus") };
        QTest::newRow("stray argument") << QStringList { QStringLiteral("--builtin"), QStringLiteral("1"),
            QStringLiteral("extra") };
    }

    void usageErrors()
    {
        QFETCH(QStringList, args);
        const CliResult result = run(args);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QVERIFY(!result.err.isEmpty());
    }

private:
    CliResult run(const QStringList& args)
    {
        return runCli(m_dir.path(), QStringList { QStringLiteral("gradient") } + args);
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestCliGradient)
#include "tst_cli_gradient.moc"
