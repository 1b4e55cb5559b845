#include "imagesegmentation.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/** Union-find over point indices with path halving; roots keep the highest peak of their set. */
struct Basins {
    std::vector<int> parent;
    std::vector<double> peak;

    explicit Basins(size_t n)
        : parent(n, -1)
        , peak(n, 0)
    {
    }
    int root(int i)
    {
        while (parent[size_t(i)] != i) {
            parent[size_t(i)] = parent[size_t(parent[size_t(i)])];
            i = parent[size_t(i)];
        }
        return i;
    }
};

} // namespace

ImageSegmentation::Regions ImageSegmentation::maskComponents(const uchar* mask, int width, int height, int connectivity)
{
    Regions regions;
    if (!mask || width <= 0 || height <= 0)
        return regions;
    const size_t n = size_t(width) * size_t(height);
    std::vector<char> seen(n, 0);
    std::vector<int> stack;
    for (size_t start = 0; start < n; ++start) {
        if (!mask[start] || seen[start])
            continue;
        std::vector<int> region;
        seen[start] = 1;
        stack.push_back(int(start));
        while (!stack.empty()) {
            const int p = stack.back();
            stack.pop_back();
            region.push_back(p);
            const int x = p / height, y = p % height;
            for (int dx = -1; dx <= 1; ++dx)
                for (int dy = -1; dy <= 1; ++dy) {
                    if ((dx == 0 && dy == 0) || (connectivity == 4 && dx != 0 && dy != 0))
                        continue;
                    const int nx = x + dx, ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= width || ny >= height)
                        continue;
                    const size_t q = size_t(nx) * size_t(height) + size_t(ny);
                    if (mask[q] && !seen[q]) {
                        seen[q] = 1;
                        stack.push_back(int(q));
                    }
                }
        }
        std::sort(region.begin(), region.end());
        regions.push_back(std::move(region));
    }
    return regions;
}

ImageSegmentation::Regions ImageSegmentation::watershed(
    const double* z, const uchar* domain, int width, int height, double minDepth)
{
    Regions regions;
    if (!z || width <= 0 || height <= 0)
        return regions;
    const size_t n = size_t(width) * size_t(height);
    std::vector<int> order;
    order.reserve(n);
    for (size_t i = 0; i < n; ++i)
        if ((!domain || domain[i]) && std::isfinite(z[i]))
            order.push_back(int(i));
    // Equal heights keep the index order, so plateaus flood the same way on every run.
    std::stable_sort(order.begin(), order.end(), [z](int a, int b) { return z[a] > z[b]; });

    Basins basins(n);
    int roots[4];
    for (const int p : order) {
        const int x = p / height, y = p % height;
        const int neighbours[4] = { x > 0 ? p - height : -1, x + 1 < width ? p + height : -1, y > 0 ? p - 1 : -1,
            y + 1 < height ? p + 1 : -1 };
        int count = 0, steepest = -1;
        for (const int q : neighbours) {
            if (q < 0 || basins.parent[size_t(q)] < 0)
                continue;
            if (steepest < 0 || z[q] > z[steepest])
                steepest = q;
            const int r = basins.root(q);
            if (std::find(roots, roots + count, r) == roots + count)
                roots[count++] = r;
        }
        if (count == 0) {
            basins.parent[size_t(p)] = p;
            basins.peak[size_t(p)] = z[p];
            continue;
        }
        const int highest = *std::max_element(
            roots, roots + count, [&](int a, int b) { return basins.peak[size_t(a)] < basins.peak[size_t(b)]; });
        for (int k = 0; k < count; ++k)
            if (roots[k] != highest && basins.peak[size_t(roots[k])] - z[p] < minDepth)
                basins.parent[size_t(roots[k])] = highest;
        // The point joins the grain it is reached from most steeply, so a ridge between grains splits fairly.
        basins.parent[size_t(p)] = basins.root(steepest);
    }

    // Regions by their root, numbered in the order roots were made: highest peak first.
    std::vector<int> regionOf(n, -1);
    for (const int p : order)
        if (basins.parent[size_t(p)] == p)
            regionOf[size_t(p)] = -2;
    std::vector<int> rootsInOrder;
    for (const int p : order)
        if (regionOf[size_t(p)] == -2) {
            regionOf[size_t(p)] = int(rootsInOrder.size());
            rootsInOrder.push_back(p);
        }
    regions.resize(rootsInOrder.size());
    std::vector<int> sorted(order);
    std::sort(sorted.begin(), sorted.end());
    for (const int p : sorted) {
        regions[size_t(regionOf[size_t(basins.root(p))])].push_back(p);
    }
    // A speck of the domain that never rises minDepth above its own lowest point is noise, not a grain.
    regions.erase(std::remove_if(regions.begin(), regions.end(),
                      [&](const std::vector<int>& r) {
                          if (r.empty())
                              return true;
                          const auto [low, high]
                              = std::minmax_element(r.begin(), r.end(), [z](int a, int b) { return z[a] < z[b]; });
                          return z[*high] - z[*low] < minDepth;
                      }),
        regions.end());
    return regions;
}
