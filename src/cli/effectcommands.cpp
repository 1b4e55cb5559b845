#include "effectcommands.h"

#include "cliargs.h"
#include "cliitems.h"
#include "cliprogress.h"

#include "core/items/qsciimage.h"
#include "core/processing/qscidenoise.h"
#include "core/processing/qscidriftcorrection.h"
#include "core/processing/qscifilter.h"
#include "core/processing/qscilevelling.h"
#include "core/processing/qscirowalignment.h"
#include "core/processing/qscizformula.h"
#include "core/processing/thinning.h"
#include "core/project/itemoperations.h"
#include "core/processing/qsciderivative.h"
#include "core/project/effectoperations.h"
#include "core/project/spectrumoperations.h"

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

namespace {

int level(
    CliContext& ctx, CliArgs& args, Project& project, QSciImage* item, QSciLevelling::Method method, int order = 1)
{
    QSciLevelling::Options o;
    o.method = method;
    o.order = order;
    o.masked = args.takeFlag(QStringLiteral("--masked"));
    return run(ctx, project, item, QSciLevelling(o));
}

} // namespace

int EffectCommands::levelPlane(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    return level(ctx, args, project, item, QSciLevelling::Method::Plane);
}

int EffectCommands::levelPolynomial(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool ok = true;
    const int order = intOption(args, QStringLiteral("--order"), 0, 1, 4, &ok);
    if (!ok || order == 0)
        return usageError(ctx, QStringLiteral("level-poly needs --order N (1 to 4)"));
    return level(ctx, args, project, item, QSciLevelling::Method::Polynomial, order);
}

int EffectCommands::levelThreePoints(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    // Points as displayed: columns from the left, rows from the top.
    const QStringList points = args.takeRequired(QStringLiteral("--points")).split(QLatin1Char(';'));
    QSciLevelling::Options o;
    o.method = QSciLevelling::Method::ThreePoints;
    bool ok = points.size() == 3;
    for (int k = 0; ok && k < 3; ++k) {
        const QStringList xy = points.at(k).split(QLatin1Char(','));
        bool okX = false, okY = false;
        ok = xy.size() == 2;
        if (ok) {
            o.points[k] = QPoint(xy.at(0).trimmed().toInt(&okX), item->height() - 1 - xy.at(1).trimmed().toInt(&okY));
            ok = okX && okY;
        }
    }
    if (!ok)
        return usageError(ctx, QStringLiteral("level-three-point needs --points \"X,Y;X,Y;X,Y\" (rows from the top)"));
    return run(ctx, project, item, QSciLevelling(o));
}

int EffectCommands::levelFacet(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    return level(ctx, args, project, item, QSciLevelling::Method::Facet);
}

int EffectCommands::zeroMinimum(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    return level(ctx, args, project, item, QSciLevelling::Method::ZeroMinimum);
}

int EffectCommands::alignRows(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    const QString method = args.takeRequired(QStringLiteral("--method"));
    QSciRowAlignment::Options o;
    const QStringList names
        = { QStringLiteral("median"), QStringLiteral("mean"), QStringLiteral("median-diff"), QStringLiteral("linear") };
    const int index = names.indexOf(method);
    if (index < 0)
        return usageError(ctx, QStringLiteral("align-rows needs --method median|mean|median-diff|linear"));
    o.method = QSciRowAlignment::Method(index);
    o.masked = args.takeFlag(QStringLiteral("--masked"));
    return run(ctx, project, item, QSciRowAlignment(o));
}

int EffectCommands::removeScars(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    QSciRowAlignment::Options o;
    o.method = QSciRowAlignment::Method::Scars;
    bool ok = true, present = false;
    const QString threshold = args.takeOption(QStringLiteral("--threshold"), &present);
    if (present)
        o.scarThreshold = threshold.toDouble(&ok);
    o.scarMinimumLength = intOption(args, QStringLiteral("--min-length"), 4, 1, 1000000, &ok);
    if (!ok || !(o.scarThreshold > 0))
        return usageError(ctx, QStringLiteral("remove-scars takes --threshold K (above 0) and --min-length N"));
    return run(ctx, project, item, QSciRowAlignment(o));
}

