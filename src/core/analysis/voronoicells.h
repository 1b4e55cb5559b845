#pragma once

#include <QPointF>
#include <QVector>
#include <vector>

/**
 * The Voronoi tessellation of a field by a set of centres: every point belongs to the cell of its nearest centre,
 * measured in physical units so that cells stay true on non-square points. Cells at the field's edge are cut by
 * it, so their areas are those of the visible part. Ties go to the centre listed first.
 */
class VoronoiCells final {
public:
    /**
     * The cell index of every point in the item's order (x * height + y); empty without centres. @p xStep and
     * @p yStep are the physical size of one point.
     */
    static std::vector<int> label(const QVector<QPointF>& centres, int width, int height, double xStep, double yStep);

    /** Points per cell. */
    static std::vector<qint64> counts(const std::vector<int>& cells, int cellCount);

    /** 1 on points with a 4-neighbour in another cell, so the borders between cells can be drawn as a mask. */
    static QVector<uchar> borders(const std::vector<int>& cells, int width, int height);
};
