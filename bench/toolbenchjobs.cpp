#include "benchharness.h"

#include "core/items/brushfootprint.h"
#include "core/items/qsciimage.h"
#include "core/processing/brushsmoothing.h"
#include "core/processing/doubletip.h"

#include <memory>

namespace {

/** The tools' own computations on the field: what a click or a stroke costs on an image of that size. */
QList<BenchJob> toolJobs(BenchContext& context)
{
    auto item = std::make_shared<std::unique_ptr<QSciImage>>();
    BenchField* field = &context.field;
    auto makeItem = [item, field]() {
        if (*item)
            return;
        *item = std::make_unique<QSciImage>(field->width, field->height, Qt::white);
        if (!(*item)->setZMatrix(field->z))
            qFatal("tool bench: the field does not match its size");
    };
    QList<BenchJob> jobs;
    // Two marks a tenth of the field apart at a ratio of 0.3, the vector searched: the preview of the double-tip
    // tool.
    jobs.append({ QStringLiteral("double_tip"),
        [item]() {
            const QSciImage& i = **item;
            const QPoint feature(i.width() / 3, i.height() / 3);
            const QVector<double> z
                = DoubleTip::resolved(i, feature, feature + QPoint(i.width() / 10, i.height() / 20), 0.3);
            if (z.isEmpty())
                qFatal("tool bench: nothing resolved");
        },
        makeItem });
    // One stroke of radius 10 across the field, smoothed over radius 3; the matrix is restored untimed.
    jobs.append({ QStringLiteral("smoothen_brush"),
        [item]() {
            QSciImage& i = **item;
            const BrushFootprint stroke(
                i.size(), QPolygon(QVector<QPoint> { QPoint(0, 0), QPoint(i.width() - 1, i.height() - 1) }), 10);
            BrushSmoothing::apply(i, stroke, 3);
        },
        [item, field, makeItem]() {
            makeItem();
            if (!(*item)->setZMatrix(field->z))
                qFatal("tool bench: the field does not match its size");
        } });
    return jobs;
}

const BenchRegistration registration(45, toolJobs);

} // namespace
