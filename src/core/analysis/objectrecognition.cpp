#include "objectrecognition.h"

#include "objectmeasures.h"

#include "core/base/parallel.h"
#include "core/base/progresssink.h"
#include "core/items/qscisingleobject.h"

#include <QCoreApplication>
#include <algorithm>
#include <atomic>
#include <memory>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/** What a tile hands to the fill: its seed and the reference height, worked out before any fill. */
struct Tile {
    int seed = -1; ///< -1: the tile yields nothing
    double peak = 0;
    double reference = 0;
};

/** The points of the midpoint circle of radius @p r, eight-way symmetric, duplicates on the diagonals kept. */
std::vector<std::pair<int, int>> midpointCircle(int r)
{
    std::vector<std::pair<int, int>> points;
    int x = r, y = 0, err = 1 - r;
    while (x >= y) {
        const std::pair<int, int> eight[8]
            = { { x, y }, { y, x }, { -y, x }, { -x, y }, { -x, -y }, { -y, -x }, { y, -x }, { x, -y } };
        points.insert(points.end(), eight, eight + 8);
        ++y;
        if (err < 0) {
            err += 2 * y + 1;
        } else {
            --x;
            err += 2 * (y - x) + 1;
        }
    }
    return points;
}

/** The mean of the values at sorted positions k ... 2k-1 (k = count/3), by selection rather than a full sort. */
double middleThirdMean(std::vector<double>& v)
{
    const size_t n = v.size(), k = n / 3;
    if (n == 0)
        return 0;
    if (k == 0) {
        std::nth_element(v.begin(), v.begin() + n / 2, v.end());
        return v[n / 2];
    }
    std::nth_element(v.begin(), v.begin() + k, v.end());
    std::nth_element(v.begin() + k, v.begin() + (2 * k - 1), v.end());
    double sum = 0;
    for (size_t i = k; i < 2 * k; ++i)
        sum += v[i];
    return sum / double(k);
}

/** The mean z of each 8-connected region of the mask: the levels of the marked areas. */
std::vector<double> markedLevels(const RecognitionInput& in)
{
    std::vector<double> levels;
    if (!in.mask)
        return levels;
    const int w = in.width, h = in.height;
    std::vector<uchar> seen(size_t(w) * h, 0);
    std::vector<int> stack;
    for (int start = 0; start < w * h; ++start) {
        if (!in.mask[start] || seen[start])
            continue;
        double sum = 0;
        qint64 count = 0;
        stack.assign(1, start);
        seen[start] = 1;
        while (!stack.empty()) {
            const int i = stack.back();
            stack.pop_back();
            if (std::isfinite(in.z[i])) {
                sum += in.z[i];
                ++count;
            }
            const int x = i / h, y = i % h;
            for (int dx = -1; dx <= 1; ++dx)
                for (int dy = -1; dy <= 1; ++dy) {
                    const int nx = x + dx, ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= w || ny >= h)
                        continue;
                    const int n = nx * h + ny;
                    if (in.mask[n] && !seen[n]) {
                        seen[n] = 1;
                        stack.push_back(n);
                    }
                }
        }
        if (count)
            levels.push_back(sum / double(count));
    }
    return levels;
}

/** Half the short axis of the ellipse with the pixels' second moments, as the object's measures define it. */
double shortSemiAxis(const std::vector<int>& pixels, int h)
{
    QSciSingleObject shape;
    shape.fillPixels.reserve(int(pixels.size()));
    for (int i : pixels)
        shape.fillPixels.append(QPoint(i / h, i % h));
    ObjectMeasures::computeMainAxes(shape);
    return shape.mainSecondAxisLength / 2;
}

/**
 * The lowest and highest z of every 8 x 8 block, and the points of the reference circle grouped by the block they
 * fall in, for each place of the centre within its block. A tile on flat ground proves itself too flat from about a
 * hundred block bounds instead of some six hundred scattered points; only the others read their circle.
 */
struct BlockBounds {
    static constexpr int B = 8;
    struct Entry {
        int dbx, dby, count;
    };
    int bw = 0, bh = 0;
    bool partialX = false, partialY = false; ///< the last block column (row) is cut by the image edge
    /** Per block the two lowest and the two highest values: one spike then costs a bound one point, not the block. */
    struct Bounds {
        double low, low2, high, high2;
    };
    std::vector<Bounds> blocks;
    std::vector<std::vector<Entry>> patterns;
    bool usable = true;

