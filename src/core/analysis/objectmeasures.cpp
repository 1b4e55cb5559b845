#include "objectmeasures.h"

#include "core/items/qscisingleobject.h"
#include "core/processing/thinning.h"

#include <QPoint>
#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <vector>

namespace {

constexpr double Sqrt2 = 1.4142135623730951;
constexpr double HalfSqrt2 = 0.7071067811865476;
constexpr double QuarterSqrt2 = 0.35355339059327373;
constexpr double ThreeQuarterSqrt2 = 1.0606601717798212;
constexpr double TwoSqrt2 = 2.82842712474619;

/** The object's pixels as a byte grid over its bounding box widened by one, column by column. */
struct LocalMask {
    int x0 = 0, y0 = 0, w = 0, h = 0;
    std::vector<uchar> bytes;

    explicit LocalMask(const QVector<QPoint>& pixels)
    {
        if (pixels.isEmpty())
            return;
        int minX = pixels.first().x(), maxX = minX, minY = pixels.first().y(), maxY = minY;
        for (const QPoint& p : pixels) {
            minX = std::min(minX, p.x());
            maxX = std::max(maxX, p.x());
            minY = std::min(minY, p.y());
            maxY = std::max(maxY, p.y());
        }
        x0 = minX - 1;
        y0 = minY - 1;
        w = maxX - minX + 3;
        h = maxY - minY + 3;
        bytes.assign(size_t(w) * h, 0);
        for (const QPoint& p : pixels)
            bytes[index(p.x(), p.y())] = 1;
    }
    size_t index(int x, int y) const { return size_t(x - x0) * h + size_t(y - y0); }
    bool has(int x, int y) const { return x >= x0 && y >= y0 && x < x0 + w && y < y0 + h && bytes[index(x, y)] != 0; }
};

/** The two circumference contributions of a border pixel with @p c4 straight and @p cd diagonal neighbours. */
void addContribution(int c4, int cd, double& p, double& b)
{
    if (cd == 4) {
        p += Sqrt2;
        b += Sqrt2;
        return;
    }
    switch (c4 * 10 + cd) {
    case 10:
        p += 1;
        b += 1;
        b += Sqrt2;
        break;
    case 11:
        p += 0.5;
        p += HalfSqrt2;
        b += 0.5;
        b += Sqrt2;
        b += QuarterSqrt2;
        break;
    case 12:
        p += Sqrt2;
        b += TwoSqrt2;
        b -= 1;
        break;
    case 20:
        p += 2;
        b += 2;
        break;
    case 21:
        p += 1;
        b += 1;
        b += HalfSqrt2;
        break;
    case 22:
        p += 0.5;
        p += HalfSqrt2;
        b += 0.5;
        b += ThreeQuarterSqrt2;
        break;
    case 23:
        p += Sqrt2;
        b += Sqrt2;
        break;
    case 30:
        b += 1;
        break;
    case 31:
    case 32:
        p += 1;
        b += 1;
        break;
    case 33:
        p += 0.5;
        p += HalfSqrt2;
        b += 0.5;
        b += QuarterSqrt2;
        break;
    default:
        break;
    }
}

} // namespace

void ObjectMeasures::computeAll(QSciSingleObject& object, const MeasureInput& input, double referenceHeight)
{
    findBorder(object, input.width, input.height);
    const QPointF c = centroidOfArea(object);
    computeOutline(object, input, QPoint(int(std::lround(c.x())), int(std::lround(c.y()))));
    computeHeights(object, input, referenceHeight);
    computeMainAxes(object);
    computeLargestExtent(object);
    computeSkeleton(object);
}

void ObjectMeasures::findBorder(QSciSingleObject& object, int width, int height)
{
    const LocalMask mask(object.fillPixels);
    object.borderPixels.clear();
    for (const QPoint& p : object.fillPixels) {
        const int x = p.x(), y = p.y();
        const bool inner = x > 0 && y > 0 && x < width - 1 && y < height - 1 && mask.has(x + 1, y) && mask.has(x - 1, y)
            && mask.has(x, y + 1) && mask.has(x, y - 1);
        if (!inner)
            object.borderPixels.append(p);
    }
    object.circumference = object.borderPixels.size();
}

