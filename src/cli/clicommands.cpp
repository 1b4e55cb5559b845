#include "clicommand.h"

#include <algorithm>

namespace {

QList<CliCommand>& registry()
{
    static QList<CliCommand> commands;
    return commands;
}

} // namespace

CliCommandRegistration::CliCommandRegistration(const QList<CliCommand>& commands)
{
    registry() += commands;
}

QList<CliCommand> allCliCommands()
{
    QList<CliCommand> commands = registry();
    std::stable_sort(
        commands.begin(), commands.end(), [](const CliCommand& a, const CliCommand& b) { return a.order < b.order; });
    return commands;
}
