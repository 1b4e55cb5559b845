#include "discmedian.h"

#include "mediannetwork.h"
#include "progressiveloop.h"
#include "rankset.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

/** Discs of up to this many points go through a selection network. */
constexpr int NetworkLimit = 13;
/** Points the network handles at once. */
constexpr int Batch = 64;

int floorRadius(double radius)
{
    return radius >= 1 ? int(std::min(std::floor(radius), 1e6)) : 0;
}

/** h[dx + R]: how far the disc reaches up and down in the column dx. */
std::vector<int> halfHeights(double radius)
{
    const int R = floorRadius(radius);
    const double r2 = radius * radius;
    std::vector<int> h(2 * R + 1);
    for (int dx = -R; dx <= R; ++dx) {
        int reach = R;
        while (reach > 0 && double(dx) * dx + double(reach) * reach > r2)
            --reach;
        h[dx + R] = reach;
    }
    return h;
}

struct Job {
    const double* z;
    int w;
    int h;
    double radius;
    int R;
    QRect region;
    const uchar* mask;
    double* out;
    std::vector<int> reach;

    bool selected(int x, int y) const { return !mask || mask[qsizetype(x) * h + y]; }

    /** The plain way, for points whose disc reaches out of the matrix. */
    double bruteForce(int x, int y, std::vector<double>& values) const
    {
        values.clear();
        for (int dx = -R; dx <= R; ++dx) {
            const int cx = x + dx;
            if (cx < 0 || cx >= w)
                continue;
            const int reachHere = reach[dx + R];
            const int from = std::max(0, y - reachHere), to = std::min(h - 1, y + reachHere);
            const double* column = z + qsizetype(cx) * h;
            values.insert(values.end(), column + from, column + to + 1);
        }
        auto middle = values.begin() + values.size() / 2;
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }
};

// ---- small discs: a selection network over a batch of points ----------------------------------------------

/** Lane by lane, the smaller value into @p a and the larger into @p b. */
inline void compareExchange(double* a, double* b)
{
#if defined(__SSE2__)
    for (int p = 0; p < Batch; p += 2) {
        const __m128d u = _mm_loadu_pd(a + p), v = _mm_loadu_pd(b + p);
        _mm_storeu_pd(a + p, _mm_min_pd(u, v));
        _mm_storeu_pd(b + p, _mm_max_pd(u, v));
    }
#else
    for (int p = 0; p < Batch; ++p) {
        const double u = a[p], v = b[p];
        a[p] = v < u ? v : u;
        b[p] = v < u ? u : v;
    }
#endif
}

void networkColumn(const Job& job, const MedianNetwork& network, const QVector<QPoint>& taps, int x,
    std::vector<double>& lanes, std::vector<double>& scratch)
{
    const int n = network.count();
    const int y0 = job.region.top(), y1 = job.region.bottom();
    const bool innerColumn = x >= job.R && x < job.w - job.R;
    const int inner0 = innerColumn ? std::max(y0, job.R) : y1 + 1;
    const int inner1 = innerColumn ? std::min(y1, job.h - 1 - job.R) : y1;
    double* columnOut = job.out + qsizetype(x) * job.h;
    for (int y = y0; y <= y1; ++y) {
        if (y < inner0 || y > inner1) {
            if (job.selected(x, y))
                columnOut[y] = job.bruteForce(x, y, scratch);
            continue;
        }
        const int count = std::min(Batch, inner1 - y + 1);
        for (int e = 0; e < n; ++e) {
            const double* source = job.z + qsizetype(x + taps[e].x()) * job.h + taps[e].y() + y;
            std::memcpy(&lanes[size_t(e) * Batch], source, sizeof(double) * size_t(count));
        }
        for (const QPair<int, int>& c : network.comparators())
            compareExchange(&lanes[size_t(c.first) * Batch], &lanes[size_t(c.second) * Batch]);
        const double* median = &lanes[size_t(network.medianSlot()) * Batch];
        for (int p = 0; p < count; ++p)
            if (job.selected(x, y + p))
                columnOut[y + p] = median[p];
        y += count - 1;
    }
}

// ---- larger discs: ranks per tile and a sliding set ---------------------------------------------------------

quint64 orderedKey(double value)
{
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits >> 63) ? ~bits : bits | (quint64(1) << 63);
}