    BlockBounds(const RecognitionInput& in, const std::vector<std::pair<int, int>>& circle)
        : bw((in.width + B - 1) / B)
        , bh((in.height + B - 1) / B)
        , blocks(size_t(bw) * bh)
        , patterns(B * B)
    {
        partialX = in.width % B != 0;
        partialY = in.height % B != 0;
        std::atomic<bool> finite { true };
        Parallel::forEach(bw, [&](int bx) {
            for (int by = 0; by < bh; ++by) {
                double lo = std::numeric_limits<double>::infinity(), hi = -lo, lo2 = lo, hi2 = hi;
                for (int x = bx * B; x < std::min(in.width, (bx + 1) * B); ++x) {
                    const double* column = in.z + qsizetype(x) * in.height;
                    for (int y = by * B; y < std::min(in.height, (by + 1) * B); ++y) {
                        const double v = column[y];
                        lo2 = std::min(lo2, std::max(lo, v));
                        lo = std::min(lo, v);
                        hi2 = std::max(hi2, std::min(hi, v));
                        hi = std::max(hi, v);
                    }
                }
                // NaN escapes min and max: a matrix with gaps takes the long way.
                if (!std::isfinite(lo) || !std::isfinite(hi))
                    finite = false;
                blocks[size_t(bx) * bh + by] = Bounds { lo, lo2, hi, hi2 };
            }
        });
        for (qsizetype i = 0; finite && i < qsizetype(in.width) * in.height; i += 1)
            if (!std::isfinite(in.z[i]))
                finite = false;
        usable = finite;
        const auto floorDiv = [](int a) { return a >= 0 ? a / B : -((-a + B - 1) / B); };
        for (int ox = 0; ox < B; ++ox)
            for (int oy = 0; oy < B; ++oy) {
                std::vector<Entry>& pattern = patterns[size_t(ox) * B + oy];
                for (const auto& p : circle) {
                    const int dbx = floorDiv(ox + p.first), dby = floorDiv(oy + p.second);
                    auto found = std::find_if(
                        pattern.begin(), pattern.end(), [&](const Entry& e) { return e.dbx == dbx && e.dby == dby; });
                    if (found == pattern.end())
                        pattern.push_back({ dbx, dby, 1 });
                    else
                        ++found->count;
                }
            }
    }

    /**
     * Whether more than @p rank circle points around (sx, sy) may lie at or below @p limit, each point taken as
     * sign * z. No point lies below its block's bound, so when at most @p rank blocks' worth of points can, the
     * value at sorted position @p rank lies above @p limit.
     */
    bool rankAbove(int sx, int sy, double sign, size_t rank, double limit) const
    {
        const int bx = sx / B, by = sy / B;
        size_t seen = 0;
        for (const Entry& e : patterns[size_t(sx % B) * B + sy % B]) {
            const int cx = bx + e.dbx, cy = by + e.dby;
            if (cx < 0 || cy < 0 || cx >= bw || cy >= bh)
                continue;
            const size_t i = size_t(cx) * bh + size_t(cy);
            seen += (sign > 0 ? blocks[i].low : -blocks[i].high) <= limit ? size_t(e.count) : 0;
        }
        return seen <= rank;
    }

    /**
     * Upper bounds of the circle points around (sx, sy) at or below @p lowLimit and at or above @p highLimit, and
     * the number of circle points inside the image. False when a block cut by the image edge is met: its points
     * are counted one by one instead.
     */
    bool bound(int sx, int sy, double lowLimit, double highLimit, size_t* below, size_t* above, size_t* count) const
    {
        const int bx = sx / B, by = sy / B;
        size_t b = 0, a = 0, n = 0;
        for (const Entry& e : patterns[size_t(sx % B) * B + sy % B]) {
            const int cx = bx + e.dbx, cy = by + e.dby;
            if (cx < 0 || cy < 0 || cx >= bw || cy >= bh)
                continue;
            if ((partialX && cx == bw - 1) || (partialY && cy == bh - 1))
                return false;
            const size_t i = size_t(cx) * bh + size_t(cy);
            n += size_t(e.count);
            // Below the second lowest only the lowest point can be, and only if it is one of the circle's.
            const Bounds& k = blocks[i];
            b += k.low2 <= lowLimit ? size_t(e.count) : k.low <= lowLimit ? 1 : 0;
            a += k.high2 >= highLimit ? size_t(e.count) : k.high >= highLimit ? 1 : 0;
        }
        *below = b;
        *above = a;
        *count = n;
        return true;
    }
};

