#include "surfacefit.h"

#include "progressiveloop.h"

#include <Eigen/Dense>
#include <QMutex>
#include <QString>
#include <algorithm>
#include <cmath>

namespace {

constexpr int Band = 16;

/** powers[j * n + k]: the k-th coordinate of @p n to the power j, for j up to @p degree. */
std::vector<double> powers(int n, int degree)
{
    std::vector<double> table(size_t(degree + 1) * size_t(n));
    for (int k = 0; k < n; ++k) {
        const double t = SurfaceFit::u(k, n);
        double p = 1;
        for (int j = 0; j <= degree; ++j) {
            table[size_t(j) * n + k] = p;
            p *= t;
        }
    }
    return table;
}

} // namespace

bool SurfaceFit::fit(const double* z, const unsigned char* mask, int width, int height, int order,
    Coefficients* coefficients, ProgressSink* progress)
{
    const int degree = 2 * order;
    const std::vector<double> vpow = powers(height, degree);
    const std::vector<double> upow = powers(width, degree);
    // moments[a][b] = sum u^a v^b, rhs[i][j] = sum z u^i v^j over the fitted points, gathered in long double.
    std::vector<long double> moments(size_t(degree + 1) * (degree + 1), 0.0L),
        rhs(size_t(order + 1) * (order + 1), 0.0L);
    std::vector<double> allRows(degree + 1, 0.0);
    if (!mask)
        for (int b = 0; b <= degree; ++b)
            for (int y = 0; y < height; ++y)
                allRows[b] += vpow[size_t(b) * height + y];
    QMutex lock;
    const int units = (width + Band - 1) / Band;
    const bool done = ProgressiveLoop::run(units, progress, QString(), [&](int unit) {
        std::vector<long double> m(moments.size(), 0.0L), r(rhs.size(), 0.0L);
        std::vector<double> rows(degree + 1), sums(order + 1);
        for (int x = unit * Band; x < std::min(width, (unit + 1) * Band); ++x) {
            const double* column = z + size_t(x) * height;
            const unsigned char* used = mask ? mask + size_t(x) * height : nullptr;
            if (!used && order == 1) {
                // A plane over every point: one pass for both sums, the row coordinate counted, not loaded.
                double s0 = 0, sy = 0, y = 0;
                for (int k = 0; k < height; ++k, y += 1) {
                    s0 += column[k];
                    sy += y * column[k];
                }
                sums[0] = s0;
                sums[1] = height > 1 ? (2 * sy - (height - 1) * s0) / (height - 1) : 0.0;
            }
            for (int j = 0; j <= order && (used || order != 1); ++j) {
                const double* vp = &vpow[size_t(j) * height];
                double s = 0;
                if (used) {
                    for (int y = 0; y < height; ++y)
                        s += used[y] ? column[y] * vp[y] : 0.0;
                } else {
                    for (int y = 0; y < height; ++y)
                        s += column[y] * vp[y];
                }
                sums[j] = s;
            }
            if (used) {
                for (int b = 0; b <= degree; ++b) {
                    const double* vp = &vpow[size_t(b) * height];
                    double s = 0;
                    for (int y = 0; y < height; ++y)
                        s += used[y] ? vp[y] : 0.0;
                    rows[b] = s;
                }
            } else {
                rows = allRows;
            }
            for (int a = 0; a <= degree; ++a) {
                const double ua = upow[size_t(a) * width + x];
                for (int b = 0; b <= degree; ++b)
                    m[size_t(a) * (degree + 1) + b] += ua * rows[b];
            }
            for (int i = 0; i <= order; ++i) {
                const double ui = upow[size_t(i) * width + x];
                for (int j = 0; j <= order; ++j)
                    r[size_t(i) * (order + 1) + j] += ui * sums[j];
            }
        }
        QMutexLocker locked(&lock);
        for (size_t k = 0; k < m.size(); ++k)
            moments[k] += m[k];
        for (size_t k = 0; k < r.size(); ++k)
            rhs[k] += r[k];
    });
    if (!done || moments[0] < 1)
        return false;

    // Terms in the order (0,0), (1,0), (0,1), (2,0), (1,1), (0,2), ...
    std::vector<std::pair<int, int>> terms;
    for (int d = 0; d <= order; ++d)
        for (int j = 0; j <= d; ++j)
            terms.emplace_back(d - j, j);
    const int n = int(terms.size());
    Eigen::MatrixXd a(n, n);
    Eigen::VectorXd b(n);
    for (int p = 0; p < n; ++p) {
        for (int q = 0; q < n; ++q)
            a(p, q) = double(
                moments[size_t(terms[p].first + terms[q].first) * (degree + 1) + terms[p].second + terms[q].second]);
        b(p) = double(rhs[size_t(terms[p].first) * (order + 1) + terms[p].second]);
    }
    const Eigen::VectorXd c = a.completeOrthogonalDecomposition().solve(b);
    coefficients->assign(c.data(), c.data() + n);
    return std::all_of(coefficients->begin(), coefficients->end(), [](double v) { return std::isfinite(v); });
}

bool SurfaceFit::subtract(double* z, int width, int height, int order, const Coefficients& c, ProgressSink* progress)
{
    const std::vector<double> vpow = powers(height, order);
    const int units = (width + Band - 1) / Band;
    return ProgressiveLoop::run(units, progress, QString(), [&](int unit) {
        std::vector<double> perRow(order + 1);
        for (int x = unit * Band; x < std::min(width, (unit + 1) * Band); ++x) {
            // For a fixed column the surface is a polynomial in v alone.
            const double t = u(x, width);
            std::fill(perRow.begin(), perRow.end(), 0.0);
            size_t k = 0;
            for (int d = 0; d <= order; ++d)
                for (int j = 0; j <= d; ++j, ++k)
                    perRow[j] += c[k] * std::pow(t, d - j);
            double* column = z + size_t(x) * height;
            const double* v = &vpow[size_t(std::min(order, 1)) * height];
            if (order <= 1) {
                // The plane along a column is a line: its value at each row follows from the first and the step.
                const double c1 = order == 1 ? perRow[1] : 0.0;
                const double first = perRow[0] + c1 * v[0], step = height > 1 ? c1 * 2.0 / (height - 1) : 0.0;
                for (int y = 0; y < height; ++y)
                    column[y] -= first + step * y;
                continue;
            }
            for (int y = 0; y < height; ++y) {
                double background = perRow[order];
                for (int j = order - 1; j >= 0; --j)
                    background = background * v[y] + perRow[j];
                column[y] -= background;
            }
        }
    });
}

double SurfaceFit::at(int x, int y, int width, int height, int order, const Coefficients& c)
{
    const double ux = u(x, width), vy = u(y, height);
    double sum = 0;
    size_t k = 0;
    for (int d = 0; d <= order; ++d)
        for (int j = 0; j <= d; ++j, ++k)
            sum += c[k] * std::pow(ux, d - j) * std::pow(vy, j);
    return sum;
}
