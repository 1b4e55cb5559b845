#include "objecttable.h"

#include "objectmeasures.h"

#include "core/items/qsciimage.h"
#include "core/items/qscisingleobject.h"

#include <QSet>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 12);
}

/** A label in its pixel and its physical form. */
struct Label {
    const char* pixel;
    const char* physical;
};

const Label Labels[] = {
    { "Object", "Object" },
    { "Image", "Image" },
    { "Area.pbm [px]", "Area.pbm [xUnits*yUnits]" },
    { "Area.pm [px]", "Area.pm [xUnits*yUnits]" },
    { "Circumference.pbm [px]", "Circumference.pbm [xUnits]" },
    { "Circumference.pm [px]", "Circumference.pm [xUnits]" },
    { "Compactness.pbm", "Compactness.pbm" },
    { "Compactness.pm", "Compactness.pm" },
    { "Fractal-dimension.bcm", "Fractal-dimension.bcm" },
    { "Width [px]", "Width [xUnits]" },
    { "Height [px]", "Height [yUnits]" },
    { "R.min", "R.min" },
    { "R.min.at.x", "R.min.at.x" },
    { "R.min.at.y", "R.min.at.y" },
    { "R.max", "R.max" },
    { "R.max.at.x", "R.max.at.x" },
    { "R.max.at.y", "R.max.at.y" },
    { "Centroid-of-area.at.x", "Centroid-of-area.at.x" },
    { "Centroid-of-area.at.y", "Centroid-of-area.at.y" },
    { "Centroid-of-cubage.at.x", "Centroid-of-cubage.at.x" },
    { "Centroid-of-cubage.at.y", "Centroid-of-cubage.at.y" },
    { "Cubage [px*zUnits]", "Cubage [xUnits*yUnits*zUnits]" },
    { "Z.bar", "Z.bar" },
    { "Z.min", "Z.min" },
    { "Z.max", "Z.max" },
    { "Z.mean", "Z.mean" },
    { "Z.range", "Z.range" },
    { "Z.std", "Z.std" },
    { "Border.z.min", "Border.z.min" },
    { "Border.z.max", "Border.z.max" },
    { "Border.z.mean", "Border.z.mean" },
    { "Border.z.range", "Border.z.range" },
    { "Border.z.std", "Border.z.std" },
    { "Heywood-diameter.pbm [px]", "Heywood-diameter.pbm [xUnits]" },
    { "Heywood-diameter.pm [px]", "Heywood-diameter.pm [xUnits]" },
    { "Main-axis-1.length [px]", "Main-axis-1.length [xUnits]" },
    { "Main-axis-1.angle", "Main-axis-1.angle" },
    { "Main-axis-2.length [px]", "Main-axis-2.length [xUnits]" },
    { "Main-axis-2.angle", "Main-axis-2.angle" },
    { "Aspect-ratio", "Aspect-ratio" },
    { "Elongation", "Elongation" },
    { "Largest-extent [px]", "Largest-extent [xUnits]" },
    { "Skeleton.length [px]", "Skeleton.length [xUnits]" },
    { "Skeleton.branches", "Skeleton.branches" },
    { "Bounding-box.left", "Bounding-box.left" },
    { "Bounding-box.top", "Bounding-box.top" },
    { "Bounding-box.right", "Bounding-box.right" },
    { "Bounding-box.bottom", "Bounding-box.bottom" },
};

} // namespace

QStringList ObjectTable::labels(bool physical)
{
    QStringList list;
    for (const Label& label : Labels)
        list << QString::fromLatin1(physical ? label.physical : label.pixel);
    return list;
}

QStringList ObjectTable::row(const QSciSingleObject& o, int index, const QSciImage& item, bool physical)
{
    const double sx = physical ? item.sciValues().xUnitPerPixel : 1;
    const double sy = physical ? item.sciValues().yUnitPerPixel : 1;
    const MeasureInput input { item.zData(), item.width(), item.height() };
    const QPointF area = ObjectMeasures::centroidOfArea(o);
    const QPointF cubage = ObjectMeasures::centroidOfCubage(o, input);
    return QStringList {
        QString::number(o.numberAt(index)),
        o.itemTitle.isEmpty() ? item.name() : o.itemTitle,
        number(o.areaPBM * sx * sy),
        number(o.areaPM * sx * sy),
        number(o.circumferencePBM * sx),
        number(o.circumferencePM * sx),
        number(o.compactnessPBM),
        number(o.compactnessPM),
        number(o.fracDim),
        number(o.width * sx),
        number(o.height * sy),
        number(o.rMin),
        QString::number(o.rMinVector.x()),
        QString::number(o.rMinVector.y()),
        number(o.rMax),
        QString::number(o.rMaxVector.x()),
        QString::number(o.rMaxVector.y()),
        number(area.x()),
        number(area.y()),
        number(cubage.x()),
        number(cubage.y()),
        number(o.cubage * sx * sy),
        number(o.zBar),
        number(o.zMin),
        number(o.zMax),
        number(o.zMean),
        number(o.zRange),
        number(o.stdWholeObject),
        number(o.borderZMin),
        number(o.borderZMax),
        number(o.borderZMean),
        number(o.borderZRange),
        number(o.stdBorder),
        number(o.heywoodDiameterPBM * sx),
        number(o.heywoodDiameterPM * sx),
        number(o.mainFirstAxisLength * sx),
        number(o.mainFirstAxisAngle),
        number(o.mainSecondAxisLength * sx),
        number(o.mainSecondAxisAngle),
        number(o.mainAxesAspectRatio),
        number(o.mainAxesElongation),
        number(o.largestExtentDistance * sx),
        number(o.skeletonMaxLength * sx),
        QString::number(o.skeletonNumberOfBranches),
        QString::number(o.boundingBox.left()),
        QString::number(o.boundingBox.top()),
        QString::number(o.boundingBox.right()),
        QString::number(o.boundingBox.bottom()),
    };
}

QVector<QStringList> ObjectTable::measures(const QList<const QSciImage*>& items, bool physical)
{
    QVector<QStringList> rows { labels(physical) };
    for (const QSciImage* item : items)
        for (int i = 0; i < item->objects().size(); ++i)
            rows.append(row(item->objects().at(i), i, *item, physical));
    return rows;
}

QStringList ObjectTable::summaryLabels(bool physical)
{
    return { QStringLiteral("Image"), QStringLiteral("Objects"),
        physical ? QStringLiteral("Mean area [xUnits*yUnits]") : QStringLiteral("Mean area [px]"),
        QStringLiteral("Coverage [%]") };
}

QStringList ObjectTable::summaryRow(const QSciImage& item, bool physical)
{
    // Objects may share points after hand edits; coverage counts each point once.
    QSet<qint64> covered;
    double area = 0;
    for (const QSciSingleObject& o : item.objects()) {
        area += o.areaPBM;
        for (const QPoint& p : o.fillPixels)
            covered.insert(qint64(p.x()) * item.height() + p.y());
    }
    const int count = item.objects().size();
    const double scale = physical ? item.sciValues().xUnitPerPixel * item.sciValues().yUnitPerPixel : 1;
    const double points = double(item.width()) * item.height();
    return { item.name(), QString::number(count), number(count ? area / count * scale : 0),
        number(100.0 * covered.size() / points) };
}

QVector<QStringList> ObjectTable::summary(const QList<const QSciImage*>& items, bool physical)
{
    QVector<QStringList> rows { summaryLabels(physical) };
    for (const QSciImage* item : items)
        rows.append(summaryRow(*item, physical));
    return rows;
}
