#pragma once

#include <cstddef>
#include <vector>

class ProgressSink;

/**
 * Convolutions of a z-matrix held column by column, with the matrix mirrored at its edges (the point beyond the
 * edge is the one as far inside), so a kernel never sees invented values. Kernels are applied as they are
 * written: the weight at offset (dx, dy) multiplies the point at (x + dx, y + dy).
 */
class Convolution final {
public:
    /** A (2 rx + 1) x (2 ry + 1) kernel, weights[(dy + ry) * (2 rx + 1) + dx + rx], dy up the rows. */
    struct Kernel {
        int rx = 0;
        int ry = 0;
        std::vector<double> weights;
        double at(int dx, int dy) const { return weights[std::size_t(dy + ry) * (2 * rx + 1) + dx + rx]; }
    };

    /** The index that stands for @p i on an axis of @p n points. */
    static int mirror(int i, int n)
    {
        if (n == 1)
            return 0;
        const int period = 2 * (n - 1);
        i %= period;
        if (i < 0)
            i += period;
        return i < n ? i : period - i;
    }

    /** out = in convolved with @p along (over x) and @p across (over y), both of odd length. False: stopped. */
    [[nodiscard]] static bool separable(const double* in, double* out, int width, int height,
        const std::vector<double>& along, const std::vector<double>& across, ProgressSink* progress = nullptr);
    /** out = in convolved with @p kernel. False: stopped. */
    [[nodiscard]] static bool apply(
        const double* in, double* out, int width, int height, const Kernel& kernel, ProgressSink* progress = nullptr);

    /** The normalised Gaussian of @p sigma points, cut at 4 sigma; {1} for sigma <= 0. */
    static std::vector<double> gaussian(double sigma);
};
