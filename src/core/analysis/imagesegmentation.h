#pragma once

#include <vector>

using uchar = unsigned char;

/**
 * Splits a field into regions, each a list of point indices in the item's order (x * height + y). Works on raw
 * arrays only, so the window, velmora-cli and the tests share it; the caller turns regions into object records.
 */
class ImageSegmentation final {
public:
    using Regions = std::vector<std::vector<int>>;

    /**
     * The connected regions of the selected points of @p mask, 4-connected (edges) or 8-connected (edges and
     * corners). Regions come in the order of their first point.
     */
    static Regions maskComponents(const uchar* mask, int width, int height, int connectivity);

    /**
     * Grains by marker-based watershed on hills: points are flooded from the highest down, so every regional
     * maximum starts a basin. Where two basins meet, the one with the lower peak is absorbed when its peak rises
     * less than @p minDepth above the meeting level; deeper basins stay apart. A point joins the grain of its
     * highest flooded neighbour. Only points of @p domain (non-zero) are flooded; the others separate grains.
     * Points whose z is not finite are never flooded. A grain whose peak rises less than @p minDepth above its
     * own lowest point is dropped. Regions come in the order of their peak, highest first.
     */
    static Regions watershed(const double* z, const uchar* domain, int width, int height, double minDepth);
};