/** The state of one search: the maps, the queue and the size filters. */
class Search {
public:
    Search(const ObjectRecognitionOptions& o, const RecognitionInput& in, const RecognitionTiles& t)
        : m_o(o)
        , m_in(in)
        , m_t(t)
        , m_taken(size_t(in.width) * in.height, 0)
        , m_visited(size_t(in.width) * in.height, 0)
    {
        m_queue.reserve(size_t(4) * t.wMax * t.hMax);
    }

    bool floodFill(ProgressSink* progress);
    bool zRange(ProgressSink* progress);

    std::vector<std::vector<int>> found;
    std::vector<double> references;

private:
    std::vector<Tile> tiles() const;
    bool isLocalPeak(int seed, double sign) const;
    /** The border and distance rule of the object type for neighbour (x, y) of a fill seeded at (sx, sy). */
    bool breaksBorder(int x, int y, int sx, int sy) const
    {
        if (m_o.objectType == ObjectRecognitionOptions::Open)
            return false;
        if (std::abs(x - sx) > 2 * m_t.wMax || std::abs(y - sy) > 2 * m_t.hMax)
            return true;
        return m_o.objectType == ObjectRecognitionOptions::OpenAndClosed
            && (x == 0 || y == 0 || x == m_in.width - 1 || y == m_in.height - 1);
    }
    bool passesFilters(const std::vector<int>& pixels) const;
    void accept(std::vector<int>& pixels, double reference)
    {
        for (int i : pixels)
            m_taken[i] = 1;
        found.push_back(std::move(pixels));
        references.push_back(reference);
    }
    void clearVisited()
    {
        for (int i : m_touched)
            m_visited[i] = 0;
        m_touched.clear();
    }

    const ObjectRecognitionOptions& m_o;
    const RecognitionInput& m_in;
    const RecognitionTiles m_t;
    std::vector<uchar> m_taken;
    std::vector<uchar> m_visited;
    std::vector<int> m_touched;
    std::vector<int> m_queue;
};

// Right, left, below, below-right, below-left, above, above-right, above-left; below is y - 1 (rows count up).
constexpr int NeighbourX[8] = { 1, -1, 0, 1, -1, 0, 1, -1 };
constexpr int NeighbourY[8] = { 0, 0, -1, -1, -1, 1, 1, 1 };