int EffectCommands::drift(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool ok = true;
    const int shift = intOption(args, QStringLiteral("--max-shift"), 10, 1, 1000, &ok);
    if (!ok)
        return usageError(ctx, QStringLiteral("drift takes --max-shift N (1 to 1000)"));
    return run(ctx, project, item, QSciDriftCorrection({ shift }));
}

namespace {

int filter(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item, QSciFilter::Kind kind)
{
    QSciFilter::Options o;
    o.kind = kind;
    bool ok = true, present = false;
    const auto real = [&](const char* name, double* value) {
        const QString text = args.takeOption(QLatin1String(name), &present);
        if (present) {
            *value = text.toDouble(&ok);
            ok = ok && std::isfinite(*value);
        }
        return present;
    };
    const bool sigmaGiven = real("--sigma", kind == QSciFilter::Kind::Despike ? &o.despikeSigma : &o.sigma);
    real("--amount", &o.amount);
    const bool radiusGiven = real("--radius", &o.radius);
    if (kind == QSciFilter::Kind::Convolution) {
        ok = ok && QSciFilter::parseKernel(args.takeRequired(QStringLiteral("--kernel")), &o.kernel);
        o.normalise = !args.takeFlag(QStringLiteral("--no-normalise"));
    }
    if (kind == QSciFilter::Kind::Sobel) {
        const QString direction = args.takeOption(QStringLiteral("--direction"), &present);
        const QStringList names = { QStringLiteral("both"), QStringLiteral("x"), QStringLiteral("y") };
        if (present) {
            ok = ok && names.contains(direction);
            o.direction = QSciFilter::Direction(std::max(0, int(names.indexOf(direction))));
        }
    }
    const bool needsSigma = kind == QSciFilter::Kind::Gaussian || kind == QSciFilter::Kind::Unsharp;
    if (!ok || (needsSigma && !sigmaGiven) || (kind == QSciFilter::Kind::Smoothen && !radiusGiven))
        return usageError(ctx, EffectCommands::usage());
    o.selectionOnly = args.takeFlag(QStringLiteral("--selection"));
    return run(ctx, project, item, QSciFilter(o));
}

int fft(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    const QStringList modes = { QStringLiteral("magnitude"), QStringLiteral("phase"), QStringLiteral("logpower") };
    const int mode = modes.indexOf(args.takeRequired(QStringLiteral("--mode")));
    if (mode < 0)
        return usageError(ctx, QStringLiteral("fft needs --mode magnitude|phase|logpower"));
    // The window puts the spectrum beside the item; here it becomes the output file.
    const QList<QSciImage*> made = SpectrumOperations::addSpectra(project, { item }, FourierTransform::Mode(mode));
    if (made.isEmpty())
        return ctx.fail(QStringLiteral("No spectrum could be made."));
    item->copyFrom(*made.first());
    return CliSuccess;
}

int fftFilter(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    const QString path = args.takeRequired(QStringLiteral("--spectrum"));
    if (path.isEmpty())
        return usageError(
            ctx, QStringLiteral("fft-filter needs --spectrum FILE, a spectrum whose mask keeps frequencies"));
    QSciImage spectrum;
    if (!CliItems::load(ctx, path, spectrum))
        return CliFailure;
    QString message;
    if (!SpectrumOperations::filter(project, item, spectrum, &message))
        return ctx.fail(message);
    return CliSuccess;
}

int zFormula(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    QSciZFormula::Options o;
    bool present = false;
    o.formula = args.takeOption(QStringLiteral("--formula"), &present);
    if (!present)
        o.formula = QStringLiteral("$z");
    const QString clip = args.takeOption(QStringLiteral("--clip"), &o.clip);
    if (o.clip) {
        const QStringList range = clip.split(QLatin1Char(':'));
        bool okLow = false, okHigh = false;
        if (range.size() == 2) {
            o.clipLow = range.at(0).toDouble(&okLow);
            o.clipHigh = range.at(1).toDouble(&okHigh);
        }
        if (!okLow || !okHigh)
            return usageError(ctx, QStringLiteral("z-formula takes --clip MIN:MAX"));
    }
    o.invert = args.takeFlag(QStringLiteral("--invert"));
    o.selectionOnly = args.takeFlag(QStringLiteral("--selection"));
    if (!present && !o.clip && !o.invert)
        return usageError(ctx, QStringLiteral("z-formula needs --formula F, --clip MIN:MAX or --invert"));
    return run(ctx, project, item, QSciZFormula(o));
}

int thinMask(CliContext& ctx, CliArgs&, Project& project, QSciImage* item)
{
    if (item->maskSelectedCount() == 0)
        return ctx.fail(QSciEffect::nothingSelectedText());
    ItemOperations::thinMask(project, { item });
    return CliSuccess;
}

EffectCommands::Operation filterOperation(QSciFilter::Kind kind)
{
    return [kind](CliContext& ctx, CliArgs& args, Project& project, QSciImage* item) {
        return filter(ctx, args, project, item, kind);
    };
}

} // namespace