/** Scratch of one thread, kept between tiles so big buffers are not mapped and unmapped each time. */
struct TileScratch {
    std::vector<double> values; // the tile with its halo, column by column
    std::vector<quint64> keys, keys2;
    std::vector<quint32> order, order2;
    std::vector<quint32> ranks; // rank of each local point
    std::vector<double> sorted; // values by rank
    std::vector<quint32> histogram;
    RankSet set;
};

/** Stable LSD radix sort of the keys, 11 bits a pass, passes where every key has the same digit skipped. */
void sortKeys(TileScratch& s, size_t m)
{
    constexpr int Bits = 11, Passes = 6, Buckets = 1 << Bits;
    std::vector<quint32>& histogram = s.histogram;
    histogram.assign(size_t(Passes) * Buckets, 0);
    for (size_t i = 0; i < m; ++i) {
        const quint64 k = s.keys[i];
        for (int d = 0; d < Passes; ++d)
            ++histogram[size_t(d) * Buckets + ((k >> (Bits * d)) & (Buckets - 1))];
    }
    for (size_t i = 0; i < m; ++i)
        s.order[i] = quint32(i);
    for (int d = 0; d < Passes; ++d) {
        quint32* count = &histogram[size_t(d) * Buckets];
        const int shift = Bits * d;
        if (count[(s.keys[0] >> shift) & (Buckets - 1)] == m)
            continue;
        quint32 sum = 0;
        for (int b = 0; b < Buckets; ++b) {
            const quint32 c = count[b];
            count[b] = sum;
            sum += c;
        }
        for (size_t i = 0; i < m; ++i) {
            const quint64 k = s.keys[i];
            const quint32 to = count[(k >> shift) & (Buckets - 1)]++;
            s.keys2[to] = k;
            s.order2[to] = s.order[i];
        }
        s.keys.swap(s.keys2);
        s.order.swap(s.order2);
    }
}

void slideColumns(const Job& job, const QRect& tile, TileScratch& s);

void rankTile(const Job& job, const QRect& tile, TileScratch& s)
{
    const int hx0 = std::max(0, tile.left() - job.R), hx1 = std::min(job.w - 1, tile.right() + job.R);
    const int hy0 = std::max(0, tile.top() - job.R), hy1 = std::min(job.h - 1, tile.bottom() + job.R);
    const int tw = hx1 - hx0 + 1, th = hy1 - hy0 + 1;
    const size_t m = size_t(tw) * size_t(th);
    s.values.resize(m);
    s.keys.resize(m);
    s.keys2.resize(m);
    s.order.resize(m);
    s.order2.resize(m);
    s.ranks.resize(m);
    s.sorted.resize(m);
    for (int cx = 0; cx < tw; ++cx) {
        const double* column = job.z + qsizetype(hx0 + cx) * job.h + hy0;
        std::copy(column, column + th, s.values.begin() + qsizetype(cx) * th);
    }
    for (size_t i = 0; i < m; ++i)
        s.keys[i] = orderedKey(s.values[i]);
    sortKeys(s, m);
    for (size_t rank = 0; rank < m; ++rank) {
        const quint32 local = s.order[rank];
        s.ranks[local] = quint32(rank);
        s.sorted[rank] = s.values[local];
    }

    slideColumns(job, tile, s);
}

