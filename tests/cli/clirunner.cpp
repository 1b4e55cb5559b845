#include "clirunner.h"

#include <QProcess>

CliResult runCli(const QString& settingsDir, const QStringList& args, const QByteArray& input)
{
    QProcess process;
    QStringList all = args;
    if (!settingsDir.isEmpty())
        all << QStringLiteral("--settings-dir") << settingsDir;
    process.start(QStringLiteral(VELMORA_CLI), all);
    process.waitForStarted();
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    return { process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
        process.readAllStandardError() };
}
