#include "qscirowalignment.h"

#include "progressiveloop.h"
#include "surfacefit.h"

#include "core/settings/options.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("QSciRowAlignment", text);
}

const char* const methodKeys[] = { "median", "mean", "medianDifference", "linear", "scars" };

/** Rows gathered a band at a time: the matrix is held column by column. */
constexpr int Band = 32;

double median(std::vector<double>& values)
{
    auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/** Rows that had no point to measure take the value of the nearest row that had one. */
void fillGaps(std::vector<double>& values, const std::vector<char>& known)
{
    const int n = int(values.size());
    int last = -1;
    for (int i = 0; i < n; ++i) {
        if (!known[i])
            continue;
        for (int j = last + 1; j < i; ++j)
            values[j] = (last < 0 || i - j < j - last) ? values[i] : values[last];
        last = i;
    }
    for (int j = last + 1; j < n && last >= 0; ++j)
        values[j] = values[last];
}

} // namespace

QString QSciRowAlignment::methodName(Method method)
{
    switch (method) {
    case Method::Median:
        return tr("Align rows by median");
    case Method::Mean:
        return tr("Align rows by mean");
    case Method::MedianDifference:
        return tr("Align rows by median of differences");
    case Method::Linear:
        return tr("Align rows by line fit");
    case Method::Scars:
        return tr("Remove scars");
    }
    return QString();
}

QString QSciRowAlignment::name() const
{
    return methodName(m_options.method);
}

void QSciRowAlignment::readSettings()
{
    const QString method = ::Options::getString(QStringLiteral("RowAlignment.method"), QStringLiteral("median"));
    for (int i = 0; i < 5; ++i)
        if (method == QLatin1String(methodKeys[i]))
            m_options.method = Method(i);
    m_options.masked = ::Options::getBool(QStringLiteral("RowAlignment.fitToSelection"), false);
    m_options.scarThreshold = ::Options::getDouble(QStringLiteral("RowAlignment.scarThreshold"), 3);
    m_options.scarMinimumLength = std::max(1, ::Options::getInt(QStringLiteral("RowAlignment.scarMinimumLength"), 4));
}

void QSciRowAlignment::writeSettings() const
{
    ::Options::setString(QStringLiteral("RowAlignment.method"), QLatin1String(methodKeys[int(m_options.method)]));
    ::Options::setBool(QStringLiteral("RowAlignment.fitToSelection"), m_options.masked);
    ::Options::setDouble(QStringLiteral("RowAlignment.scarThreshold"), m_options.scarThreshold);
    ::Options::setInt(QStringLiteral("RowAlignment.scarMinimumLength"), m_options.scarMinimumLength);
}

bool QSciRowAlignment::check(int, int, bool anySelected, QString* message) const
{
    if (m_options.masked && m_options.method != Method::Scars && !anySelected) {
        if (message)
            *message = nothingSelectedText();
        return false;
    }
    return true;
}