void ObjectMeasures::computeOutline(QSciSingleObject& o, const MeasureInput& in, QPoint centre)
{
    const LocalMask mask(o.fillPixels);
    const auto member
        = [&](int x, int y) { return x >= 0 && y >= 0 && x < in.width && y < in.height && mask.has(x, y); };
    int minX = in.width, minY = in.height, maxX = 0, maxY = 0;
    double d2Max = -1, d2Min = std::numeric_limits<double>::max();
    double zLow = 0, zHigh = 0, sum = 0, sum2 = 0;
    double p = 0, b = 0;
    bool first = true;
    for (const QPoint& px : o.borderPixels) {
        const int x = px.x(), y = px.y();
        minX = std::min(minX, x);
        maxX = std::max(maxX, x);
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
        const double dx = x - centre.x(), dy = y - centre.y();
        const double d2 = dx * dx + dy * dy;
        if (d2 > d2Max) {
            d2Max = d2;
            o.rMaxVector = px;
        }
        if (d2 < d2Min) {
            d2Min = d2;
            o.rMinVector = px;
        }
        const double z = in.z[qsizetype(x) * in.height + y];
        if (first || z < zLow) {
            zLow = z;
            o.borderZMinAt = px;
        }
        if (first || z > zHigh) {
            zHigh = z;
            o.borderZMaxAt = px;
        }
        first = false;
        sum += z;
        sum2 += z * z;
        const int c4 = member(x + 1, y) + member(x, y - 1) + member(x, y + 1) + member(x - 1, y);
        const int cd = member(x + 1, y - 1) + member(x + 1, y + 1) + member(x - 1, y - 1) + member(x - 1, y + 1);
        addContribution(c4, cd, p, b);
    }
    b += 1.1715728752538102;
    if (b < 0)
        b = p;
    const qsizetype k = o.borderPixels.size();
    const double n = o.fillPixels.size();
    o.rMax = k ? std::sqrt(d2Max) : 0;
    o.rMin = k ? std::sqrt(d2Min) : 0;
    o.borderZMin = zLow;
    o.borderZMax = zHigh;
    o.borderZRange = zHigh - zLow;
    o.borderZMean = k ? sum / double(k) : 0;
    o.stdBorder = k ? std::sqrt(std::max(0.0, (sum2 - double(k) * o.borderZMean * o.borderZMean) / double(k))) : 0;

    o.circumferencePBM = b;
    o.circumferencePM = p;
    o.area = n;
    o.areaPBM = n;
    o.areaPM = (n + 1) - (2.0 * (maxX - minX) - 2) * 0.5 - (2.0 * (maxY - minY) - 2) * 0.5 - 1;
    if (o.areaPM < 0)
        o.areaPM = n;
    o.width = maxX - minX + 1;
    o.height = maxY - minY + 1;
    o.boundingBox = QRect(QPoint(minX, minY), QPoint(minX + o.width - 1, minY + o.height - 1));
    o.compactnessPBM = n > 0 ? b * b / n * 0.25 / Pi : 0;
    o.compactnessPM = o.areaPM != 0 ? p * p / o.areaPM * 0.25 / Pi : 0;
    o.heywoodDiameterPBM = std::sqrt(4 * o.areaPBM / Pi);
    o.heywoodDiameterPM = std::sqrt(4 * o.areaPM / Pi);
    const double m = (o.width + o.height) / 2.0;
    if (std::abs(double(o.width + o.height)) <= 1e-30 || std::abs(m - 1) <= 1e-10)
        o.fracDim = -1;
    else
        o.fracDim = std::log(n) / std::log(m);
}

