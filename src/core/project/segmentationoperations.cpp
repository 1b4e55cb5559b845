#include "segmentationoperations.h"

#include "operationscope.h"
#include "objectoperations.h"
#include "project.h"

#include "core/analysis/imagesegmentation.h"
#include "core/analysis/objectmeasures.h"
#include "core/analysis/objectrecognitionoptions.h"
#include "core/base/parallel.h"
#include "core/items/qsciimage.h"
#include "core/items/qscisingleobject.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <functional>

namespace {

/** Records with measures for @p regions of @p z; each region's cubage counts from its lowest point. */
QList<QSciSingleObject> records(
    const ImageSegmentation::Regions& regions, const QVector<double>& z, int width, int height)
{
    std::vector<QSciSingleObject> made(regions.size());
    const MeasureInput input { z.constData(), width, height };
    Parallel::forEach(int(made.size()), [&](int i) {
        QSciSingleObject& record = made[size_t(i)];
        const std::vector<int>& pixels = regions[size_t(i)];
        record.fillPixels.reserve(int(pixels.size()));
        double lowest = INFINITY;
        for (const int index : pixels) {
            record.fillPixels.append(QPoint(index / height, index % height));
            if (std::isfinite(z[index]))
                lowest = std::min(lowest, z[index]);
        }
        ObjectMeasures::computeAll(record, input, std::isfinite(lowest) ? lowest : 0.0);
    });
    QList<QSciSingleObject> list;
    list.reserve(int(made.size()));
    for (QSciSingleObject& record : made)
        list.append(std::move(record));
    return list;
}

/** Adds @p found to @p item's objects after its highest number; false when the change could not be recorded. */
bool store(OperationScope& scope, QSciImage* item, QList<QSciSingleObject> found)
{
    if (!scope.record(item, QSciImage::ObjectsPart))
        return false;
    ObjectOperations::numberAfterLayer(*item, found);
    ObjectOperations::addToLayer(*item, found, true, ObjectRecognitionOptions().labelSize);
    return true;
}

using Segment = std::function<ImageSegmentation::Regions(const QSciImage&, const QVector<double>&)>;

SegmentationOperations::Outcome run(Project& project, const QList<QSciImage*>& items, const QString& name,
    const QString& parameters, const Segment& segment, QString* message)
{
    if (items.isEmpty())
        return SegmentationOperations::Outcome::Applied;
    OperationScope scope(&project, project.tabOf(items.first()), name);
    scope.setLogParameters(parameters);
    QList<int> counts;
    for (QSciImage* item : items) {
        const QVector<double> z = item->zMatrix();
        const QList<QSciSingleObject> found = records(segment(*item, z), z, item->width(), item->height());
        if (!store(scope, item, found)) {
            scope.rollback();
            if (message)
                message->clear();
            return SegmentationOperations::Outcome::Refused;
        }
        counts.append(found.size());
    }
    scope.commit();
    if (message)
        *message = ObjectOperations::foundText(counts);
    return SegmentationOperations::Outcome::Applied;
}

} // namespace

QString SegmentationOperations::noMaskText()
{
    return QCoreApplication::translate("SegmentationOperations", "Select the areas to turn into objects first.");
}

SegmentationOperations::Outcome SegmentationOperations::maskToObjects(
    Project& project, const QList<QSciImage*>& items, int connectivity, QString* message)
{
    QList<QSciImage*> masked;
    for (QSciImage* item : items)
        if (item->maskSelectedCount() > 0)
            masked.append(item);
    if (masked.isEmpty()) {
        if (message)
            *message = noMaskText();
        return Outcome::Refused;
    }
    const int connect = connectivity == 4 ? 4 : 8;
    return run(
        project, masked, QCoreApplication::translate("SegmentationOperations", "Transform mask to objects"),
        QStringLiteral("connectivity=%1").arg(connect),
        [connect](const QSciImage& item, const QVector<double>&) {
            const QVector<uchar> mask = item.maskMatrix();
            return ImageSegmentation::maskComponents(mask.constData(), item.width(), item.height(), connect);
        },
        message);
}

SegmentationOperations::Outcome SegmentationOperations::watershed(
    Project& project, const QList<QSciImage*>& items, double minDepth, QString* message)
{
    return run(
        project, items, QCoreApplication::translate("SegmentationOperations", "Watershed"),
        minDepth > 0 ? QStringLiteral("minDepth=%1").arg(minDepth) : QString(),
        [minDepth](const QSciImage& item, const QVector<double>& z) {
            QVector<uchar> domain = item.maskMatrix();
            double low = INFINITY, high = -INFINITY, sum = 0;
            qsizetype finite = 0;
            for (const double v : z)
                if (std::isfinite(v)) {
                    low = std::min(low, v);
                    high = std::max(high, v);
                    sum += v;
                    ++finite;
                }
            if (item.maskSelectedCount() == 0 && finite > 0) {
                const double mean = sum / double(finite);
                domain.resize(z.size());
                for (qsizetype i = 0; i < z.size(); ++i)
                    domain[i] = z[i] > mean ? 1 : 0;
            }
            const double depth = minDepth > 0 ? minDepth : finite > 0 ? (high - low) / 20 : 0;
            return ImageSegmentation::watershed(z.constData(), domain.constData(), item.width(), item.height(), depth);
        },
        message);
}
