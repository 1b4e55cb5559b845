#include "cliargs.h"
#include "clicommand.h"

#include "core/settings/options.h"
#include "core/settings/settingsstore.h"

namespace {

int runSettings(CliContext& ctx, CliArgs& args)
{
    const QStringList pos = args.positional();
    const QString usage = args.usageError();
    if (!usage.isEmpty() || pos.isEmpty()) {
        ctx.err << (usage.isEmpty() ? QStringLiteral("settings: missing sub-command") : usage) << Qt::endl;
        return CliUsage;
    }
    const QString sub = pos.first();
    if (sub == QLatin1String("list") && pos.size() <= 2) {
        const QString prefix = pos.size() == 2 ? pos.at(1) : QString();
        QStringList keys = Options::prefixedKeys(prefix);
        keys.sort();
        for (const QString& key : keys)
            ctx.out << key << QLatin1Char('\t') << Options::getString(key, QString()) << Qt::endl;
        return CliSuccess;
    }
    if (sub == QLatin1String("get") && pos.size() == 2) {
        QString value;
        if (!Options::defaultStore()->get(pos.at(1), value))
            return ctx.fail(QStringLiteral("No such setting: %1").arg(pos.at(1)));
        ctx.out << value << Qt::endl;
        return CliSuccess;
    }
    if (sub == QLatin1String("set") && pos.size() == 3) {
        if (!Options::setString(pos.at(1), pos.at(2)))
            return ctx.fail(QStringLiteral("Unable to store setting: %1").arg(pos.at(1)));
        return CliSuccess;
    }
    ctx.err << QStringLiteral("settings: expected list [PREFIX], get KEY or set KEY VALUE") << Qt::endl;
    return CliUsage;
}

const CliCommandRegistration registration(
    { { QStringLiteral("settings"), QStringLiteral("settings list [PREFIX] | get KEY | set KEY VALUE"),
        QStringLiteral("list, read and write the settings store"), runSettings, 900 } });

} // namespace