void ObjectMeasures::computeHeights(QSciSingleObject& o, const MeasureInput& in, double reference)
{
    double sum = 0, sum2 = 0, volume = 0, volume2 = 0;
    bool first = true;
    for (const QPoint& px : o.fillPixels) {
        const double z = in.z[qsizetype(px.x()) * in.height + px.y()];
        if (first || z < o.zMin) {
            o.zMin = z;
            o.zMinAt = px;
        }
        if (first || z > o.zMax) {
            o.zMax = z;
            o.zMaxAt = px;
        }
        first = false;
        sum += z;
        sum2 += z * z;
        const double h = z - reference;
        volume += h;
        volume2 += h * h;
    }
    const double n = o.fillPixels.size();
    o.zMean = n > 0 ? sum / n : 0;
    o.zRange = o.zMax - o.zMin;
    o.stdWholeObject = n > 0 ? std::sqrt(std::max(0.0, (sum2 - n * o.zMean * o.zMean) / n)) : 0;
    o.cubage = volume;
    o.zBar = volume != 0 ? reference + volume2 / (2 * volume) : reference;
}

void ObjectMeasures::computeMainAxes(QSciSingleObject& o)
{
    const QPointF c = centroidOfArea(o);
    double sxx = 0, syy = 0, sxy = 0;
    for (const QPoint& p : o.fillPixels) {
        const double dx = p.x() - c.x(), dy = p.y() - c.y();
        sxx += dx * dx;
        syy += dy * dy;
        sxy += dx * dy;
    }
    const double n = std::max<qsizetype>(1, o.fillPixels.size());
    // A pixel is a unit square, not a point: its own second moment is 1/12 in x and in y.
    sxx = sxx / n + 1.0 / 12;
    syy = syy / n + 1.0 / 12;
    sxy /= n;
    const double mean = (sxx + syy) / 2, diff = std::sqrt((sxx - syy) * (sxx - syy) / 4 + sxy * sxy);
    const double a = 2 * std::sqrt(std::max(0.0, mean + diff)), bb = 2 * std::sqrt(std::max(0.0, mean - diff));
    double angle = 0.5 * std::atan2(2 * sxy, sxx - syy);
    const auto ends = [&](double phi, double half, QPoint& p1, QPoint& p2) {
        const double ux = std::cos(phi) * half, uy = std::sin(phi) * half;
        p1 = QPoint(int(std::lround(c.x() - ux)), int(std::lround(c.y() - uy)));
        p2 = QPoint(int(std::lround(c.x() + ux)), int(std::lround(c.y() + uy)));
    };
    ends(angle, a, o.mainFirstAxisP1, o.mainFirstAxisP2);
    ends(angle + Pi / 2, bb, o.mainSecondAxisP1, o.mainSecondAxisP2);
    const auto degrees = [](double phi) {
        double d = phi * 180 / Pi;
        while (d < 0)
            d += 180;
        while (d >= 180)
            d -= 180;
        return d;
    };
    o.mainFirstAxisLength = 2 * a;
    o.mainSecondAxisLength = 2 * bb;
    o.mainFirstAxisAngle = degrees(angle);
    o.mainSecondAxisAngle = degrees(angle + Pi / 2);
    o.mainAxesAspectRatio = bb > 0 ? a / bb : 0;
    o.mainAxesElongation = a > 0 ? 1 - bb / a : 0;
    o.mainAxesCalculated = true;
}

void ObjectMeasures::computeLargestExtent(QSciSingleObject& o)
{
    const QVector<QPoint>& pts = o.borderPixels.isEmpty() ? o.fillPixels : o.borderPixels;
    qint64 best = -1;
    for (int i = 0; i < pts.size(); ++i)
        for (int j = i; j < pts.size(); ++j) {
            const qint64 dx = pts[i].x() - pts[j].x(), dy = pts[i].y() - pts[j].y();
            if (dx * dx + dy * dy > best) {
                best = dx * dx + dy * dy;
                o.largestExtentP1 = pts[i];
                o.largestExtentP2 = pts[j];
            }
        }
    o.largestExtentDistance = best > 0 ? std::sqrt(double(best)) : 0;
    o.largestExtentCalculated = true;
}

