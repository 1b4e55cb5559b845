#include "roughness.h"

#include "qscieffect.h"

#include "core/items/qsciimage.h"

#include <algorithm>
#include <cmath>
#include <limits>

QList<QPair<QString, double>> Roughness::Result::named() const
{
    return { { QStringLiteral("Sa"), sa }, { QStringLiteral("Sq"), sq }, { QStringLiteral("Sp"), sp },
        { QStringLiteral("Sv"), sv }, { QStringLiteral("Sz"), sz }, { QStringLiteral("Ssk"), ssk },
        { QStringLiteral("Sku"), sku }, { QStringLiteral("Sdq"), sdq }, { QStringLiteral("Sdr"), sdr },
        { QStringLiteral("Ra"), ra }, { QStringLiteral("Rq"), rq }, { QStringLiteral("Rz"), rz } };
}

double Roughness::metres(const QString& unit)
{
    const QString u = unit.trimmed();
    if (u == QLatin1String("m"))
        return 1;
    if (u == QStringLiteral("\u00c5") || u == QLatin1String("A"))
        return 1e-10;
    if (u.size() != 2 || u.at(1) != QLatin1Char('m'))
        return 0;
    switch (u.at(0).unicode()) {
    case 'k':
        return 1e3;
    case 'c':
        return 1e-2;
    case 'm':
        return 1e-3;
    case 'u':
    case 0xB5:
    case 0x3BC:
        return 1e-6;
    case 'n':
        return 1e-9;
    case 'p':
        return 1e-12;
    case 'f':
        return 1e-15;
    default:
        return 0;
    }
}

bool Roughness::evaluate(const QSciImage& item, bool masked, Result* result, QString* message)
{
    if (masked && item.maskSelectedCount() == 0) {
        if (message)
            *message = QSciEffect::nothingSelectedText();
        return false;
    }
    const QSciImage::SciValues& sci = item.sciValues();
    const double toZ = metres(sci.zUnit);
    const double fx = metres(sci.xUnit), fy = metres(sci.yUnit);
    const bool physical = toZ > 0 && fx > 0 && fy > 0 && sci.xUnitPerPixel > 0 && sci.yUnitPerPixel > 0;
    const double dx = physical ? sci.xUnitPerPixel * fx / toZ : 1.0;
    const double dy = physical ? sci.yUnitPerPixel * fy / toZ : 1.0;
    if (!evaluate(item.zData(), masked ? item.maskData() : nullptr, item.width(), item.height(), dx, dy, result))
        return false;
    result->physicalSlopes = physical;
    return true;
}

bool Roughness::evaluate(const double* z, const unsigned char* mask, int w, int h, double dx, double dy, Result* result)
{
    Result r;
    const size_t n = size_t(w) * h;
    long double sum = 0;
    for (size_t i = 0; i < n; ++i)
        if (!mask || mask[i]) {
            sum += z[i];
            ++r.points;
        }
    if (r.points == 0)
        return false;
    const double mean = double(sum / r.points);
    long double a = 0, q = 0, s3 = 0, s4 = 0;
    double high = -std::numeric_limits<double>::infinity(), low = -high;
    for (size_t i = 0; i < n; ++i) {
        if (mask && !mask[i])
            continue;
        const double d = z[i] - mean;
        a += std::abs(d);
        q += d * d;
        s3 += d * d * d;
        s4 += d * d * d * d;
        high = std::max(high, d);
        low = std::min(low, d);
    }
    r.sa = double(a / r.points);
    r.sq = std::sqrt(double(q / r.points));
    r.sp = high;
    r.sv = -low;
    r.sz = r.sp + r.sv;
    r.ssk = r.sq > 0 ? double(s3 / r.points) / (r.sq * r.sq * r.sq) : 0.0;
    r.sku = r.sq > 0 ? double(s4 / r.points) / (r.sq * r.sq * r.sq * r.sq) : 0.0;

    // Slopes and area per grid cell, from the cell's four corners.
    long double slope2 = 0, area = 0;
    qint64 cells = 0;
    for (int x = 0; x + 1 < w; ++x)
        for (int y = 0; y + 1 < h; ++y) {
            const size_t i = size_t(x) * h + y, right = i + h;
            if (mask && !(mask[i] && mask[i + 1] && mask[right] && mask[right + 1]))
                continue;
            const double gx = 0.5 * ((z[right] - z[i]) + (z[right + 1] - z[i + 1])) / dx;
            const double gy = 0.5 * ((z[i + 1] - z[i]) + (z[right + 1] - z[right])) / dy;
            slope2 += gx * gx + gy * gy;
            area += std::sqrt(1 + gx * gx + gy * gy);
            ++cells;
        }
    if (cells > 0) {
        r.sdq = std::sqrt(double(slope2 / cells));
        r.sdr = 100.0 * double(area / cells - 1);
    }

    // Profiles are the rows.
    long double ra = 0, rq = 0, rz = 0;
    int rows = 0;
    for (int y = 0; y < h; ++y) {
        long double rowSum = 0;
        int count = 0;
        for (int x = 0; x < w; ++x)
            if (!mask || mask[size_t(x) * h + y]) {
                rowSum += z[size_t(x) * h + y];
                ++count;
            }
        if (count == 0)
            continue;
        const double rowMean = double(rowSum / count);
        long double ta = 0, tq = 0;
        double top = -std::numeric_limits<double>::infinity(), bottom = -top;
        for (int x = 0; x < w; ++x) {
            if (mask && !mask[size_t(x) * h + y])
                continue;
            const double d = z[size_t(x) * h + y] - rowMean;
            ta += std::abs(d);
            tq += d * d;
            top = std::max(top, d);
            bottom = std::min(bottom, d);
        }
        ra += ta / count;
        rq += std::sqrt(double(tq / count));
        rz += top - bottom;
        ++rows;
    }
    r.ra = double(ra / rows);
    r.rq = double(rq / rows);
    r.rz = double(rz / rows);
    *result = r;
    return true;
}
