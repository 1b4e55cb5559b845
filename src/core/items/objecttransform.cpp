#include "objecttransform.h"

#include <algorithm>
#include <cmath>

namespace {

double normalisedAngle(double degrees)
{
    double d = std::fmod(degrees, 180.0);
    if (d < 0)
        d += 180;
    return d >= 180 ? d - 180 : d;
}

} // namespace

void ObjectTransform::apply(
    QList<QSciSingleObject>& objects, int newWidth, int newHeight, const std::function<QPoint(int, int)>& map)
{
    const auto move = [&](const QPoint& p) { return map(p.x(), p.y()); };
    const auto inside
        = [&](const QPoint& p) { return p.x() >= 0 && p.y() >= 0 && p.x() < newWidth && p.y() < newHeight; };
    // Every map here is affine, so its linear part turns the axis directions.
    const QPoint origin = map(0, 0), ex = map(1, 0) - origin, ey = map(0, 1) - origin;
    const auto turn = [&](double degrees) {
        const double r = degrees * M_PI / 180, c = std::cos(r), s = std::sin(r);
        return normalisedAngle(std::atan2(ex.y() * c + ey.y() * s, ex.x() * c + ey.x() * s) * 180 / M_PI);
    };

    QList<QSciSingleObject> kept;
    for (QSciSingleObject o : objects) {
        bool whole = true;
        for (QPoint& p : o.fillPixels) {
            p = move(p);
            whole = whole && inside(p);
        }
        if (!whole)
            continue;
        for (QVector<QPoint>* list : { &o.borderPixels, &o.skeletonPixels, &o.skeletonLargestBranch })
            for (QPoint& p : *list)
                p = move(p);
        for (QPoint* p : { &o.rMaxVector, &o.rMinVector, &o.mainFirstAxisP1, &o.mainFirstAxisP2, &o.mainSecondAxisP1,
                 &o.mainSecondAxisP2, &o.largestExtentP1, &o.largestExtentP2, &o.zMinAt, &o.zMaxAt, &o.borderZMinAt,
                 &o.borderZMaxAt })
            *p = move(*p);
        if (!o.fillPixels.isEmpty()) {
            int minX = newWidth, minY = newHeight, maxX = -1, maxY = -1;
            for (const QPoint& p : o.fillPixels) {
                minX = std::min(minX, p.x());
                maxX = std::max(maxX, p.x());
                minY = std::min(minY, p.y());
                maxY = std::max(maxY, p.y());
            }
            o.width = maxX - minX + 1;
            o.height = maxY - minY + 1;
            o.boundingBox = QRect(QPoint(minX, minY), QPoint(maxX, maxY));
        }
        o.mainFirstAxisAngle = turn(o.mainFirstAxisAngle);
        o.mainSecondAxisAngle = turn(o.mainSecondAxisAngle);
        kept.append(o);
    }
    objects = kept;
}