void ObjectMeasures::computeSkeleton(QSciSingleObject& o)
{
    LocalMask mask(o.fillPixels);
    o.skeletonPixels.clear();
    o.skeletonLargestBranch.clear();
    o.skeletonMaxLength = 0;
    o.skeletonNumberOfBranches = 0;
    o.skeletonCalculated = true;
    if (mask.bytes.empty())
        return;
    Thinning::thin(mask.bytes.data(), mask.w, mask.h);

    const int dxs[8] = { 1, -1, 0, 1, -1, 0, 1, -1 };
    const int dys[8] = { 0, 0, -1, -1, -1, 1, 1, 1 };
    std::vector<int> order(mask.bytes.size(), -1); // skeleton pixel number, or -1
    for (int x = 0; x < mask.w; ++x)
        for (int y = 0; y < mask.h; ++y)
            if (mask.bytes[size_t(x) * mask.h + y]) {
                order[size_t(x) * mask.h + y] = o.skeletonPixels.size();
                o.skeletonPixels.append(QPoint(x + mask.x0, y + mask.y0));
            }
    const int count = o.skeletonPixels.size();
    if (count == 0)
        return;
    std::vector<std::vector<std::pair<int, double>>> links(count);
    for (int i = 0; i < count; ++i) {
        const QPoint p = o.skeletonPixels[i];
        for (int k = 0; k < 8; ++k) {
            const int x = p.x() + dxs[k], y = p.y() + dys[k];
            if (!mask.has(x, y))
                continue;
            links[i].push_back({ order[mask.index(x, y)], (dxs[k] && dys[k]) ? Sqrt2 : 1.0 });
        }
    }

    // Branches: a skeleton with three or more ends has one branch per end; a line, a bend or a loop is one.
    int ends = 0;
    for (int i = 0; i < count; ++i)
        ends += links[i].size() == 1;
    o.skeletonNumberOfBranches = ends >= 3 ? ends : 1;

    // The longest path: farthest point from an end, then farthest from that (exact on trees).
    const auto farthest = [&](int from, std::vector<int>& previous) {
        std::vector<double> dist(count, std::numeric_limits<double>::infinity());
        previous.assign(count, -1);
        using Entry = std::pair<double, int>;
        std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> queue;
        dist[from] = 0;
        queue.push({ 0, from });
        while (!queue.empty()) {
            const auto [d, at] = queue.top();
            queue.pop();
            if (d > dist[at])
                continue;
            for (const auto& link : links[at])
                if (d + link.second < dist[link.first]) {
                    dist[link.first] = d + link.second;
                    previous[link.first] = at;
                    queue.push({ dist[link.first], link.first });
                }
        }
        int best = from;
        for (int i = 0; i < count; ++i)
            if (std::isfinite(dist[i]) && dist[i] > dist[best])
                best = i;
        return std::make_pair(best, dist[best]);
    };
    int start = 0;
    for (int i = 0; i < count; ++i)
        if (links[i].size() == 1) {
            start = i;
            break;
        }
    std::vector<int> previous;
    const int end = farthest(start, previous).first;
    const auto [other, length] = farthest(end, previous);
    o.skeletonMaxLength = length;
    for (int at = other; at != -1; at = previous[at])
        o.skeletonLargestBranch.append(o.skeletonPixels[at]);
}

QPointF ObjectMeasures::centroidOfArea(const QSciSingleObject& o)
{
    double sx = 0, sy = 0;
    for (const QPoint& p : o.fillPixels) {
        sx += p.x();
        sy += p.y();
    }
    const double n = std::max<qsizetype>(1, o.fillPixels.size());
    return QPointF(sx / n, sy / n);
}

QPointF ObjectMeasures::centroidOfCubage(const QSciSingleObject& o, const MeasureInput& in)
{
    const double n = o.fillPixels.size();
    if (n <= 0)
        return QPointF();
    const double reference = o.zMean - o.cubage / n;
    double sx = 0, sy = 0, sw = 0;
    for (const QPoint& p : o.fillPixels) {
        if (p.x() < 0 || p.y() < 0 || p.x() >= in.width || p.y() >= in.height)
            continue;
        const double w = in.z[qsizetype(p.x()) * in.height + p.y()] - reference;
        sx += w * p.x();
        sy += w * p.y();
        sw += w;
    }
    return sw != 0 ? QPointF(sx / sw, sy / sw) : centroidOfArea(o);
}
