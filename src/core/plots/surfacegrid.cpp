#include "surfacegrid.h"

#include <algorithm>
#include <cmath>

SurfaceGrid SurfaceGrid::reduce(const double* data, int width, int height, int maxColumns, int maxRows)
{
    SurfaceGrid grid;
    if (!data || width < 1 || height < 1)
        return grid;
    maxColumns = std::max(2, maxColumns);
    maxRows = std::max(2, maxRows);
    // One step for both axes keeps square data points square on the surface.
    const int step = std::max({ 1, (width + maxColumns - 1) / maxColumns, (height + maxRows - 1) / maxRows });
    grid.columns = (width + step - 1) / step;
    grid.rows = (height + step - 1) / step;
    grid.z.resize(qsizetype(grid.columns) * grid.rows);
    QVector<double> sums(grid.columns);
    QVector<int> counts(grid.columns);
    for (int row = 0; row < grid.rows; ++row) {
        std::fill(sums.begin(), sums.end(), 0.0);
        std::fill(counts.begin(), counts.end(), 0);
        const int lastY = std::min(height, (row + 1) * step);
        for (int y = row * step; y < lastY; ++y) {
            const double* line = data + qsizetype(y) * width;
            for (int x = 0; x < width; ++x) {
                if (std::isfinite(line[x])) {
                    sums[x / step] += line[x];
                    ++counts[x / step];
                }
            }
        }
        double* out = grid.z.data() + qsizetype(row) * grid.columns;
        for (int c = 0; c < grid.columns; ++c)
            out[c] = counts[c] ? sums[c] / counts[c] : qQNaN();
    }
    return grid;
}