void slideColumns(const Job& job, const QRect& tile, TileScratch& s)
{
    RankSet& set = s.set;
    const int hx0 = std::max(0, tile.left() - job.R), hy0 = std::max(0, tile.top() - job.R);
    const int th = std::min(job.h - 1, tile.bottom() + job.R) - hy0 + 1;
    const quint64 m = s.ranks.size();
    std::vector<const quint32*> columns; // ranks of each disc column, indexed by the global row
    std::vector<int> reaches;
    for (int x = tile.left(); x <= tile.right(); ++x) {
        if (job.mask) {
            const uchar* mask = job.mask + qsizetype(x) * job.h;
            if (std::none_of(mask + tile.top(), mask + tile.bottom() + 1, [](uchar v) { return v != 0; }))
                continue;
        }
        columns.clear();
        reaches.clear();
        for (int dx = -job.R; dx <= job.R; ++dx) {
            if (x + dx < 0 || x + dx >= job.w)
                continue;
            columns.push_back(s.ranks.data() + qsizetype(x + dx - hx0) * th - hy0);
            reaches.push_back(job.reach[dx + job.R]);
        }
        set.reset(m);
        qint64 median = 0; // a rank, not always a member
        qint64 below = 0; // members < median
        qint64 members = 0;
        auto insert = [&](quint32 rank) {
            set.insert(rank);
            ++members;
            below += rank < median;
        };
        auto erase = [&](quint32 rank) {
            set.erase(rank);
            --members;
            below -= rank < median;
        };
        const int y0 = tile.top();
        for (size_t c = 0; c < columns.size(); ++c) {
            const int from = std::max(0, y0 - reaches[c]), to = std::min(job.h - 1, y0 + reaches[c]);
            for (int y = from; y <= to; ++y)
                insert(columns[c][y]);
        }
        double* columnOut = job.out + qsizetype(x) * job.h;
        for (int y = y0;; ++y) {
            const qint64 k = members / 2;
            while (below > k) {
                median = set.previous(median - 1);
                --below;
            }
            if (!set.contains(quint32(median)))
                median = set.next(median);
            while (below < k) {
                ++below;
                median = set.next(median + 1);
            }
            if (job.selected(x, y))
                columnOut[y] = s.sorted[size_t(median)];
            if (y == tile.bottom())
                break;
            if (y - job.R >= 0 && y + 1 + job.R < job.h) {
                // Away from the matrix's edges every disc column loses one point and gains one.
                for (size_t c = 0; c < columns.size(); ++c) {
                    const quint32 leaving = columns[c][y - reaches[c]], entering = columns[c][y + 1 + reaches[c]];
                    set.erase(leaving);
                    set.insert(entering);
                    below += qint64(entering < median) - qint64(leaving < median);
                }
                continue;
            }
            for (size_t c = 0; c < columns.size(); ++c) {
                const int leaving = y - reaches[c], entering = y + 1 + reaches[c];
                if (leaving >= 0)
                    erase(columns[c][leaving]);
                if (entering < job.h)
                    insert(columns[c][entering]);
            }
        }
    }
}

} // namespace

QVector<QPoint> DiscMedian::offsets(double radius)
{
    const int R = floorRadius(radius);
    const std::vector<int> reach = halfHeights(radius);
    QVector<QPoint> list;
    for (int dx = -R; dx <= R; ++dx)
        for (int dy = -reach[dx + R]; dy <= reach[dx + R]; ++dy)
            if (dx != 0 || dy != 0)
                list.append(QPoint(dx, dy));
    return list;
}

bool DiscMedian::filter(const double* z, int width, int height, double radius, const QRect& region, const uchar* mask,
    double* out, ProgressSink* progress, const QString& label)
{
    const QRect area = region.intersected(QRect(0, 0, width, height));
    if (area.isEmpty())
        return true;
    // A disc wider than the matrix adds no point, so huge radii cost no more than the matrix.
    const double effective = std::min(radius, double(width) + double(height));
    const Job job { z, width, height, effective, floorRadius(effective), area, mask, out, halfHeights(effective) };
    if (job.R == 0) {
        for (int x = area.left(); x <= area.right(); ++x)
            for (int y = area.top(); y <= area.bottom(); ++y)
                if (job.selected(x, y))
                    out[qsizetype(x) * height + y] = z[qsizetype(x) * height + y];
        return true;
    }

    QVector<QPoint> taps = offsets(effective);
    taps.prepend(QPoint(0, 0));
    if (taps.size() <= NetworkLimit) {
        const MedianNetwork network(taps.size());
        constexpr int band = 8;
        const int units = (area.width() + band - 1) / band;
        return ProgressiveLoop::run(units, progress, label, [&](int unit) {
            thread_local std::vector<double> lanes, scratch;
            lanes.resize(size_t(network.count()) * Batch);
            const int first = area.left() + unit * band, last = std::min(area.right(), first + band - 1);
            for (int x = first; x <= last; ++x)
                networkColumn(job, network, taps, x, lanes, scratch);
        });
    }

    // Tiles large against the halo keep the ranking overhead low; the set stays small enough for the caches.
    const int side = std::max(64, std::min(512, 12 * job.R));
    const int across = (area.width() + side - 1) / side, down = (area.height() + side - 1) / side;
    return ProgressiveLoop::run(across * down, progress, label, [&](int unit) {
        thread_local TileScratch scratch;
        const int tx = area.left() + (unit % across) * side, ty = area.top() + (unit / across) * side;
        const QRect tile(
            QPoint(tx, ty), QPoint(std::min(area.right(), tx + side - 1), std::min(area.bottom(), ty + side - 1)));
        rankTile(job, tile, scratch);
    });
}
