#include "clicommand.h"

QList<CliCommand> allCliCommands()
{
    QList<CliCommand> commands;
    commands += settingsCliCommands();
    return commands;
}
