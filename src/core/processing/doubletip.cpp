#include "doubletip.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QRect>
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

void DoubleTip::refine(const double* z, int width, int height, const QPoint& feature, const QPoint& ghost,
    const QPoint& clicked, double base, bool fixedRatio, QPoint* vector, double* ratio)
{
    // Worked on the marks' neighbourhood only, so that a large image costs no more than a small one. The walk
    // starts further out: where it starts the ghost's source is unknown, and that error fades along the walk.
    const QPoint guess = ghost - feature;
    const int length
        = std::max(std::abs(guess.x()) + std::abs(guess.y()), std::abs(clicked.x()) + std::abs(clicked.y())) + 4;
    const QRect area = QRect(feature, ghost).normalized().adjusted(-4 * length, -4 * length, 4 * length, 4 * length)
        & QRect(0, 0, width, height);
    const int pw = area.width(), ph = area.height();
    std::vector<double> patch(std::size_t(pw) * ph), out(patch.size());
    for (int x = 0; x < pw; ++x)
        for (int y = 0; y < ph; ++y)
            patch[std::size_t(x) * ph + y] = z[qsizetype(area.left() + x) * height + area.top() + y];
    const QPoint f = feature - area.topLeft();

    // A ghost removed with a vector a point off leaves the feature's outline behind as a dipole, and a wrong
    // vector altogether leaves a train of alternating copies; the right one leaves the features alone. So
    // each candidate is resolved (with its own ratio) and the one that leaves the fewest points
    // clearly off the base level around the marks wins. Slopes and flanks weigh the same for every candidate,
    // unlike in smoothness measures, which a ghost on its feature's flank deceives.
    double peak = 0;
    if (f.x() >= 0 && f.y() >= 0 && f.x() < pw && f.y() < ph)
        peak = patch[std::size_t(f.x()) * ph + f.y()] - base;
    // A tenth of the ghost's height: the outline a point's error leaves stands out more, the slight excess of
    // an estimated ratio less.
    const double threshold = 0.1 * std::max(*ratio, 0.05) * std::abs(peak);
    const QRect judged
        = QRect(feature, ghost).normalized().adjusted(-length, -length, length, length).translated(-area.topLeft())
        & QRect(0, 0, pw, ph);
    const auto cost = [&](const QPoint& v, double r) {
        resolve(patch.data(), out.data(), pw, ph, v, r, base);
        double count = 0, excess = 0;
        for (int x = judged.left(); x <= judged.right(); ++x)
            for (int y = judged.top(); y <= judged.bottom(); ++y) {
                const double off = std::abs(out[std::size_t(x) * ph + y] - base);
                if (std::isfinite(off) && off > threshold) {
                    ++count;
                    excess += off - threshold;
                }
            }
        // The count decides; how far the points stand out only breaks ties.
        return count + excess / (1 + excess);
    };
    const auto value = [&](const std::vector<double>& m, const QPoint& p) {
        return p.x() >= 0 && p.y() >= 0 && p.x() < pw && p.y() < ph ? m[std::size_t(p.x()) * ph + p.y()] : base;
    };
    // The ghost stands on the feature's flank, which the apexes' heights would count as ghost. A round feature's
    // flank is as high on the far side, one vector back from the feature, where the resolved surface shows it.
    const auto ratioFor = [&](const QPoint& v) {
        double r = estimateRatio(z, width, height, feature, feature + v, base);
        for (int round = 0; round < 4 && r > 0; ++round) {
            resolve(patch.data(), out.data(), pw, ph, v, r, base);
            const double height = value(out, f) - base;
            const double flank = std::clamp(value(out, f - v) - base, 0.0, std::max(0.0, value(patch, f + v) - base));
            if (!(height > 0))
                break;
            r = std::clamp((value(patch, f + v) - base - flank) / height, 0.0, 0.95);
        }
        return r;
    };
    // Near the apexes' vector and near the clicks' own: where a ghost merges with its feature, the apexes of the
    // merged hill both lean inwards.
    QList<QPoint> candidates;
    for (const QPoint& centre : { guess, clicked })
        for (int cx = -2; cx <= 2; ++cx)
            for (int cy = -2; cy <= 2; ++cy) {
                const QPoint v = centre + QPoint(cx, cy);
                if (!v.isNull() && !candidates.contains(v))
                    candidates.append(v);
            }
    double best = HUGE_VAL;
    double bestRatio = *ratio;
    for (const QPoint& v : qAsConst(candidates)) {
        const double r = fixedRatio ? *ratio : ratioFor(v);
        const double c = cost(v, r);
        if (c < best) {
            best = c;
            *vector = v;
            bestRatio = r;
        }
    }
    *ratio = bestRatio;
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
    if (!(vector.isNull() && ghost == feature) && (fixedRatio || ratio > 0))
        refine(z, w, h, f, g, ghost - feature, base, fixedRatio, &vector, &ratio);
    QVector<double> out(qsizetype(w) * h);
    resolve(z, out.data(), w, h, vector, ratio, base);
    if (usedRatio)
        *usedRatio = ratio;
    if (usedVector)
        *usedVector = vector;
    return out;
}
