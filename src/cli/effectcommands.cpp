#include "effectcommands.h"

#include "cliargs.h"
#include "cliprogress.h"

#include "core/processing/qscidenoise.h"
#include "core/processing/qsciderivative.h"
#include "core/project/effectoperations.h"

#include <cmath>

namespace {

int usageError(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

/** An integer option within [low, high]; @p ok turns false when it is given but not such a number. */
int intOption(CliArgs& args, const QString& name, int fallback, int low, int high, bool* ok)
{
    bool present = false;
    const QString text = args.takeOption(name, &present);
    if (!present)
        return fallback;
    bool parsed = false;
    const int value = text.toInt(&parsed);
    if (!parsed || value < low || value > high)
        *ok = false;
    return value;
}

int run(CliContext& ctx, Project& project, QSciImage* item, const QSciEffect& effect)
{
    CliProgress progress(ctx.progressOnTerminal);
    QString message;
    if (EffectOperations::apply(project, { item }, effect, &progress, &message) != EffectOperations::Outcome::Applied)
        return ctx.fail(message);
    return CliSuccess;
}

} // namespace

int EffectCommands::denoise(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool ok = true;
    const QString radiusText = args.takeRequired(QStringLiteral("--radius"));
    bool parsed = false;
    const double radius = radiusText.toDouble(&parsed);
    const int loops = intOption(args, QStringLiteral("--loops"), 1, 1, 1000, &ok);
    const bool selection = args.takeFlag(QStringLiteral("--selection"));
    if (!parsed || !std::isfinite(radius) || radius < 0 || !ok)
        return usageError(
            ctx, QStringLiteral("denoise needs --radius R (a number of at least 0) and --loops N (1 to 1000)"));
    return run(ctx, project, item, QSciDenoise({ radius, loops, selection }));
}

int EffectCommands::derivative(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    QSciDerivative::Options o;
    bool ok = true;
    const QString mode = args.takeRequired(QStringLiteral("--mode"));
    if (mode == QLatin1String("directional"))
        o.mode = QSciDerivative::Mode::Directional;
    else if (mode != QLatin1String("gradient"))
        ok = false;
    o.points = intOption(args, QStringLiteral("--points"), 1, 1, 100000, &ok);
    o.order = intOption(args, QStringLiteral("--order"), 1, 1, 1000, &ok);
    o.originFactor = intOption(args, QStringLiteral("--origin"), 0, -1000000, 1000000, &ok);
    bool present = false;
    const QString border = args.takeOption(QStringLiteral("--border"), &present);
    if (present && border == QLatin1String("wrap"))
        o.border = QSciDerivative::Border::Wrap;
    else if (present && border != QLatin1String("replicate"))
        ok = false;
    const QString direction = args.takeOption(QStringLiteral("--direction"), &present);
    if (present) {
        o.xDirection = direction != QLatin1String("y");
        o.yDirection = direction != QLatin1String("x");
        ok = ok
            && (direction == QLatin1String("xy") || direction == QLatin1String("x") || direction == QLatin1String("y"));
    }
    o.angle = intOption(args, QStringLiteral("--angle"), 0, 0, 315, &ok);
    ok = ok && QSciDerivative::angles().contains(o.angle);
    o.selectionOnly = args.takeFlag(QStringLiteral("--selection"));
    if (!ok)
        return usageError(ctx, usage());
    return run(ctx, project, item, QSciDerivative(o));
}

QString EffectCommands::usage()
{
    return QStringLiteral("denoise --radius R [--loops N] [--selection]; derivative --mode gradient|directional "
                          "[--points N] [--order K] [--origin F] [--border replicate|wrap] [--direction xy|x|y] "
                          "[--angle 0|45|...|315] [--selection]");
}