QList<QPair<QString, EffectCommands::Operation>> EffectCommands::operations()
{
    using Kind = QSciFilter::Kind;
    return {
        { QStringLiteral("denoise"), &EffectCommands::denoise },
        { QStringLiteral("derivative"), &EffectCommands::derivative },
        { QStringLiteral("level-plane"), &EffectCommands::levelPlane },
        { QStringLiteral("level-poly"), &EffectCommands::levelPolynomial },
        { QStringLiteral("level-three-point"), &EffectCommands::levelThreePoints },
        { QStringLiteral("level-facet"), &EffectCommands::levelFacet },
        { QStringLiteral("zero-min"), &EffectCommands::zeroMinimum },
        { QStringLiteral("align-rows"), &EffectCommands::alignRows },
        { QStringLiteral("remove-scars"), &EffectCommands::removeScars },
        { QStringLiteral("drift"), &EffectCommands::drift },
        { QStringLiteral("gaussian"), filterOperation(Kind::Gaussian) },
        { QStringLiteral("sharpen"), filterOperation(Kind::Sharpen) },
        { QStringLiteral("unsharp"), filterOperation(Kind::Unsharp) },
        { QStringLiteral("convolve"), filterOperation(Kind::Convolution) },
        { QStringLiteral("sobel"), filterOperation(Kind::Sobel) },
        { QStringLiteral("smoothen"), filterOperation(Kind::Smoothen) },
        { QStringLiteral("despike"), filterOperation(Kind::Despike) },
        { QStringLiteral("thin-mask"), thinMask },
        { QStringLiteral("z-formula"), zFormula },
        { QStringLiteral("fft"), fft },
        { QStringLiteral("fft-filter"), fftFilter },
    };
}

QString EffectCommands::usage()
{
    return QStringLiteral(
        "denoise --radius R [--loops N] [--selection]; derivative --mode gradient|directional "
        "[--points N] [--order K] [--origin F] [--border replicate|wrap] [--direction xy|x|y] "
        "[--angle 0|45|...|315] [--selection];\n  level-plane [--masked]; level-poly --order N "
        "[--masked]; level-three-point --points \"X,Y;X,Y;X,Y\"; level-facet [--masked]; zero-min "
        "[--masked]; align-rows --method median|mean|median-diff|linear [--masked]; remove-scars "
        "[--threshold K] [--min-length N]; drift [--max-shift N];\n  gaussian --sigma S; sharpen; "
        "unsharp --sigma S [--amount A]; convolve --kernel \"a,b,c;d,e,f;g,h,i\" [--no-normalise]; "
        "sobel [--direction both|x|y]; smoothen --radius R; despike [--sigma K]; each filter takes "
        "--selection;\n  thin-mask; z-formula [--formula F] [--clip MIN:MAX] [--invert] [--selection]\n  "
        "($z, $x, $y with rows from the top, z(x, y)); fft --mode magnitude|phase|logpower; fft-filter --spectrum FILE "
        "(its mask keeps "
        "frequencies)");
}
