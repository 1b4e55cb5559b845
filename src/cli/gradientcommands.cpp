#include "cliargs.h"
#include "clicommand.h"

#include "core/display/colorgradient.h"

namespace {

int usageError(CliContext& ctx, const QString& text)
{
    ctx.err << "gradient: " << text << Qt::endl;
    return CliUsage;
}

QString rgbaText(QRgb color)
{
    return QStringLiteral("%1,%2,%3,%4").arg(qRed(color)).arg(qGreen(color)).arg(qBlue(color)).arg(qAlpha(color));
}

// With none of --token-out, --ramp and --color-at the token string is printed; with several, each output
// follows in that order.
int runGradient(CliContext& ctx, CliArgs& args)
{
    bool builtInGiven = false;
    bool tokenGiven = false;
    bool colorAtGiven = false;
    const QString builtIn = args.takeOption(QStringLiteral("--builtin"), &builtInGiven);
    const QString token = args.takeOption(QStringLiteral("--token"), &tokenGiven);
    const QString colorAt = args.takeOption(QStringLiteral("--color-at"), &colorAtGiven);
    bool tokenOut = args.takeFlag(QStringLiteral("--token-out"));
    const bool ramp = args.takeFlag(QStringLiteral("--ramp"));
    const QString usage = args.usageError();
    if (!usage.isEmpty())
        return usageError(ctx, usage);
    if (!args.positional().isEmpty())
        return usageError(ctx, QStringLiteral("unexpected argument %1").arg(args.positional().first()));
    if (builtInGiven == tokenGiven)
        return usageError(ctx, QStringLiteral("give exactly one of --builtin N and --token TEXT"));

    ColorGradient gradient;
    if (builtInGiven) {
        bool ok = false;
        const int number = builtIn.toInt(&ok);
        if (!ok || number < 1 || number > ColorGradient::builtInCount())
            return usageError(
                ctx, QStringLiteral("--builtin needs a number from 1 to %1").arg(ColorGradient::builtInCount()));
        gradient = ColorGradient::builtIn(number);
    } else {
        QString problem;
        if (!ColorGradient::parseUserText(token, &gradient, &problem))
            return usageError(ctx, problem);
    }

    double range[3] = { 0, 0, 0 };
    if (colorAtGiven) {
        const QStringList parts = colorAt.split(QLatin1Char(','));
        bool ok = parts.size() == 3;
        for (int i = 0; ok && i < 3; ++i)
            range[i] = parts.at(i).trimmed().toDouble(&ok);
        if (!ok)
            return usageError(ctx, QStringLiteral("--color-at needs Z,ZMIN,ZMAX"));
    }

    if (!tokenOut && !ramp && !colorAtGiven)
        tokenOut = true;
    if (tokenOut)
        ctx.out << gradient.toString() << '\n';
    if (ramp) {
        const QRgb* entries = gradient.rampData();
        for (int i = 0; i < ColorGradient::RampSize; ++i)
            ctx.out << rgbaText(entries[i]) << '\n';
    }
    if (colorAtGiven)
        ctx.out << rgbaText(gradient.colorAt(range[0], range[1], range[2])) << '\n';
    return CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("gradient"),
    QStringLiteral("gradient (--builtin N | --token TEXT) [--token-out] [--ramp] [--color-at Z,ZMIN,ZMAX]"),
    QStringLiteral("print a colour gradient's token string, its 1000 ramp colours or one colour"), runGradient,
    600 } });

} // namespace
