#include "radialspectra.h"

#include "fouriertransform.h"

#include <QMutex>
#include <algorithm>
#include <cmath>
#include <complex>
#include <fftw3.h>
#include <vector>

namespace {

/** The half spectrum (W x (H/2+1), column by column) of a W x H field. */
std::vector<std::complex<double>> forward(std::vector<double>& in, int w, int h)
{
    std::vector<std::complex<double>> out(size_t(w) * size_t(h / 2 + 1));
    fftw_plan plan;
    {
        QMutexLocker locked(&FourierTransform::plannerLock());
        plan = fftw_plan_dft_r2c_2d(w, h, in.data(), reinterpret_cast<fftw_complex*>(out.data()), FFTW_ESTIMATE);
    }
    fftw_execute(plan);
    QMutexLocker locked(&FourierTransform::plannerLock());
    fftw_destroy_plan(plan);
    return out;
}

double mean(const double* z, size_t n)
{
    double sum = 0;
    for (size_t i = 0; i < n; ++i)
        sum += z[i];
    return n ? sum / double(n) : 0;
}

/** Ring sums and counts, turned into a curve of ring centres and means. */
struct Rings {
    std::vector<double> sum;
    std::vector<double> weight;
    double step;

    Rings(int count, double ringStep)
        : sum(size_t(std::max(1, count)), 0)
        , weight(size_t(std::max(1, count)), 0)
        , step(ringStep)
    {
    }
    void add(double radius, double value, double w)
    {
        const long ring = std::lround(radius / step);
        if (ring >= 0 && size_t(ring) < sum.size()) {
            sum[size_t(ring)] += value * w;
            weight[size_t(ring)] += w;
        }
    }
    RadialSpectra::Curve curve() const
    {
        RadialSpectra::Curve c;
        for (size_t i = 0; i < sum.size(); ++i)
            if (weight[i] > 0) {
                c.x.append(double(i) * step);
                c.y.append(sum[i] / weight[i]);
            }
        return c;
    }
};

} // namespace

RadialSpectra::Curve RadialSpectra::powerSpectralDensity(const double* z, int w, int h, double dx, double dy)
{
    if (!z || w < 2 || h < 2 || !(dx > 0) || !(dy > 0))
        return {};
    const size_t n = size_t(w) * size_t(h);
    const double m = mean(z, n);
    std::vector<double> in(n);
    for (size_t i = 0; i < n; ++i)
        in[i] = z[i] - m;
    const std::vector<std::complex<double>> half = forward(in, w, h);
    const double dkx = 1 / (w * dx), dky = 1 / (h * dy);
    const double step = std::max(dkx, dky);
    const double nyquist = std::min(0.5 / dx, 0.5 / dy);
    Rings rings(int(std::floor(nyquist / step)) + 1, step);
    const int columns = h / 2 + 1;
    const double scale = dx * dy / double(n);
    for (int i = 0; i < w; ++i) {
        const double kx = (i <= w / 2 ? i : i - w) * dkx;
        for (int j = 0; j < columns; ++j) {
            // The mirrored half has the same |k|: columns other than 0 and H/2 stand for two coefficients.
            const double weight = (j == 0 || 2 * j == h) ? 1 : 2;
            rings.add(std::hypot(kx, j * dky), std::norm(half[size_t(i) * columns + j]) * scale, weight);
        }
    }
    return rings.curve();
}

RadialSpectra::Curve RadialSpectra::autocorrelation(const double* z, int w, int h, double dx, double dy)
{
    if (!z || w < 2 || h < 2 || !(dx > 0) || !(dy > 0))
        return {};
    const double m = mean(z, size_t(w) * size_t(h));
    const int pw = 2 * w, ph = 2 * h;
    std::vector<double> padded(size_t(pw) * size_t(ph), 0);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            padded[size_t(x) * ph + y] = z[size_t(x) * h + y] - m;
    std::vector<std::complex<double>> half = forward(padded, pw, ph);
    for (std::complex<double>& c : half)
        c = std::norm(c);
    std::vector<double> sums(padded.size());
    {
        fftw_plan plan;
        {
            QMutexLocker locked(&FourierTransform::plannerLock());
            plan = fftw_plan_dft_c2r_2d(
                pw, ph, reinterpret_cast<fftw_complex*>(half.data()), sums.data(), FFTW_ESTIMATE);
        }
        fftw_execute(plan);
        QMutexLocker locked(&FourierTransform::plannerLock());
        fftw_destroy_plan(plan);
    }
    const double step = std::max(dx, dy);
    const double reach = std::min(w * dx, h * dy) / 2;
    Rings rings(int(std::floor(reach / step)) + 1, step);
    const double norm = double(pw) * double(ph);
    const int mx = std::min(w - 1, int((reach + step) / dx)), my = std::min(h - 1, int((reach + step) / dy));
    for (int tx = -mx; tx <= mx; ++tx)
        for (int ty = -my; ty <= my; ++ty) {
            const double r = std::hypot(tx * dx, ty * dy);
            if (r > reach + step / 2)
                continue;
            const double pairs = double(w - std::abs(tx)) * double(h - std::abs(ty));
            const size_t at = size_t((tx + pw) % pw) * ph + size_t((ty + ph) % ph);
            // Each lag is weighted by its pairs, so rings are means over point pairs, not over lags.
            rings.add(r, sums[at] / norm / pairs, pairs);
        }
    return rings.curve();
}
