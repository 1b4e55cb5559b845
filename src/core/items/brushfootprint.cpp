#include "brushfootprint.h"

#include <algorithm>
#include <cmath>

BrushFootprint::BrushFootprint(const QSize& size, const QPolygon& path, double radius)
{
    if (path.isEmpty() || size.isEmpty())
        return;
    const int reach = int(std::ceil(std::max(0.0, radius)));
    const QRect within = path.boundingRect().adjusted(-reach, -reach, reach, reach) & QRect(QPoint(), size);
    if (within.isEmpty())
        return;
    const int bw = within.width();
    QVector<uchar> inside(qsizetype(bw) * within.height(), 0);
    const double r2 = radius * radius + 1e-9;
    const auto segment = [&](const QPoint& a, const QPoint& b) {
        const double dx = b.x() - a.x(), dy = b.y() - a.y(), length2 = dx * dx + dy * dy;
        const QRect box = QRect(a, b).normalized().adjusted(-reach, -reach, reach, reach) & within;
        for (int row = box.top(); row <= box.bottom(); ++row)
            for (int x = box.left(); x <= box.right(); ++x) {
                // Distance from the point to the nearest point of the segment.
                double t = length2 > 0 ? ((x - a.x()) * dx + (row - a.y()) * dy) / length2 : 0;
                t = std::clamp(t, 0.0, 1.0);
                const double ex = x - (a.x() + t * dx), ey = row - (a.y() + t * dy);
                if (ex * ex + ey * ey <= r2)
                    inside[qsizetype(row - within.top()) * bw + x - within.left()] = 1;
            }
    };
    if (path.size() == 1)
        segment(path.first(), path.first());
    for (int i = 0; i + 1 < path.size(); ++i)
        segment(path.at(i), path.at(i + 1));

    // Shrink to what was covered, so callers loop over no more than the stroke.
    int left = within.right() + 1, right = -1, top = within.bottom() + 1, bottom = -1;
    for (int row = within.top(); row <= within.bottom(); ++row)
        for (int x = within.left(); x <= within.right(); ++x)
            if (inside[qsizetype(row - within.top()) * bw + x - within.left()]) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, row);
                bottom = std::max(bottom, row);
            }
    if (right < 0)
        return;
    m_bounds = QRect(QPoint(left, top), QPoint(right, bottom));
    m_inside.resize(qsizetype(m_bounds.width()) * m_bounds.height());
    for (int row = top; row <= bottom; ++row)
        for (int x = left; x <= right; ++x)
            m_inside[qsizetype(row - top) * m_bounds.width() + x - left]
                = inside[qsizetype(row - within.top()) * bw + x - within.left()];
}

qsizetype BrushFootprint::count() const
{
    return std::count(m_inside.cbegin(), m_inside.cend(), uchar(1));
}
