#include "latticeanalysis.h"

#include "fouriertransform.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QVector>
#include <algorithm>
#include <cmath>

namespace {

struct Peak {
    int x;
    int y;
    double value;
};

/** The offset of the top of a parabola through three neighbouring values, within half a point. */
double refine(double left, double middle, double right)
{
    const double curvature = left - 2 * middle + right;
    return curvature < 0 ? std::clamp(0.5 * (left - right) / curvature, -0.5, 0.5) : 0.0;
}

} // namespace

bool LatticeAnalysis::find(const QSciImage& item, Result* result, QString* message)
{
    const int w = item.width(), h = item.height();
    const auto fail = [message](const char* text) {
        if (message)
            *message = QCoreApplication::translate("LatticeAnalysis", text);
        return false;
    };
    if (w < 8 || h < 8)
        return fail("The item is too small to show a lattice.");
    QVector<double> correlation(qsizetype(w) * h);
    FourierTransform::autocorrelation(item.zData(), w, h, correlation.data());
    const double* c = correlation.constData();
    const int cx = w / 2, cy = h / 2;

    QVector<Peak> peaks;
    const double top = c[qsizetype(cx) * h + cy];
    if (!(top > 0))
        return fail("The item shows no lattice.");
    for (int x = 1; x + 1 < w; ++x)
        for (int y = 1; y + 1 < h; ++y) {
            const double v = c[qsizetype(x) * h + y];
            if (std::hypot(x - cx, y - cy) < 2 || v < 0.3 * top)
                continue;
            bool highest = true;
            for (int dx = -1; dx <= 1 && highest; ++dx)
                for (int dy = -1; dy <= 1; ++dy)
                    if ((dx || dy) && c[qsizetype(x + dx) * h + y + dy] > v) {
                        highest = false;
                        break;
                    }
            if (highest)
                peaks.append({ x - cx, y - cy, v });
        }
    std::sort(peaks.begin(), peaks.end(), [](const Peak& p, const Peak& q) {
        return std::hypot(p.x, p.y) < std::hypot(q.x, q.y) - 1e-9
            || (std::abs(std::hypot(p.x, p.y) - std::hypot(q.x, q.y)) <= 1e-9 && p.value > q.value);
    });
    if (peaks.isEmpty())
        return fail("The item shows no lattice.");
    const Peak a = peaks.first();
    const Peak* b = nullptr;
    for (const Peak& p : peaks) {
        const double cosine = (a.x * p.x + a.y * p.y) / (std::hypot(a.x, a.y) * std::hypot(p.x, p.y));
        if (std::abs(cosine) < std::cos(20 * M_PI / 180)) {
            b = &p;
            break;
        }
    }
    if (!b)
        return fail("The item shows no lattice.");
    const auto precise = [&](const Peak& p) {
        const int x = p.x + cx, y = p.y + cy;
        const auto v = [&](int dx, int dy) { return c[qsizetype(x + dx) * h + y + dy]; };
        return QPointF(p.x + refine(v(-1, 0), v(0, 0), v(1, 0)), p.y + refine(v(0, -1), v(0, 0), v(0, 1)));
    };
    const Result r = fromVectors(item, precise(a), precise(*b));
    *result = r;
    return true;
}

LatticeAnalysis::Result LatticeAnalysis::fromVectors(const QSciImage& item, const QPointF& a, const QPointF& b)
{
    Result r;
    r.a = a;
    r.b = b;
    const QSciImage::SciValues& s = item.sciValues();
    const double sx = s.xUnitPerPixel > 0 ? s.xUnitPerPixel : 1, sy = s.yUnitPerPixel > 0 ? s.yUnitPerPixel : 1;
    r.aPhysical = QPointF(r.a.x() * sx, r.a.y() * sy);
    r.bPhysical = QPointF(r.b.x() * sx, r.b.y() * sy);
    r.lengthA = std::hypot(r.aPhysical.x(), r.aPhysical.y());
    r.lengthB = std::hypot(r.bPhysical.x(), r.bPhysical.y());
    const double lengths = r.lengthA * r.lengthB;
    r.angle = lengths > 0
        ? std::acos(
              std::clamp((r.aPhysical.x() * r.bPhysical.x() + r.aPhysical.y() * r.bPhysical.y()) / lengths, -1.0, 1.0))
            * 180 / M_PI
        : 0;
    r.unit = s.xUnit;
    return r;
}

QString LatticeAnalysis::describe(const Result& r)
{
    return QCoreApplication::translate("LatticeAnalysis", "Lattice: |a| = %1 %3, |b| = %2 %3, angle %4°")
        .arg(r.lengthA, 0, 'g', 6)
        .arg(r.lengthB, 0, 'g', 6)
        .arg(r.unit)
        .arg(r.angle, 0, 'f', 2);
}
