#include "segmentationcommands.h"

#include "cliargs.h"
#include "cliitems.h"

#include "core/items/qsciimage.h"
#include "core/project/segmentationoperations.h"
#include "core/project/voronoioperations.h"

#include <limits>

namespace {

int finish(CliContext& ctx, SegmentationOperations::Outcome outcome, const QString& message)
{
    if (outcome != SegmentationOperations::Outcome::Applied)
        return ctx.fail(message);
    ctx.out << message << Qt::endl;
    return CliSuccess;
}

int maskToObjects(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool given = false;
    const QString text = args.takeOption(QStringLiteral("--connect"), &given);
    if (given && text != QLatin1String("4") && text != QLatin1String("8")) {
        ctx.err << QStringLiteral("mask-to-objects takes --connect 4 or 8") << Qt::endl;
        return CliUsage;
    }
    QString message;
    const auto outcome = SegmentationOperations::maskToObjects(project, { item }, given ? text.toInt() : 8, &message);
    return finish(ctx, outcome, message);
}

int watershed(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    bool given = false;
    const QString text = args.takeOption(QStringLiteral("--min-depth"), &given);
    double depth = 0;
    QString problem;
    if (given
        && !CliItems::parseReal(
            QStringLiteral("--min-depth"), text, 0, std::numeric_limits<double>::max(), &depth, &problem)) {
        ctx.err << problem << Qt::endl;
        return CliUsage;
    }
    QString message;
    const auto outcome = SegmentationOperations::watershed(project, { item }, depth, &message);
    return finish(ctx, outcome, message);
}

int voronoi(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    using Output = VoronoiOperations::Output;
    bool given = false;
    const QString text = args.takeOption(QStringLiteral("--output"), &given);
    const QStringList names { QStringLiteral("number"), QStringLiteral("area"), QStringLiteral("borders") };
    if (given && !names.contains(text)) {
        ctx.err << QStringLiteral("voronoi takes --output number|area|borders") << Qt::endl;
        return CliUsage;
    }
    const Output output = given ? Output(names.indexOf(text)) : Output::CellNumber;
    QList<VoronoiOperations::Cell> cells;
    QString message;
    QSciImage* made = nullptr;
    if (!VoronoiOperations::construct(project, item, output, &cells, &message, &made))
        return ctx.fail(message);
    // The command writes one item: the cell map takes the place of the input.
    if (made) {
        (void)item->setZMatrix(made->zMatrix());
        item->setSciValues(made->sciValues());
        item->setName(made->name());
        (void)item->setMask(made->maskMatrix());
        item->mapZToPicture();
    }
    const QString unit = VoronoiOperations::areaUnit(*item);
    ctx.out << QStringLiteral("object\tx\ty\tpoints\tarea")
            << (unit.isEmpty() ? QString() : QStringLiteral(" [%1]").arg(unit)) << Qt::endl;
    for (const VoronoiOperations::Cell& c : cells)
        ctx.out << c.objectNumber << '\t' << c.centre.x() << '\t' << c.centre.y() << '\t' << c.points << '\t' << c.area
                << Qt::endl;
    return CliSuccess;
}

} // namespace

QList<QPair<QString, SegmentationCommands::Operation>> SegmentationCommands::operations()
{
    return { { QStringLiteral("mask-to-objects"), maskToObjects }, { QStringLiteral("watershed"), watershed },
        { QStringLiteral("voronoi"), voronoi } };
}

QString SegmentationCommands::usage()
{
    return QStringLiteral("mask-to-objects [--connect 4|8] (default 8); watershed [--min-depth V] (z units; default "
                          "a twentieth of the z range; floods the mask, or without one the points above the mean);\n  "
                          "voronoi [--output number|area|borders] (cells "
                          "around the objects' centres; prints each cell's area)");
}
