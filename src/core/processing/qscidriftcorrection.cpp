#include "qscidriftcorrection.h"

#include "progressiveloop.h"

#include "core/settings/options.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <vector>

QString QSciDriftCorrection::name() const
{
    return QCoreApplication::translate("QSciDriftCorrection", "Drift correction");
}

void QSciDriftCorrection::readSettings()
{
    m_options.maximumShift = std::clamp(::Options::getInt(QStringLiteral("DriftCorrection.maximumShift"), 10), 1, 1000);
}

void QSciDriftCorrection::writeSettings() const
{
    ::Options::setInt(QStringLiteral("DriftCorrection.maximumShift"), m_options.maximumShift);
}

double QSciDriftCorrection::rowShift(const double* below, const double* row, int length, int maximumShift)
{
    const int reach = std::min(maximumShift, length / 2);
    auto correlation = [&](int s) {
        // Pearson correlation over the overlap, so that shorter overlaps are not favoured or punished.
        const int from = std::max(0, -s), to = std::min(length, length - s);
        long double sa = 0, sb = 0, saa = 0, sbb = 0, sab = 0;
        for (int x = from; x < to; ++x) {
            const double a = below[x], b = row[x + s];
            sa += a;
            sb += b;
            saa += a * a;
            sbb += b * b;
            sab += a * b;
        }
        const long double n = to - from;
        const long double va = saa - sa * sa / n, vb = sbb - sb * sb / n;
        return va > 0 && vb > 0 ? double((sab - sa * sb / n) / std::sqrt(va * vb)) : 0.0;
    };
    std::vector<double> c(2 * reach + 1);
    int best = 0;
    for (int s = -reach; s <= reach; ++s) {
        c[s + reach] = correlation(s);
        if (c[s + reach] > c[best + reach])
            best = s;
    }
    if (best == -reach || best == reach)
        return best;
    const double l = c[best + reach - 1], m = c[best + reach], r = c[best + reach + 1];
    const double curvature = l - 2 * m + r;
    return curvature < 0 ? best + 0.5 * (l - r) / curvature : best;
}

bool QSciDriftCorrection::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const int w = input.width, h = input.height;
    if (w < 3 || h < 2)
        return true;
    // Rows are what drift: copy them out of the column-by-column matrix once.
    std::vector<double> rows(size_t(w) * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            rows[size_t(y) * w + x] = input.z[size_t(x) * h + y];
    std::vector<double> shift(h, 0.0);
    const bool done = ProgressiveLoop::run(h - 1, progress, name(), [&](int k) {
        const int y = k + 1;
        shift[y] = rowShift(&rows[size_t(y - 1) * w], &rows[size_t(y) * w], w, m_options.maximumShift);
    });
    if (!done)
        return false;
    for (int y = 1; y < h; ++y)
        shift[y] += shift[y - 1];
    for (int y = 0; y < h; ++y) {
        const double* row = &rows[size_t(y) * w];
        for (int x = 0; x < w; ++x) {
            // Points shifted in from beyond the row repeat its end.
            const double at = std::clamp(x + shift[y], 0.0, double(w - 1));
            const int left = std::min(int(at), w - 2);
            const double t = at - left;
            out[size_t(x) * h + y] = row[left] * (1 - t) + row[left + 1] * t;
        }
    }
    return true;
}

QString QSciDriftCorrection::logParameters() const
{
    return QStringLiteral("maximum shift=%1").arg(m_options.maximumShift);
}
