#include "cliargs.h"
#include "clicommand.h"

#include "core/history/historylog.h"
#include "core/import/instrumentimporters.h"
#include "core/settings/options.h"

#include <QGuiApplication>
#include <QThreadPool>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace {

/** More worker threads than this only cost memory: no machine has that many cores to feed. */
constexpr int MaxThreads = 1024;

bool verboseRun = false;

/** Standard output carries a command's result alone; diagnostics go to standard error, and only on request. */
void messageHandler(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (!verboseRun && (type == QtDebugMsg || type == QtInfoMsg))
        return;
    const QByteArray bytes = text.toLocal8Bit();
    std::fprintf(stderr, "%s\n", bytes.constData());
    if (type == QtFatalMsg)
        std::abort();
}

void printHelp(QTextStream& out, const QList<CliCommand>& commands)
{
    out << "Usage: velmora-cli COMMAND [OPTIONS] [FILES]\n\n"
           "Global options:\n"
           "  --settings-dir DIR   use DIR as the settings folder (settings.db, history/, temp/)\n"
           "  --threads N          worker threads (default: all cores, at most 1024)\n"
           "  --verbose            diagnostic lines (history, settings) on stderr\n"
           "  --help               this text; COMMAND --help for one command\n"
           "  --version            the program's version\n\n"
           "Commands:\n";
    for (const CliCommand& command : commands)
        out << "  " << command.name.leftJustified(14) << command.summary << '\n';
    out << "\nExit status: 0 success, 1 the operation failed, 2 a usage error.\n";
    out.flush();
}

} // namespace

int main(int argc, char** argv)
{
    // Drawn text (rulers, labels) needs fonts, which need a GUI application; only the commands that draw it pay
    // for one, on the offscreen platform, which needs no display server.
    const bool drawsText = std::any_of(argv + 1, argv + argc, [](const char* arg) {
        return qstrcmp(arg, "--decorations") == 0 || qstrcmp(arg, "--png") == 0 || qstrncmp(arg, "--display", 9) == 0;
    });
    if (drawsText)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::unique_ptr<QCoreApplication> application(
        drawsText ? new QGuiApplication(argc, argv) : new QCoreApplication(argc, argv));
    QCoreApplication& app = *application;
    QCoreApplication::setApplicationName(QStringLiteral("velmora-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);

    // Global options may stand anywhere on the line; the first remaining word names the command.
    CliArgs globals(app.arguments().mid(1));
    bool settingsGiven = false;
    const QString settingsDir = globals.takeOption(QStringLiteral("--settings-dir"), &settingsGiven);
    bool threadsGiven = false;
    const QString threadsText = globals.takeOption(QStringLiteral("--threads"), &threadsGiven);
    const bool help = globals.takeFlag(QStringLiteral("--help")) | globals.takeFlag(QStringLiteral("-h"));
    const bool version = globals.takeFlag(QStringLiteral("--version"));
    verboseRun = globals.takeFlag(QStringLiteral("--verbose"));
    qInstallMessageHandler(messageHandler);
    HistoryLog::setToStandardError(true);
    HistoryLog::setQuiet(!verboseRun);
    const QStringList rest = globals.remaining();
    const QList<CliCommand> commands = allCliCommands();

    if (version) {
        out << "velmora-cli " << VELMORA_VERSION << Qt::endl;
        return CliSuccess;
    }
    if (!globals.takenError().isEmpty()) {
        err << globals.takenError() << Qt::endl;
        return CliUsage;
    }
    if (settingsGiven && settingsDir.isEmpty()) {
        err << "missing value for --settings-dir" << Qt::endl;
        return CliUsage;
    }
    if (rest.isEmpty()) {
        printHelp(help ? out : err, commands);
        return help ? CliSuccess : CliUsage;
    }
    const QString name = rest.first();
    const auto found
        = std::find_if(commands.cbegin(), commands.cend(), [&name](const CliCommand& c) { return c.name == name; });
    if (found == commands.cend()) {
        err << "unknown command: " << name << "\n\n";
        printHelp(err, commands);
        return CliUsage;
    }
    if (help) {
        out << "Usage: velmora-cli " << found->usage << "\n  " << found->summary << Qt::endl;
        return CliSuccess;
    }

    int threads = 0;
    if (threadsGiven) {
        bool ok = false;
        threads = threadsText.toInt(&ok);
        if (!ok || threads < 1 || threads > MaxThreads) {
            err << "--threads needs a number from 1 to " << MaxThreads << Qt::endl;
            return CliUsage;
        }
        QThreadPool::globalInstance()->setMaxThreadCount(threads);
    }

    Options::initialize(settingsDir);
    // Item commands then take instrument files too, as their first channel.
    InstrumentImporters::registerItemImporter();
    CliContext context { out, err, threads, isatty(STDERR_FILENO) != 0 };
    CliArgs commandArgs(rest.mid(1));
    const int status = found->run(context, commandArgs);
    out.flush();
    err.flush();
    Options::shutdown();
    return status;
}
