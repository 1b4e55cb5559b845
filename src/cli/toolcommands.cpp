#include "toolcommands.h"

#include "cliargs.h"
#include "cliitems.h"

#include "core/items/brushfootprint.h"
#include "core/items/latexcodes.h"
#include "core/items/picturecolorize.h"
#include "core/items/qsciimage.h"
#include "core/processing/brushsmoothing.h"
#include "core/processing/doubletip.h"
#include "core/project/itemoperations.h"
#include "core/project/zedit.h"

#include <QPolygon>

namespace {

int usage(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

/** "X,Y;X,Y;...": display points, rows counted from the top. */
bool parsePoints(const QString& text, QPolygon* points)
{
    points->clear();
    for (const QString& pair : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QStringList xy = pair.split(QLatin1Char(','));
        bool okX = false, okY = false;
        if (xy.size() != 2)
            return false;
        const int x = xy.at(0).trimmed().toInt(&okX), y = xy.at(1).trimmed().toInt(&okY);
        if (!okX || !okY)
            return false;
        points->append(QPoint(x, y));
    }
    return !points->isEmpty();
}

bool takePoint(CliArgs& args, const QString& option, QPoint* point)
{
    QPolygon one;
    if (!parsePoints(args.takeRequired(option), &one) || one.size() != 1)
        return false;
    *point = one.first();
    return true;
}

int resolveDoubleTip(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    QPoint feature, ghost;
    if (!takePoint(args, QStringLiteral("--feature"), &feature) || !takePoint(args, QStringLiteral("--ghost"), &ghost))
        return usage(ctx, QStringLiteral("resolve-double-tip needs --feature X,Y and --ghost X,Y (rows from the top)"));
    bool given = false;
    const QString ratioText = args.takeOption(QStringLiteral("--ratio"), &given);
    double ratio = -1;
    QString problem;
    if (given && !CliItems::parseReal(QStringLiteral("--ratio"), ratioText, 0, 0.95, &ratio, &problem))
        return usage(ctx, problem);
    const int h = item->height();
    const auto stored = [h](const QPoint& p) { return QPoint(p.x(), h - 1 - p.y()); };
    double used = 0;
    QPoint vector;
    const QVector<double> z = DoubleTip::resolved(*item, stored(feature), stored(ghost), ratio, &used, &vector);
    ZEdit::apply(project, { item }, DoubleTip::operationText(), [&z](QSciImage& i) { (void)i.setZMatrix(z); });
    ctx.out << QStringLiteral("ghost %1,%2 ratio %3").arg(vector.x()).arg(-vector.y()).arg(used, 0, 'g', 3) << Qt::endl;
    return CliSuccess;
}

/** The brush path and radius shared by the brush operations. */
bool takeBrush(CliContext& ctx, CliArgs& args, const QSciImage& item, BrushFootprint* footprint, int* status)
{
    QPolygon path;
    if (!parsePoints(args.takeRequired(QStringLiteral("--path")), &path)) {
        *status = usage(ctx, QStringLiteral("the brush needs --path X,Y;X,Y;... (rows from the top)"));
        return false;
    }
    double radius = 4;
    QString problem;
    bool given = false;
    const QString text = args.takeOption(QStringLiteral("--radius"), &given);
    if (given && !CliItems::parseReal(QStringLiteral("--radius"), text, 0, 1000, &radius, &problem)) {
        *status = usage(ctx, problem);
        return false;
    }
    *footprint = BrushFootprint(item.size(), path, radius);
    return true;
}

int smoothenBrush(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    BrushFootprint footprint;
    int status = CliSuccess;
    if (!takeBrush(ctx, args, *item, &footprint, &status))
        return status;
    double smoothing = 2;
    bool given = false;
    QString problem;
    const QString text = args.takeOption(QStringLiteral("--smoothing"), &given);
    if (given && !CliItems::parseReal(QStringLiteral("--smoothing"), text, 1, 7, &smoothing, &problem))
        return usage(ctx, problem);
    ZEdit::apply(project, { item }, BrushSmoothing::operationText(),
        [&](QSciImage& i) { BrushSmoothing::apply(i, footprint, smoothing); });
    return CliSuccess;
}

int colorizeBrush(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    BrushFootprint footprint;
    int status = CliSuccess;
    if (!takeBrush(ctx, args, *item, &footprint, &status))
        return status;
    QColor color;
    if (!CliItems::parseColor(args.takeRequired(QStringLiteral("--color")), &color))
        return usage(ctx, QStringLiteral("colorize needs --color NAME|#RRGGBB"));
    double strength = 100;
    bool given = false;
    QString problem;
    const QString text = args.takeOption(QStringLiteral("--strength"), &given);
    if (given && !CliItems::parseReal(QStringLiteral("--strength"), text, 0, 100, &strength, &problem))
        return usage(ctx, problem);
    ItemOperations::editPicture(project, { item }, PictureColorize::operationText(),
        [&](QSciImage& i) { PictureColorize::apply(i, footprint, color, strength / 100); });
    return CliSuccess;
}

int runExportLatex(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeOption(QStringLiteral("--out"));
    const QString problem = args.usageError();
    if (!problem.isEmpty() || args.positional().size() != 1)
        return usage(ctx, problem.isEmpty() ? QStringLiteral("export-latex FILE [--out TEX]") : problem);
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    return CliItems::writeOut(ctx, out, LatexCodes::document(item).toUtf8()) ? CliSuccess : CliFailure;
}

const CliCommandRegistration registration(
    { { QStringLiteral("export-latex"), QStringLiteral("export-latex FILE [--out TEX]"),
        QStringLiteral("the item's text lines as LaTeX, placed formulas as display math"), runExportLatex, 26 } });

} // namespace

QList<QPair<QString, ToolCommands::Operation>> ToolCommands::operations()
{
    return {
        { QStringLiteral("resolve-double-tip"), resolveDoubleTip },
        { QStringLiteral("smoothen-brush"), smoothenBrush },
        { QStringLiteral("colorize-brush"), colorizeBrush },
    };
}

QString ToolCommands::usage()
{
    return QStringLiteral("resolve-double-tip --feature X,Y --ghost X,Y [--ratio R]; "
                          "smoothen-brush --path X,Y;X,Y... [--radius R] [--smoothing S]; "
                          "colorize-brush --path X,Y;... --color C [--radius R] [--strength PERCENT]");
}