std::vector<Tile> Search::tiles() const
{
    const int w = m_in.width, h = m_in.height;
    const int wMin = m_t.wMin, hMin = m_t.hMin;
    std::vector<int> centresX, centresY;
    for (int cx = wMin / 2; cx + wMin < w; cx += wMin)
        centresX.push_back(cx);
    for (int cy = hMin / 2; cy + hMin < h; cy += hMin)
        centresY.push_back(cy);
    std::vector<Tile> result(centresX.size() * centresY.size());
    if (result.empty())
        return result;

    const double sign = m_o.depressions ? -1 : 1;
    const std::vector<double> levels = m_o.subPlanes ? markedLevels(m_in) : std::vector<double>();
    const int r = std::max(m_t.wMax, m_t.hMax);
    const std::vector<std::pair<int, int>> circle = midpointCircle(r);
    std::vector<qsizetype> offsets;
    for (const auto& p : circle)
        offsets.push_back(qsizetype(p.first) * h + p.second);
    const int columns = int(centresX.size());
    const bool useBlocks = m_o.deltaZMin.checked && levels.empty();
    const std::unique_ptr<BlockBounds> blocks = useBlocks ? std::make_unique<BlockBounds>(m_in, circle) : nullptr;

    // Every tile's seed and reference height depend on the matrix alone, so they are found for all tiles at once,
    // over the cores, before the fills that must run in order.
    // A task walks one column of tiles upwards: the matrix is held column by column, so both the peak search and
    // the circles of neighbouring tiles read memory that is already in the cache.
    const int rows = int(centresY.size());
    Parallel::forEach(columns, [&](int col) {
        std::vector<double> values;
        values.reserve(circle.size());
        const int cx = centresX[size_t(col)];
        for (int row = 0; row < rows; ++row) {
            const int cy = centresY[size_t(row)];
            Tile& tile = result[size_t(row) * columns + col];
            const int x0 = std::max(0, cx - wMin / 2), x1 = cx + wMin / 2 - 1;
            const int y0 = std::max(0, cy - hMin / 2), y1 = cy + hMin / 2 - 1;
            int seed = cx * h + cy;
            double best = std::isfinite(m_in.z[seed]) ? sign * m_in.z[seed] : -std::numeric_limits<double>::infinity();
            for (int x = x0; x <= x1; ++x) {
                const double* column = m_in.z + qsizetype(x) * h;
                for (int y = y0; y <= y1; ++y)
                    if (sign * column[y] > best) {
                        best = sign * column[y];
                        seed = x * h + y;
                    }
            }
            if (!std::isfinite(best))
                continue;
            const double peak = m_in.z[seed];
            double reference = 0;
            if (!levels.empty()) {
                reference = levels.front();
                for (double level : levels)
                    if (std::abs(level - peak) < std::abs(reference - peak))
                        reference = level;
            } else {
                values.clear();
                const int sx = seed / h, sy = seed % h;
                const bool inside = sx >= r && sy >= r && sx + r < w && sy + r < h;
                size_t count = 0, lowCount = 0, highCount = 0;
                if (blocks && blocks->usable
                    && blocks->bound(sx, sy, peak - m_o.deltaZMin.value, peak + m_o.deltaZMin.value, &lowCount,
                        &highCount, &count)) {
                    // The same test as below, on bounds: enough when the ground around is flat.
                    const size_t third = count / 3;
                    if (third > 0 && lowCount <= third && highCount <= count - 2 * third)
                        continue;
                    // A peak whose neighbours all stay below the lowest threshold its reference allows fills only
                    // itself, which is never an object (spikes, mostly): no need to know the reference exactly. The
                    // threshold rises with the reference, so it suffices that the reference's lowest possible value
                    // lies above the one that would let the highest neighbour in.
                    const double top = sign * peak;
                    double neighbour = -std::numeric_limits<double>::infinity();
                    for (int d = 0; d < 8; ++d) {
                        const int nx = sx + NeighbourX[d], ny = sy + NeighbourY[d];
                        if (nx >= 0 && ny >= 0 && nx < w && ny < h)
                            neighbour = std::max(neighbour, sign * m_in.z[qsizetype(nx) * h + ny]);
                    }
                    bool alone = third > 0 && neighbour < top;
                    if (alone && m_o.fillFactor > 0) {
                        const double needed = top - (top - neighbour) * 100 / m_o.fillFactor;
                        alone = blocks->rankAbove(sx, sy, sign, sign > 0 ? third : count - 2 * third, needed);
                    }
                    if (alone)
                        continue;
                }
                if (inside) {
                    const double* centre = m_in.z + seed;
                    for (qsizetype offset : offsets) {
                        const double v = centre[offset];
                        if (std::isfinite(v))
                            values.push_back(v);
                    }
                } else {
                    for (const auto& p : circle) {
                        const int x = sx + p.first, y = sy + p.second;
                        if (x >= 0 && y >= 0 && x < w && y < h) {
                            const double v = m_in.z[qsizetype(x) * h + y];
                            if (std::isfinite(v))
                                values.push_back(v);
                        }
                    }
                }
                const size_t n = values.size(), k = n / 3;
                if (m_o.deltaZMin.checked && k > 0) {
                    // The middle third lies strictly within DeltaZ (min) of the peak when few enough values lie
                    // outside on either side: then the tile is too flat, whatever their order.
                    const double low = peak - m_o.deltaZMin.value, high = peak + m_o.deltaZMin.value;
                    size_t below = 0, above = 0;
                    for (double v : values) {
                        below += v <= low;
                        above += v >= high;
                    }
                    if (below <= k && above <= n - 2 * k)
                        continue;
                }
                reference = middleThirdMean(values);
            }
            // A peak below its own reference (above it, for pits) does not rise from its surroundings at all.
            if (sign * peak < sign * reference)
                continue;
            const double deltaZ = std::abs(peak - reference);
            if (m_o.deltaZMax.checked && deltaZ > m_o.deltaZMax.value)
                continue;
            if (m_o.deltaZMin.checked && deltaZ < m_o.deltaZMin.value)
                continue;
            tile = Tile { seed, peak, reference };
        }
    });
    return result;
}

