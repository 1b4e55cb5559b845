#pragma once

#include <QVector>

/**
 * A z-matrix reduced for drawing as a surface: each cell is the mean of the finite values of the block of data
 * points it covers, so that a large item stays light to draw and noise does not alias into stripes. Cells with no
 * finite value are NaN.
 */
class SurfaceGrid final {
public:
    int columns = 0;
    int rows = 0;
    /** Row-major, row 0 at the top. */
    QVector<double> z;

    /**
     * @p data is @p width x @p height, row-major. The result has at most @p maxColumns x @p maxRows cells (at
     * least 2 x 2 where the data allows) and keeps the data's aspect ratio.
     */
    static SurfaceGrid reduce(const double* data, int width, int height, int maxColumns, int maxRows);

    double at(int column, int row) const { return z[qsizetype(row) * columns + column]; }
};
