#pragma once

#include <vector>

class ProgressSink;

/**
 * Least-squares polynomial surfaces over a z-matrix held column by column: the sum of c(i,j) u^i v^j with
 * i + j <= order, u and v the column and row mapped onto [-1, 1] so that the normal equations stay well
 * conditioned on large matrices. The fit runs over every point or over the selected points of a mask; the
 * moments are gathered column by column and solved with a pivoting QR decomposition (Eigen).
 */
class SurfaceFit final {
public:
    /** The coefficients in the order (0,0), (1,0), (0,1), (2,0), (1,1), (0,2), ... */
    using Coefficients = std::vector<double>;

    static int termCount(int order) { return (order + 1) * (order + 2) / 2; }

    /**
     * Fits the surface of @p order to @p z (@p mask non-null: only its selected points). False when there are no
     * points to fit or @p progress asked to stop.
     */
    [[nodiscard]] static bool fit(const double* z, const unsigned char* mask, int width, int height, int order,
        Coefficients* coefficients, ProgressSink* progress = nullptr);
    /** Subtracts the surface from every point of @p z. False when @p progress asked to stop. */
    [[nodiscard]] static bool subtract(double* z, int width, int height, int order, const Coefficients& coefficients,
        ProgressSink* progress = nullptr);
    /** The surface at column @p x and row @p y. */
    static double at(int x, int y, int width, int height, int order, const Coefficients& coefficients);

    /** The column @p x on [-1, 1]. */
    static double u(int x, int width) { return width > 1 ? (2.0 * x - (width - 1)) / (width - 1) : 0.0; }
};
