#pragma once

#include <QPolygon>
#include <QRect>
#include <QVector>

/**
 * The points a round brush of a given radius covers along a path, in display coordinates of an item
 * (row 0 on top), clipped to the item. Brush tools build one per stroke, so the whole stroke changes
 * each point once.
 */
class BrushFootprint final {
public:
    BrushFootprint() = default;
    /** Every point within @p radius of the polyline through @p path (a single point: a disc), inside @p size. */
    BrushFootprint(const QSize& size, const QPolygon& path, double radius);

    /** The bounding rectangle of the covered points; empty when none. */
    QRect bounds() const { return m_bounds; }
    bool isEmpty() const { return m_bounds.isEmpty(); }
    bool covers(int x, int row) const
    {
        return m_bounds.contains(x, row)
            && m_inside[qsizetype(row - m_bounds.top()) * m_bounds.width() + x - m_bounds.left()] != 0;
    }
    qsizetype count() const;

private:
    QRect m_bounds;
    QVector<uchar> m_inside; ///< bounds.width() x bounds.height(), rows from the top
};
