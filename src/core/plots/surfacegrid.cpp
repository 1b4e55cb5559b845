#include "surfacegrid.h"

#include "core/base/parallel.h"

#include <algorithm>
#include <cmath>
#include <vector>

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
    double* out = grid.z.data();
    // Rows of cells are independent: each thread sums its own block rows.
    Parallel::forEach(grid.rows, [&](int row) {
        std::vector<double> sums(size_t(grid.columns), 0.0);
        std::vector<int> counts(size_t(grid.columns), 0);
        const int lastY = std::min(height, (row + 1) * step);
        for (int y = row * step; y < lastY; ++y) {
            const double* line = data + qsizetype(y) * width;
            for (int c = 0, x = 0; c < grid.columns; ++c) {
                const int lastX = std::min(width, x + step);
                double sum = 0;
                int count = 0;
                for (; x < lastX; ++x) {
                    if (std::isfinite(line[x])) {
                        sum += line[x];
                        ++count;
                    }
                }
                sums[size_t(c)] += sum;
                counts[size_t(c)] += count;
            }
        }
        double* cells = out + qsizetype(row) * grid.columns;
        for (int c = 0; c < grid.columns; ++c)
            cells[c] = counts[size_t(c)] ? sums[size_t(c)] / counts[size_t(c)] : qQNaN();
    });
    return grid;
}
