#include "planecorrection.h"

#include "core/items/qsciimage.h"

#include <QVector>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <numeric>

namespace {

// Below this many points the thread hand-off costs more than the pass itself.
constexpr qsizetype ParallelThreshold = 1 << 18;
constexpr int ColumnsPerBlock = 64;

struct Sums {
    double z = 0;
    double xz = 0;
    double yz = 0;
};

/** Runs @p work over fixed blocks of columns; the blocks do not depend on the thread count. */
template <typename Work> void forColumnBlocks(int width, int height, Work work)
{
    const int blocks = (width + ColumnsPerBlock - 1) / ColumnsPerBlock;
    const auto run = [&](int block) {
        const int first = block * ColumnsPerBlock;
        work(block, first, std::min(width, first + ColumnsPerBlock));
    };
    if (qsizetype(width) * height < ParallelThreshold || blocks < 2) {
        for (int block = 0; block < blocks; ++block)
            run(block);
        return;
    }
    QVector<int> indices(blocks);
    std::iota(indices.begin(), indices.end(), 0);
    QtConcurrent::blockingMap(indices, run);
}

} // namespace

PlaneCorrection::Plane PlaneCorrection::fitGlobalPlane(const double* z, int width, int height)
{
    Plane plane;
    if (width < 1 || height < 1 || !z)
        return plane;
    // Centred coordinates make the normal equations diagonal on a full grid: three sums in one pass.
    const double cx = (width - 1) / 2.0;
    const double cy = (height - 1) / 2.0;
    const int blocks = (width + ColumnsPerBlock - 1) / ColumnsPerBlock;
    QVector<Sums> partial(blocks);
    forColumnBlocks(width, height, [&](int block, int first, int last) {
        Sums s;
        for (int x = first; x < last; ++x) {
            const double* column = z + qsizetype(x) * height;
            double sumZ = 0, sumYZ = 0;
            for (int y = 0; y < height; ++y) {
                sumZ += column[y];
                sumYZ += (y - cy) * column[y];
            }
            s.z += sumZ;
            s.xz += (x - cx) * sumZ;
            s.yz += sumYZ;
        }
        partial[block] = s;
    });
    Sums total;
    for (const Sums& s : qAsConst(partial)) {
        total.z += s.z;
        total.xz += s.xz;
        total.yz += s.yz;
    }
    const double n = double(width) * height;
    // Sum of (x - cx)^2 over the grid: height * width * (width^2 - 1) / 12, likewise for y.
    const double sxx = n * (double(width) * width - 1) / 12.0;
    const double syy = n * (double(height) * height - 1) / 12.0;
    const double mean = total.z / n;
    plane.b = sxx > 0 ? total.xz / sxx : 0;
    plane.c = syy > 0 ? total.yz / syy : 0;
    plane.a = mean - plane.b * cx - plane.c * cy;
    return plane;
}

PlaneCorrection::Plane PlaneCorrection::subtractGlobalPlane(double* z, int width, int height)
{
    const Plane plane = fitGlobalPlane(z, width, height);
    if (width < 1 || height < 1 || !z)
        return plane;
    forColumnBlocks(width, height, [&](int, int first, int last) {
        for (int x = first; x < last; ++x) {
            double* column = z + qsizetype(x) * height;
            const double base = plane.a + plane.b * x;
            for (int y = 0; y < height; ++y)
                column[y] -= base + plane.c * y;
        }
    });
    return plane;
}

PlaneCorrection::Plane PlaneCorrection::subtractGlobalPlane(QSciImage& item)
{
    const Plane plane = subtractGlobalPlane(item.zData(), item.width(), item.height());
    item.notifyChanged(QSciImage::ZPart);
    return plane;
}