bool QSciRowAlignment::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const int w = input.width, h = input.height;
    if (m_options.method == Method::Scars)
        return removeScars(input, out);
    const unsigned char* mask = m_options.masked ? input.mask : nullptr;
    const Method method = m_options.method;
    std::vector<double> offset(h, 0.0), slope(h, 0.0);
    std::vector<char> known(h, 0);
    const int bands = (h + Band - 1) / Band;
    const bool done = ProgressiveLoop::run(bands, progress, name(), [&](int band) {
        const int y0 = band * Band, y1 = std::min(h, y0 + Band);
        std::vector<double> values, positions;
        for (int y = y0; y < y1; ++y) {
            values.clear();
            positions.clear();
            for (int x = 0; x < w; ++x) {
                const size_t i = size_t(x) * h + y;
                if (mask && !mask[i])
                    continue;
                if (method == Method::MedianDifference) {
                    if (y == 0 || (mask && !mask[i - 1]))
                        continue;
                    values.push_back(input.z[i] - input.z[i - 1]);
                } else {
                    values.push_back(input.z[i]);
                    positions.push_back(SurfaceFit::u(x, w));
                }
            }
            if (values.empty())
                continue;
            known[y] = 1;
            if (method == Method::Median || method == Method::MedianDifference) {
                offset[y] = median(values);
            } else if (method == Method::Mean) {
                long double sum = 0;
                for (double v : values)
                    sum += v;
                offset[y] = double(sum / values.size());
            } else {
                long double su = 0, sz = 0, suu = 0, suz = 0;
                const size_t n = values.size();
                for (size_t k = 0; k < n; ++k) {
                    su += positions[k];
                    sz += values[k];
                    suu += positions[k] * positions[k];
                    suz += positions[k] * values[k];
                }
                const long double det = n * suu - su * su;
                slope[y] = det > 0 ? double((n * suz - su * sz) / det) : 0.0;
                offset[y] = double((sz - slope[y] * su) / n);
            }
        }
    });
    if (!done)
        return false;
    if (method == Method::MedianDifference) {
        // The first row is the reference; each later row follows the one below it.
        known[0] = 1;
        offset[0] = 0;
        for (int y = 1; y < h; ++y)
            offset[y] = offset[y - 1] + (known[y] ? offset[y] : 0.0);
    } else {
        fillGaps(offset, known);
        fillGaps(slope, known);
    }
    // The mean level of the matrix stays where it was.
    long double level = 0;
    for (double o : offset)
        level += o;
    const double mean = double(level / h);
    return ProgressiveLoop::run((w + Band - 1) / Band, progress, name(), [&](int band) {
        for (int x = band * Band; x < std::min(w, (band + 1) * Band); ++x) {
            const double t = SurfaceFit::u(x, w);
            double* column = out + size_t(x) * h;
            for (int y = 0; y < h; ++y)
                column[y] -= offset[y] - mean + slope[y] * t;
        }
    });
}

bool QSciRowAlignment::removeScars(const EffectInput& input, double* out) const
{
    const int w = input.width, h = input.height;
    if (h < 3)
        return true;
    const double* z = input.z;
    // The typical step between neighbouring rows, robust against the scars themselves.
    std::vector<double> steps;
    steps.reserve(size_t(w) * (h - 1));
    for (int x = 0; x < w; ++x)
        for (int y = 1; y < h; ++y)
            steps.push_back(std::abs(z[size_t(x) * h + y] - z[size_t(x) * h + y - 1]));
    const double typical = median(steps);
    const double limit = m_options.scarThreshold * typical;
    std::vector<char> scar(size_t(w) * h, 0);
    for (int x = 0; x < w; ++x) {
        const double* c = z + size_t(x) * h;
        for (int y = 1; y + 1 < h; ++y) {
            const double up = c[y] - c[y + 1], down = c[y] - c[y - 1];
            // Both neighbours on the same side and both far: a row that jumps, not a step edge.
            if (up * down > 0 && std::min(std::abs(up), std::abs(down)) > limit)
                scar[size_t(x) * h + y] = 1;
        }
    }
    const int minimum = std::max(1, m_options.scarMinimumLength);
    for (int y = 1; y + 1 < h; ++y) {
        for (int x = 0; x < w;) {
            if (!scar[size_t(x) * h + y]) {
                ++x;
                continue;
            }
            int end = x;
            while (end < w && scar[size_t(end) * h + y])
                ++end;
            if (end - x >= minimum)
                for (int k = x; k < end; ++k) {
                    const size_t i = size_t(k) * h + y;
                    out[i] = 0.5 * (z[i - 1] + z[i + 1]);
                }
            x = end;
        }
    }
    return true;
}

QString QSciRowAlignment::logParameters() const
{
    if (m_options.method == Method::Scars)
        return QStringLiteral("threshold=%1, length=%2").arg(m_options.scarThreshold).arg(m_options.scarMinimumLength);
    return m_options.masked ? QStringLiteral("masked") : QString();
}
