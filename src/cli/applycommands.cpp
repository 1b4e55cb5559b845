#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"
#include "cliprogress.h"
#include "effectcommands.h"
#include "objectcommands.h"
#include "toolcommands.h"
#include "segmentationcommands.h"

#include "core/display/colorgradient.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/maskedit.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"

#include <functional>
#include <limits>

namespace {

using Operation = std::function<int(CliContext&, CliArgs&, Project&, QSciImage*)>;

int usage(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

/** An operation that takes no options of its own. */
Operation simple(void (*operation)(Project&, const QList<QSciImage*>&))
{
    return [operation](CliContext&, CliArgs&, Project& project, QSciImage* item) {
        operation(project, { item });
        return int(CliSuccess);
    };
}

int recalibrate(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool mulGiven = false, addGiven = false;
    const QString mulText = args.takeOption(QStringLiteral("--multiply"), &mulGiven);
    const QString addText = args.takeOption(QStringLiteral("--add"), &addGiven);
    if (!mulGiven && !addGiven)
        return usage(ctx, QStringLiteral("recalibrate-z needs --multiply A and/or --add B (numbers)"));
    constexpr double any = std::numeric_limits<double>::infinity();
    double multiply = 1.0, add = 0.0;
    QString problem;
    if ((mulGiven && !CliItems::parseReal(QStringLiteral("--multiply"), mulText, -any, any, &multiply, &problem))
        || (addGiven && !CliItems::parseReal(QStringLiteral("--add"), addText, -any, any, &add, &problem)))
        return usage(ctx, problem);
    if (!ItemOperations::recalibrateZ(project, { item }, multiply, add, &problem))
        return ctx.fail(problem);
    return CliSuccess;
}

int maskRect(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    const QStringList parts = args.takeRequired(QStringLiteral("--rect")).split(QLatin1Char(','));
    int v[4] = {};
    bool ok = parts.size() == 4;
    for (int i = 0; ok && i < 4; ++i)
        v[i] = parts.at(i).trimmed().toInt(&ok);
    if (!ok || v[2] < 1 || v[3] < 1)
        return usage(ctx, QStringLiteral("mask-rect needs --rect L,T,W,H with W and H of at least 1"));
    const QRect rect(v[0], v[1], v[2], v[3]);
    ItemOperations::apply(project, { item }, MaskEdit::rectangleText(), QSciImage::MaskPart,
        [&rect](QSciImage& target) { MaskEdit::applyRect(target, rect, MaskEdit::Mode::New); });
    return CliSuccess;
}

int setGradient(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool builtinGiven = false, tokenGiven = false;
    const QString number = args.takeOption(QStringLiteral("--builtin"), &builtinGiven);
    const QString token = args.takeOption(QStringLiteral("--token"), &tokenGiven);
    if (builtinGiven == tokenGiven)
        return usage(ctx, QStringLiteral("set-gradient needs either --builtin N or --token TEXT"));
    ColorGradient gradient;
    if (builtinGiven) {
        bool ok = false;
        const int n = number.toInt(&ok);
        if (!ok || n < 1 || n > ColorGradient::builtInCount())
            return usage(ctx, QStringLiteral("--builtin needs 1 to %1").arg(ColorGradient::builtInCount()));
        gradient = ColorGradient::builtIn(n);
    } else {
        QString problem;
        if (!ColorGradient::parseUserText(token, &gradient, &problem))
            return usage(ctx, problem);
    }
    ItemOperations::setColorGradient(project, { item }, gradient);
    return CliSuccess;
}

int setColorRange(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool fixedGiven = false, cutGiven = false;
    const QString fixed = args.takeOption(QStringLiteral("--zrange"), &fixedGiven);
    const QString cut = args.takeOption(QStringLiteral("--zrange-cut"), &cutGiven);
    const bool full = args.takeFlag(QStringLiteral("--full"));
    if (int(fixedGiven) + int(cutGiven) + int(full) != 1)
        return usage(
            ctx, QStringLiteral("set-color-range needs one of --zrange MIN:MAX, --zrange-cut PERCENT, --full"));
    ColorRange range;
    if (fixedGiven && !ColorRange::parseFixed(fixed, &range))
        return usage(ctx, QStringLiteral("--zrange needs MIN:MAX, two finite numbers"));
    if (cutGiven && !ColorRange::parseCut(cut, &range))
        return usage(ctx, QStringLiteral("--zrange-cut needs a percentage from 0 to below 50"));
    ItemOperations::setColorRange(project, { item }, range);
    return CliSuccess;
}

const QList<QPair<QString, Operation>>& operations()
{
    static const QList<QPair<QString, Operation>> list = QList<QPair<QString, Operation>> {
        { QStringLiteral("flip-h"), simple(&ItemOperations::flipHorizontal) },
        { QStringLiteral("flip-v"), simple(&ItemOperations::flipVertical) },
        { QStringLiteral("rotate+90"),
            [](CliContext&, CliArgs&, Project& p, QSciImage* i) {
                ItemOperations::rotate(p, { i }, 90);
                return 0;
            } },
        { QStringLiteral("rotate-90"),
            [](CliContext&, CliArgs&, Project& p, QSciImage* i) {
                ItemOperations::rotate(p, { i }, -90);
                return 0;
            } },
        { QStringLiteral("rotate180"),
            [](CliContext&, CliArgs&, Project& p, QSciImage* i) {
                ItemOperations::rotate(p, { i }, 180);
                return 0;
            } },
        { QStringLiteral("recalibrate-z"), recalibrate },
        { QStringLiteral("map-z-to-picture"),
            [](CliContext& c, CliArgs&, Project& p, QSciImage* i) {
                CliProgress progress(c.progressOnTerminal);
                ItemOperations::mapZToPicture(p, { i }, &progress);
                return 0;
            } },
        { QStringLiteral("map-picture-to-z"), simple(&ItemOperations::mapPictureToZ) },
        { QStringLiteral("clear-picture"),
            [](CliContext&, CliArgs&, Project& p, QSciImage* i) {
                ItemOperations::clearPicture(p, { i });
                return 0;
            } },
        { QStringLiteral("clear-objects"), simple(&ItemOperations::clearObjects) },
        { QStringLiteral("clear-mask"), simple(&ItemOperations::clearMask) },
        { QStringLiteral("mask-all"), simple(&ItemOperations::selectAllMask) },
        { QStringLiteral("mask-none"), simple(&ItemOperations::unselectAllMask) },
        { QStringLiteral("mask-invert"), simple(&ItemOperations::invertMask) },
        { QStringLiteral("mask-rect"), maskRect },
        { QStringLiteral("set-gradient"), setGradient },
        { QStringLiteral("set-color-range"), setColorRange },
        { QStringLiteral("cut-to-mask-border"), simple(&ItemOperations::cutToMaskBorder) },
    } + EffectCommands::operations() + ObjectCommands::operations() + ToolCommands::operations()
        + SegmentationCommands::operations();
    return list;
}

int runApply(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--out"));
    const QStringList pos = args.positional();
    if (pos.size() < 2)
        return usage(ctx, QStringLiteral("apply FILE --out FILE OPERATION [OPTIONS]"));
    const QString name = pos.at(1);
    const auto found = std::find_if(operations().cbegin(), operations().cend(),
        [&name](const QPair<QString, Operation>& entry) { return entry.first == name; });
    if (found == operations().cend())
        return usage(ctx, QStringLiteral("unknown operation: %1").arg(name));

    // A one-shot process has nothing to undo: the operations run without writing history files.
    QSciHistoryManager::instance()->setEnabled(false);
    Project project;
    auto* item = new QSciImage();
    project.addTab()->addItem(item);
    if (!CliItems::load(ctx, pos.at(0), *item))
        return CliFailure;
    const int status = found->second(ctx, args, project, item);
    if (status != CliSuccess)
        return status;
    const QString problem = args.usageError();
    if (!problem.isEmpty() || args.positional().size() != 2)
        return usage(ctx, problem.isEmpty() ? QStringLiteral("unexpected arguments") : problem);
    return CliItems::save(ctx, *item, out) ? CliSuccess : CliFailure;
}

QString operationList()
{
    QStringList names;
    for (const auto& entry : operations())
        names.append(entry.first);
    return names.join(QLatin1Char('|'));
}

const CliCommandRegistration registration({ { QStringLiteral("apply"),
    QStringLiteral("apply FILE --out FILE OPERATION [OPTIONS]\n  operations: ") + operationList()
        + QStringLiteral("\n  recalibrate-z --multiply A --add B; mask-rect --rect L,T,W,H (rows from the top); "
                         "set-gradient --builtin N | --token TEXT; "
                         "set-color-range --zrange MIN:MAX | --zrange-cut PERCENT | --full\n  ")
        + EffectCommands::usage() + QStringLiteral("\n  objects [") + ObjectCommands::optionUsage()
        + QStringLiteral("]\n  ") + ToolCommands::usage() + QStringLiteral("\n  ") + SegmentationCommands::usage(),
    QStringLiteral("one operation of the item context menu on an item file"), runApply, 30 } });

} // namespace