bool Search::isLocalPeak(int seed, double sign) const
{
    const int h = m_in.height, x = seed / h, y = seed % h;
    const double z = sign * m_in.z[seed];
    for (int k = 0; k < 8; ++k) {
        const int nx = x + NeighbourX[k], ny = y + NeighbourY[k];
        if (nx >= 0 && ny >= 0 && nx < m_in.width && ny < h && sign * m_in.z[qsizetype(nx) * h + ny] > z)
            return false;
    }
    return true;
}

bool Search::passesFilters(const std::vector<int>& pixels) const
{
    const int h = m_in.height;
    const double n = double(pixels.size());
    if ((m_o.areaMin.checked && n < m_o.areaMin.value) || (m_o.areaMax.checked && n > m_o.areaMax.value))
        return false;
    int minX = m_in.width, maxX = -1, minY = h, maxY = -1;
    for (int i : pixels) {
        const int x = i / h, y = i % h;
        minX = std::min(minX, x);
        maxX = std::max(maxX, x);
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
    }
    const double width = maxX - minX + 1, height = maxY - minY + 1;
    if ((m_o.widthMin.checked && width < m_o.widthMin.value) || (m_o.widthMax.checked && width > m_o.widthMax.value)
        || (m_o.heightMin.checked && height < m_o.heightMin.value)
        || (m_o.heightMax.checked && height > m_o.heightMax.value))
        return false;
    const double r1 = std::sqrt(n / ObjectMeasures::Pi);
    if ((m_o.r1Min.checked && r1 < m_o.r1Min.value) || (m_o.r1Max.checked && r1 > m_o.r1Max.value))
        return false;
    if (m_o.r2Min.checked || m_o.r2Max.checked) {
        const double r2 = shortSemiAxis(pixels, h);
        if ((m_o.r2Min.checked && r2 < m_o.r2Min.value) || (m_o.r2Max.checked && r2 > m_o.r2Max.value))
            return false;
    }
    if (m_o.onlyInSelection)
        for (int i : pixels)
            if (!m_in.mask || !m_in.mask[i])
                return false;
    return true;
}

bool Search::floodFill(ProgressSink* progress)
{
    const std::vector<Tile> all = tiles();
    const int w = m_in.width, h = m_in.height;
    const double sign = m_o.depressions ? -1 : 1;
    const size_t limit = size_t(m_t.wMax) * size_t(m_t.hMax);
    const int bands = std::max(1, (h - m_t.hMin / 2 + m_t.hMin - 1) / std::max(1, m_t.hMin));
    const size_t perBand = std::max<size_t>(1, all.size() / size_t(bands));
    for (size_t t = 0; t < all.size(); ++t) {
        if (progress && t % 256 == 0) {
            progress->step(int(t / perBand));
            if (progress->isCancelled())
                return false;
        }
        const Tile& tile = all[t];
        if (tile.seed < 0 || m_taken[size_t(tile.seed)])
            continue;
        const int seed = tile.seed, sx = seed / h, sy = seed % h;
        const double top = sign * tile.peak;
        const double threshold = top - m_o.fillFactor * (top - sign * tile.reference) / 100;
        const bool peakOfItsOwn = isLocalPeak(seed, sign);
        m_queue.assign(1, seed);
        m_visited[size_t(seed)] = 1;
        m_touched.push_back(seed);
        bool failed = false;
        for (size_t head = 0; head < m_queue.size() && !failed; ++head) {
            const int at = m_queue[head], x = at / h, y = at - x * h;
            for (int k = 0; k < 8; ++k) {
                const int nx = x + NeighbourX[k], ny = y + NeighbourY[k];
                if (nx < 0 || ny < 0 || nx >= w || ny >= h)
                    continue;
                const int n = nx * h + ny;
                if (m_visited[size_t(n)])
                    continue;
                m_visited[size_t(n)] = 1;
                m_touched.push_back(n);
                if (breaksBorder(nx, ny, sx, sy)) {
                    failed = true;
                    break;
                }
                if (!(sign * m_in.z[n] >= threshold))
                    continue;
                if (m_taken[size_t(n)]) {
                    if (!peakOfItsOwn) {
                        failed = true;
                        break;
                    }
                    continue;
                }
                m_queue.push_back(n);
                if (m_queue.size() + 7 >= limit) {
                    failed = true;
                    break;
                }
            }
        }
        clearVisited();
        if (failed || m_queue.size() < 2 || !passesFilters(m_queue))
            continue;
        std::vector<int> pixels(m_queue);
        accept(pixels, tile.reference);
    }
    return true;
}

