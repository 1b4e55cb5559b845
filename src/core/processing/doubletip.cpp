#include "doubletip.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <vector>

QString DoubleTip::operationText()
{
    return QCoreApplication::translate("DoubleTip", "Resolve double tip");
}

double DoubleTip::baseLevel(const double* z, int count)
{
    std::vector<double> values;
    values.reserve(std::size_t(std::max(0, count)));
    for (int i = 0; i < count; ++i)
        if (std::isfinite(z[i]))
            values.push_back(z[i]);
    if (values.empty())
        return 0;
    auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

QPoint DoubleTip::apex(const double* z, int width, int height, const QPoint& at, int radius)
{
    QPoint best = at;
    double highest = -HUGE_VAL;
    for (int x = std::max(0, at.x() - radius); x <= std::min(width - 1, at.x() + radius); ++x)
        for (int y = std::max(0, at.y() - radius); y <= std::min(height - 1, at.y() + radius); ++y) {
            const double v = z[qsizetype(x) * height + y];
            if (std::isfinite(v) && v > highest) {
                highest = v;
                best = QPoint(x, y);
            }
        }
    return best;
}

double DoubleTip::estimateRatio(
    const double* z, int width, int height, const QPoint& feature, const QPoint& ghost, double base)
{
    const auto over = [&](const QPoint& p) {
        if (p.x() < 0 || p.y() < 0 || p.x() >= width || p.y() >= height)
            return 0.0;
        return z[qsizetype(p.x()) * height + p.y()] - base;
    };
    const double f = over(feature), g = over(ghost);
    if (!(f > 0) || !(g > 0))
        return 0;
    return std::clamp(g / f, 0.0, 0.95);
}

void DoubleTip::resolve(
    const double* z, double* out, int width, int height, const QPoint& ghost, double ratio, double base)
{
    const int vx = ghost.x(), vy = ghost.y();
    // Walk each axis in the ghost's direction, so that p - v is resolved before p.
    const int x0 = vx >= 0 ? 0 : width - 1, xStep = vx >= 0 ? 1 : -1;
    const int y0 = vy >= 0 ? 0 : height - 1, yStep = vy >= 0 ? 1 : -1;
    for (int i = 0, x = x0; i < width; ++i, x += xStep) {
        const int sx = x - vx;
        const bool xInside = sx >= 0 && sx < width;
        double* column = out + qsizetype(x) * height;
        const double* in = z + qsizetype(x) * height;
        const double* source = out + qsizetype(sx) * height;
        for (int j = 0, y = y0; j < height; ++j, y += yStep) {
            const int sy = y - vy;
            const double here = in[y];
            if (!xInside || sy < 0 || sy >= height || (vx == 0 && vy == 0)) {
                column[y] = here;
                continue;
            }
            const double shadow = source[sy];
            column[y] = std::isfinite(shadow) ? here - ratio * (shadow - base) : here;
        }
    }
}

void DoubleTip::refine(const double* z, int width, int height, const QPoint& feature, const QPoint& ghost, double base,
    bool fixedRatio, QPoint* vector, double* ratio)
{
    // Judged on the marks' neighbourhood only, so that a large image costs no more than a small one. The walk
    // starts further out: where it starts the ghost's source is unknown, and that error fades along the walk.
    const QPoint guess = ghost - feature;
    const int length = std::abs(guess.x()) + std::abs(guess.y()) + 4;
    const QRect judged = QRect(feature, ghost).normalized().adjusted(-length, -length, length, length);
    const QRect area = judged.adjusted(-3 * length, -3 * length, 3 * length, 3 * length) & QRect(0, 0, width, height);
    const QRect inner = judged.translated(-area.topLeft()) & QRect(0, 0, area.width(), area.height());
    const int pw = area.width(), ph = area.height();
    std::vector<double> patch(std::size_t(pw) * ph), out(patch.size());
    for (int x = 0; x < pw; ++x)
        for (int y = 0; y < ph; ++y)
            patch[std::size_t(x) * ph + y] = z[qsizetype(area.left() + x) * height + area.top() + y];
    // The clean surface is the plainest one: a ghost left over, or one removed too strongly, adds slopes of its
    // own, so the vector whose best ratio leaves the least total variation wins.
    const auto cost = [&](const QPoint& v, double r) {
        resolve(patch.data(), out.data(), pw, ph, v, r, base);
        double sum = 0;
        for (int x = inner.left(); x <= inner.right(); ++x)
            for (int y = inner.top(); y <= inner.bottom(); ++y) {
                const double here = out[std::size_t(x) * ph + y];
                const double right = x + 1 < pw ? out[std::size_t(x + 1) * ph + y] : here;
                const double up = y + 1 < ph ? out[std::size_t(x) * ph + y + 1] : here;
                const double step = std::abs(right - here) + std::abs(up - here);
                if (std::isfinite(step))
                    sum += step;
            }
        return sum;
    };
    const auto bestRatio = [&](const QPoint& v, double* best) {
        if (fixedRatio)
            return cost(v, *best);
        double lo = 0, hi = 0.95;
        const double golden = (std::sqrt(5.0) - 1) / 2;
        double a = hi - golden * (hi - lo), b = lo + golden * (hi - lo);
        double ca = cost(v, a), cb = cost(v, b);
        for (int i = 0; i < 20; ++i) {
            if (ca <= cb) {
                hi = b, b = a, cb = ca;
                a = hi - golden * (hi - lo);
                ca = cost(v, a);
            } else {
                lo = a, a = b, ca = cb;
                b = lo + golden * (hi - lo);
                cb = cost(v, b);
            }
        }
        *best = (lo + hi) / 2;
        return cost(v, *best);
    };
    double bestCost = HUGE_VAL;
    for (int dx = -2; dx <= 2; ++dx)
        for (int dy = -2; dy <= 2; ++dy) {
            const QPoint v = guess + QPoint(dx, dy);
            if (v.isNull())
                continue;
            double r = *ratio;
            const double c = bestRatio(v, &r);
            if (c < bestCost) {
                bestCost = c;
                *vector = v;
            }
        }
    if (fixedRatio)
        return;
    // Total variation finds the vector but not the ratio: where a ghost sits on its feature's flank, a little of
    // it cancels the flank's slope. The heights at the two apexes are the better guide; the flank under the
    // ghost makes them err a little on the strong side.
    *ratio = estimateRatio(z, width, height, feature, feature + *vector, base);
}

QVector<double> DoubleTip::resolved(const QSciImage& item, const QPoint& feature, const QPoint& ghost, double ratio,
    double* usedRatio, QPoint* usedVector)
{
    const int w = item.width(), h = item.height();
    const double* z = item.zData();
    const double base = baseLevel(z, w * h);
    const QPoint f = apex(z, w, h, feature), g = apex(z, w, h, ghost);
    QPoint vector = g - f;
    const bool fixedRatio = ratio >= 0;
    if (!fixedRatio)
        ratio = estimateRatio(z, w, h, f, g, base);
    // Without a feature above the base there is no ghost to look for.
    if (!vector.isNull() && (fixedRatio || ratio > 0))
        refine(z, w, h, f, g, base, fixedRatio, &vector, &ratio);
    QVector<double> out(qsizetype(w) * h);
    resolve(z, out.data(), w, h, vector, ratio, base);
    if (usedRatio)
        *usedRatio = ratio;
    if (usedVector)
        *usedVector = vector;
    return out;
}
