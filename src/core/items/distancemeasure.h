#pragma once

#include <QPoint>
#include <QString>

class QSciImage;

/**
 * The distance between two points of an item, in data points and in the item's physical units.
 * Angles are in degrees, counterclockwise from the +x axis with y pointing up as the item is shown,
 * in (-180, 180]; the physical angle differs from the point angle when x and y are scaled differently.
 */
class DistanceMeasure final {
public:
    /** @p from and @p to are display coordinates (row 0 on top). */
    static DistanceMeasure between(const QSciImage& item, const QPoint& from, const QPoint& to);

    double lengthPoints = 0;
    double anglePoints = 0;
    double lengthPhysical = 0;
    double anglePhysical = 0;
    /** The x unit; the y unit is assumed to match it. */
    QString unit;
    /** One line for the output page and the panel, e.g. "12.5 nm at 30°, 25 points at 30°". */
    QString text() const;
};