bool Search::zRange(ProgressSink* progress)
{
    const int w = m_in.width, h = m_in.height;
    double lowest = std::numeric_limits<double>::infinity(), highest = -lowest;
    for (qsizetype i = 0; i < qsizetype(w) * h; ++i)
        if (std::isfinite(m_in.z[i])) {
            lowest = std::min(lowest, m_in.z[i]);
            highest = std::max(highest, m_in.z[i]);
        }
    const double low = lowest + m_o.zRangeMinFactor / 100 * (highest - lowest);
    const double high = lowest + m_o.zRangeMaxFactor / 100 * (highest - lowest);
    const auto inRange = [&](int i) { return m_in.z[i] >= low && m_in.z[i] <= high; };
    const size_t limit = size_t(m_t.wMax) * size_t(m_t.hMax);
    for (int x = 0; x < w; ++x) {
        if (progress) {
            progress->step(x);
            if (progress->isCancelled())
                return false;
        }
        for (int y = 0; y < h; ++y) {
            const int start = x * h + y;
            if (m_visited[size_t(start)] || !inRange(start))
                continue;
            m_queue.assign(1, start);
            m_visited[size_t(start)] = 1;
            bool failed = false;
            for (size_t head = 0; head < m_queue.size(); ++head) {
                const int at = m_queue[head], ax = at / h, ay = at - ax * h;
                for (int k = 0; k < 8; ++k) {
                    const int nx = ax + NeighbourX[k], ny = ay + NeighbourY[k];
                    if (nx < 0 || ny < 0 || nx >= w || ny >= h)
                        continue;
                    const int n = nx * h + ny;
                    if (m_visited[size_t(n)] || !inRange(n))
                        continue;
                    m_visited[size_t(n)] = 1;
                    failed = failed || breaksBorder(nx, ny, x, y);
                    m_queue.push_back(n);
                }
            }
            // The group is explored whole and marked visited for good, so none of its points seeds it again.
            if (failed || m_queue.size() < 2 || m_queue.size() + 7 >= limit || !passesFilters(m_queue))
                continue;
            std::vector<int> pixels(m_queue);
            accept(pixels, m_o.depressions ? high : low);
        }
    }
    return true;
}

QString text(const char* source)
{
    return QCoreApplication::translate("ObjectRecognition", source);
}

} // namespace

ObjectRecognition::ObjectRecognition(const ObjectRecognitionOptions& options)
    : m_options(options)
{
}

QString ObjectRecognition::additionalOffsetText()
{
    return text("Additional offset exceeds image dimensions!");
}

QString ObjectRecognition::tooSmallText()
{
    return text("Image dimensions are lower than 12x12 pixels!");
}

QString ObjectRecognition::noMinimumText()
{
    return text("Please select additional minimum defining values!");
}

QString ObjectRecognition::noMaximumText()
{
    return text("Please select additional maximum defining values!");
}

QString ObjectRecognition::invalidZRangeText()
{
    return text("Choose a valid z range");
}

