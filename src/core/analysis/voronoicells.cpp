#include "voronoicells.h"

#include "core/base/parallel.h"

#include <limits>

std::vector<int> VoronoiCells::label(const QVector<QPointF>& centres, int width, int height, double xStep, double yStep)
{
    std::vector<int> cells;
    if (centres.isEmpty() || width <= 0 || height <= 0)
        return cells;
    cells.assign(size_t(width) * size_t(height), 0);
    const int k = centres.size();
    Parallel::forEach(
        width,
        [&](int x) {
            // Per column the x distance of each centre is fixed; only y varies in the inner loop.
            std::vector<double> dx2(static_cast<size_t>(k)), cy(static_cast<size_t>(k));
            for (int c = 0; c < k; ++c) {
                const double dx = (x - centres[c].x()) * xStep;
                dx2[size_t(c)] = dx * dx;
                cy[size_t(c)] = centres[c].y();
            }
            int* column = cells.data() + size_t(x) * size_t(height);
            for (int y = 0; y < height; ++y) {
                double best = std::numeric_limits<double>::infinity();
                int bestCell = 0;
                for (int c = 0; c < k; ++c) {
                    const double dy = (y - cy[size_t(c)]) * yStep;
                    const double d = dx2[size_t(c)] + dy * dy;
                    if (d < best) {
                        best = d;
                        bestCell = c;
                    }
                }
                column[y] = bestCell;
            }
        },
        Parallel::Schedule::Contiguous);
    return cells;
}

std::vector<qint64> VoronoiCells::counts(const std::vector<int>& cells, int cellCount)
{
    std::vector<qint64> n(size_t(std::max(0, cellCount)), 0);
    for (const int c : cells)
        if (c >= 0 && c < cellCount)
            ++n[size_t(c)];
    return n;
}

QVector<uchar> VoronoiCells::borders(const std::vector<int>& cells, int width, int height)
{
    QVector<uchar> mask(qsizetype(width) * height, 0);
    if (cells.size() != size_t(mask.size()))
        return mask;
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y) {
            const size_t p = size_t(x) * size_t(height) + size_t(y);
            const int c = cells[p];
            if ((x + 1 < width && cells[p + size_t(height)] != c) || (y + 1 < height && cells[p + 1] != c)
                || (x > 0 && cells[p - size_t(height)] != c) || (y > 0 && cells[p - 1] != c))
                mask[qsizetype(p)] = 1;
        }
    return mask;
}
