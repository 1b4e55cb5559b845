#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>

class CliArgs;

/** Exit codes of velmora-cli. */
enum CliExit { CliSuccess = 0, CliFailure = 1, CliUsage = 2 };

/** What a command needs besides its arguments. */
struct CliContext {
    QTextStream& out;
    QTextStream& err;
    int threads = 0;
    bool progressOnTerminal = false;

    /** Prints the program's own message on stderr and returns CliFailure. */
    int fail(const QString& message) const
    {
        err << message << Qt::endl;
        return CliFailure;
    }
};

/** One sub-command: `run` takes the arguments after the command name. */
struct CliCommand {
    QString name;
    QString usage;
    QString summary;
    std::function<int(CliContext&, CliArgs&)> run;
    int order = 100; ///< place in `--help`
};

/** A command file registers its commands with a static instance of this; there is no central list to edit. */
struct CliCommandRegistration {
    explicit CliCommandRegistration(const QList<CliCommand>& commands);
};

/** Every registered command, in the order `--help` lists them. */
QList<CliCommand> allCliCommands();
