#include "distancemeasure.h"

#include "qsciimage.h"

#include <QCoreApplication>
#include <cmath>

namespace {

double degrees(double dy, double dx)
{
    if (dx == 0 && dy == 0)
        return 0;
    return std::atan2(dy, dx) * 180.0 / M_PI;
}

} // namespace

DistanceMeasure DistanceMeasure::between(const QSciImage& item, const QPoint& from, const QPoint& to)
{
    const double dx = to.x() - from.x();
    // Display rows grow downwards; angles are taken with y pointing up.
    const double dy = from.y() - to.y();
    const QSciImage::SciValues& sci = item.sciValues();
    const double px = dx * sci.xUnitPerPixel, py = dy * sci.yUnitPerPixel;
    DistanceMeasure m;
    m.lengthPoints = std::hypot(dx, dy);
    m.anglePoints = degrees(dy, dx);
    m.lengthPhysical = std::hypot(px, py);
    m.anglePhysical = degrees(py, px);
    m.unit = sci.xUnit;
    return m;
}

QString DistanceMeasure::text() const
{
    const QString physical = unit.isEmpty() ? QString::number(lengthPhysical, 'g', 6)
                                            : QString::number(lengthPhysical, 'g', 6) + QLatin1Char(' ') + unit;
    return QCoreApplication::translate("DistanceMeasure", "%1 at %2°, %3 points at %4°")
        .arg(physical, QString::number(anglePhysical, 'f', 2), QString::number(lengthPoints, 'g', 6),
            QString::number(anglePoints, 'f', 2));
}
