#include "lineprofile.h"

#include "core/items/qsciimage.h"

#include <algorithm>
#include <cmath>

namespace {

/** Bilinear z at display position (x, y); NaN outside the item or where a neighbour is not finite. */
double bilinear(const QSciImage& item, double x, double yDisplay)
{
    const int w = item.width(), h = item.height();
    // The item keeps rows from the bottom.
    const double y = (h - 1) - yDisplay;
    if (!(x >= -0.5 && x <= w - 0.5 && y >= -0.5 && y <= h - 0.5))
        return qQNaN();
    const double cx = std::clamp(x, 0.0, double(w - 1)), cy = std::clamp(y, 0.0, double(h - 1));
    const int x0 = std::min(int(cx), w - 1), y0 = std::min(int(cy), h - 1);
    const int x1 = std::min(x0 + 1, w - 1), y1 = std::min(y0 + 1, h - 1);
    const double fx = cx - x0, fy = cy - y0;
    const double top = item.z(x0, y0) * (1 - fx) + item.z(x1, y0) * fx;
    const double bottom = item.z(x0, y1) * (1 - fx) + item.z(x1, y1) * fx;
    return top * (1 - fy) + bottom * fy;
}

} // namespace

LineProfile LineProfile::sample(const QSciImage& item, const QPointF& from, const QPointF& to, int width)
{
    LineProfile p;
    p.from = from;
    p.to = to;
    p.width = std::clamp(width, 1, std::max(1, std::max(item.width(), item.height())));
    const QSciImage::SciValues& sci = item.sciValues();
    p.distanceUnit = sci.xUnit;
    p.zUnit = sci.zUnit;
    const double dx = to.x() - from.x(), dy = to.y() - from.y();
    const double length = std::hypot(dx, dy);
    if (!std::isfinite(length))
        return p;
    const int count = int(std::min<double>(MaxSamples, std::ceil(length))) + 1;
    // Across the line: the unit normal, in points.
    const double nx = length > 0 ? -dy / length : 0, ny = length > 0 ? dx / length : 0;
    const double physicalDx = dx * sci.xUnitPerPixel, physicalDy = dy * sci.yUnitPerPixel;
    const double physicalLength = std::hypot(physicalDx, physicalDy);
    p.distance.resize(count);
    p.z.resize(count);
    for (int i = 0; i < count; ++i) {
        const double t = count > 1 ? double(i) / (count - 1) : 0;
        const double x = from.x() + t * dx, y = from.y() + t * dy;
        double sum = 0;
        int used = 0;
        for (int k = 0; k < p.width; ++k) {
            const double offset = k - (p.width - 1) / 2.0;
            const double value = bilinear(item, x + offset * nx, y + offset * ny);
            if (std::isfinite(value)) {
                sum += value;
                ++used;
            }
        }
        p.distance[i] = t * physicalLength;
        p.z[i] = used ? sum / used : qQNaN();
    }
    return p;
}

QString LineProfile::toCsv() const
{
    const auto head = [](const char* name, const QString& unit) -> QString {
        if (unit.isEmpty())
            return QLatin1String(name);
        return QLatin1String(name) + QLatin1String(" [") + unit + QLatin1Char(']');
    };
    QString text = head("distance", distanceUnit) + QLatin1Char(',') + head("z", zUnit) + QLatin1Char('\n');
    for (int i = 0; i < size(); ++i)
        text += QString::number(distance[i], 'g', 17) + QLatin1Char(',') + QString::number(z[i], 'g', 17)
            + QLatin1Char('\n');
    return text;
}
