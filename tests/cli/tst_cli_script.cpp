#include "clirunner.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

class TestCliScript : public QObject {
    Q_OBJECT

private:
    QString write(const QString& name, const QByteArray& text)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text);
        return path;
    }

    QTemporaryDir m_dir;

private slots:
    void processesAFileNamedByArgs()
    {
        const QString item = m_dir.filePath("blank.img.velm");
        QCOMPARE(runCli(m_dir.path(), { "new", "--size", "20x12", "--out", item }).exitCode, 0);
        const QString script = write("size.js",
            "var i = new sciImage('x'); i.begin();\n"
            "if (!i.loadFromFile(args.file)) throw 'cannot read ' + args.file;\n"
            "sciPrint(i.getName() + ' ' + args.tag);\n"
            "sciPrintText('saved ' + i.saveToFile(args.out), 'log');\n");
        const QString out = m_dir.filePath("copy.img.velm");
        const CliResult r = runCli(
            m_dir.path(), { "script", script, "--arg", "file=" + item, "--arg", "out=" + out, "--arg", "tag=a=b" });
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.out, QByteArray("blank a=b\nlog: saved true\n"));
        const CliResult info = runCli(m_dir.path(), { "info", out });
        QCOMPARE(QJsonDocument::fromJson(info.out).object().value("width").toInt(), 20);
    }

    void anUncaughtExceptionFailsTheRun()
    {
        const CliResult r
            = runCli(m_dir.path(), { "script", write("throw.js", "sciPrint('before');\nthrow 'oops';\n") });
        QCOMPARE(r.exitCode, 1);
        QCOMPARE(r.out, QByteArray("before\n"));
        QCOMPARE(r.err, QByteArray("Script threw an uncaught exception: oops (line 2)\n"));
    }

    void refusesBadCommandLines()
    {
        QCOMPARE(runCli(m_dir.path(), { "script" }).exitCode, 2);
        QCOMPARE(runCli(m_dir.path(), { "script", write("ok.js", "1;"), "--arg", "novalue" }).exitCode, 2);
        const CliResult missing = runCli(m_dir.path(), { "script", m_dir.filePath("none.js") });
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.startsWith("File does not exist: "));
    }
};

QTEST_GUILESS_MAIN(TestCliScript)
#include "tst_cli_script.moc"