bool ObjectRecognition::check(int width, int height, QString* message, RecognitionTiles* tiles) const
{
    const ObjectRecognitionOptions& o = m_options;
    const auto fail = [&](const QString& text) {
        if (message)
            *message = text;
        return false;
    };
    if (o.offsetX > width || o.offsetY > height)
        return fail(additionalOffsetText());
    if (width < 12 || height < 12)
        return fail(tooSmallText());

    std::vector<double> xs, ys;
    if (o.r1Min.checked && o.r2Min.checked) {
        xs.push_back(2 * std::min(o.r1Min.value, o.r2Min.value));
        ys.push_back(xs.back());
    } else if (o.r1Min.checked || o.r2Min.checked) {
        xs.push_back(2 * (o.r1Min.checked ? o.r1Min.value : o.r2Min.value));
        ys.push_back(xs.back());
    }
    if (o.widthMin.checked)
        xs.push_back(o.widthMin.value);
    if (o.heightMin.checked)
        ys.push_back(o.heightMin.value);
    if (o.areaMin.checked && xs.empty() && ys.empty()) {
        xs.push_back(2);
        ys.push_back(2);
    }
    if (xs.empty() && ys.empty())
        return fail(noMinimumText());
    const auto minimum = [](const std::vector<double>& candidates, int size) {
        double v = candidates.empty() ? 0 : *std::max_element(candidates.begin(), candidates.end());
        if (v < 1)
            v = 2;
        if (v > size)
            v = size / 2;
        return int(v);
    };

    std::vector<double> xMax, yMax;
    if (o.r1Max.checked)
        xMax.push_back(4 * o.r1Max.value);
    if (o.r2Max.checked)
        xMax.push_back(4 * o.r2Max.value);
    if (o.widthMax.checked)
        xMax.push_back(o.widthMax.value);
    if (o.areaMax.checked && !o.widthMax.checked && !o.r1Max.checked && !o.r2Max.checked)
        xMax.push_back(width);
    if (o.heightMax.checked)
        yMax.push_back(o.heightMax.value);
    if (o.areaMax.checked)
        yMax.push_back(height);
    if (o.r1Max.checked)
        yMax.push_back(4 * o.r1Max.value);
    if (o.r2Max.checked)
        yMax.push_back(4 * o.r2Max.value);
    if (xMax.empty() && yMax.empty())
        return fail(noMaximumText());
    const auto maximum = [](const std::vector<double>& candidates, int size) {
        double v = candidates.empty() ? 0 : *std::max_element(candidates.begin(), candidates.end());
        v = std::min<double>(std::max(v, 3.0), size - 1);
        return int(v);
    };
    if (o.zRangeMode && o.zRangeMinFactor >= o.zRangeMaxFactor)
        return fail(invalidZRangeText());
    if (tiles)
        *tiles
            = RecognitionTiles { minimum(xs, width), minimum(ys, height), maximum(xMax, width), maximum(yMax, height) };
    return true;
}

ObjectRecognition::Result ObjectRecognition::find(
    const RecognitionInput& input, QList<QSciSingleObject>* objects, ProgressSink* progress, QString* message) const
{
    RecognitionTiles tiles;
    if (!check(input.width, input.height, message, &tiles))
        return Result::Refused;
    Search search(m_options, input, tiles);
    if (progress)
        progress->begin(QCoreApplication::translate("ObjectRecognition", "Object recognition"),
            m_options.zRangeMode ? input.width : std::max(1, input.height / std::max(1, tiles.hMin)));
    const bool complete = m_options.zRangeMode ? search.zRange(progress) : search.floodFill(progress);
    if (progress)
        progress->end();
    if (!complete)
        return Result::Stopped;

    std::vector<QSciSingleObject> records(search.found.size());
    const MeasureInput measureInput { input.z, input.width, input.height };
    Parallel::forEach(int(records.size()), [&](int i) {
        QSciSingleObject& record = records[size_t(i)];
        const std::vector<int>& pixels = search.found[size_t(i)];
        record.fillPixels.reserve(int(pixels.size()));
        for (int index : pixels)
            record.fillPixels.append(QPoint(index / input.height, index % input.height));
        ObjectMeasures::computeAll(record, measureInput, search.references[size_t(i)]);
    });
    for (QSciSingleObject& record : records)
        objects->append(std::move(record));
    return Result::Done;
}
