#include "convolution.h"

#include "progressiveloop.h"

#include <QString>
#include <algorithm>
#include <cmath>

namespace {

constexpr int Band = 16;

/** The column with @p r mirrored points before and after it. */
void pad(const double* column, int h, int r, double* padded)
{
    std::copy(column, column + h, padded + r);
    for (int i = 1; i <= r; ++i) {
        padded[r - i] = column[Convolution::mirror(-i, h)];
        padded[r + h - 1 + i] = column[Convolution::mirror(h - 1 + i, h)];
    }
}

} // namespace

std::vector<double> Convolution::gaussian(double sigma)
{
    if (!(sigma > 0))
        return { 1.0 };
    const int r = std::max(1, int(std::ceil(4 * sigma)));
    std::vector<double> k(2 * r + 1);
    double sum = 0;
    for (int i = -r; i <= r; ++i)
        sum += k[i + r] = std::exp(-0.5 * i * i / (sigma * sigma));
    for (double& v : k)
        v /= sum;
    return k;
}

bool Convolution::separable(const double* in, double* out, int w, int h, const std::vector<double>& along,
    const std::vector<double>& across, ProgressSink* progress)
{
    const int rx = int(along.size()) / 2, ry = int(across.size()) / 2;
    std::vector<double> temp(size_t(w) * h);
    // Down each column first (contiguous), with the column padded by its mirror image.
    const bool down = ProgressiveLoop::run((w + Band - 1) / Band, progress, QString(), [&](int unit) {
        std::vector<double> padded(size_t(h) + 2 * ry);
        for (int x = unit * Band; x < std::min(w, (unit + 1) * Band); ++x) {
            pad(in + size_t(x) * h, h, ry, padded.data());
            double* t = temp.data() + size_t(x) * h;
            std::fill(t, t + h, 0.0);
            for (int k = 0; k <= 2 * ry; ++k) {
                const double weight = across[k];
                const double* p = padded.data() + k;
                for (int y = 0; y < h; ++y)
                    t[y] += weight * p[y];
            }
        }
    });
    if (!down)
        return false;
    // Then across the columns: whole columns weighted and summed, still contiguous.
    return ProgressiveLoop::run((w + Band - 1) / Band, progress, QString(), [&](int unit) {
        for (int x = unit * Band; x < std::min(w, (unit + 1) * Band); ++x) {
            double* o = out + size_t(x) * h;
            std::fill(o, o + h, 0.0);
            for (int k = -rx; k <= rx; ++k) {
                const double weight = along[k + rx];
                const double* t = temp.data() + size_t(mirror(x + k, w)) * h;
                for (int y = 0; y < h; ++y)
                    o[y] += weight * t[y];
            }
        }
    });
}

bool Convolution::apply(const double* in, double* out, int w, int h, const Kernel& kernel, ProgressSink* progress)
{
    const int rx = kernel.rx, ry = kernel.ry;
    return ProgressiveLoop::run((w + Band - 1) / Band, progress, QString(), [&](int unit) {
        std::vector<double> padded(size_t(h) + 2 * ry);
        for (int x = unit * Band; x < std::min(w, (unit + 1) * Band); ++x) {
            double* o = out + size_t(x) * h;
            std::fill(o, o + h, 0.0);
            for (int dx = -rx; dx <= rx; ++dx) {
                pad(in + size_t(mirror(x + dx, w)) * h, h, ry, padded.data());
                for (int dy = -ry; dy <= ry; ++dy) {
                    const double weight = kernel.at(dx, dy);
                    if (weight == 0)
                        continue;
                    const double* p = padded.data() + ry + dy;
                    for (int y = 0; y < h; ++y)
                        o[y] += weight * p[y];
                }
            }
        }
    });
}
