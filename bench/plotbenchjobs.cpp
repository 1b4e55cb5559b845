#include "benchharness.h"

#include "core/items/qsciimage.h"
#include "core/plots/lineprofile.h"
#include "core/plots/plot3ddocument.h"
#include "core/plots/plot3dpage.h"
#include "core/plots/surfacegrid.h"

#include <memory>

namespace {

/** A 4096 x 4096 surface, the size the OpenGL window reduces to 512 x 512 cells. */
BenchJob surfaceGridJob()
{
    auto data = std::make_shared<QVector<double>>(4096 * 4096);
    for (qsizetype i = 0; i < data->size(); ++i)
        (*data)[i] = double(i % 4099) * 1e-3;
    BenchJob job;
    job.name = QStringLiteral("surface_grid_4096_to_512");
    job.run = [data]() {
        const SurfaceGrid grid = SurfaceGrid::reduce(data->constData(), 4096, 4096, 512, 512);
        if (grid.columns != 512)
            qFatal("surface grid: wrong size");
    };
    return job;
}

QList<BenchJob> plotJobs(BenchContext& context)
{
    auto item = std::make_shared<QSciImage>(context.field.width, context.field.height, Qt::white);
    if (!item->setZMatrix(context.field.z))
        qFatal("plot bench: field does not fit the item");
    BenchJob page;
    page.name = QStringLiteral("plot3d_page");
    page.run = [item]() {
        const QString html = Plot3dPage::html(Plot3dDocument::fromItem(*item), QSize(1000, 750), true);
        if (html.isEmpty())
            qFatal("plot3d page: empty");
    };
    BenchJob profile;
    profile.name = QStringLiteral("line_profile_diagonal_w5");
    profile.run = [item]() {
        const LineProfile p
            = LineProfile::sample(*item, QPointF(0, 0), QPointF(item->width() - 1, item->height() - 1), 5);
        if (p.size() < 2)
            qFatal("line profile: no samples");
    };
    return { surfaceGridJob(), page, profile };
}

const BenchRegistration registration(90, plotJobs);

} // namespace
