#include "thinning.h"

#include <vector>

qsizetype Thinning::thin(uchar* mask, int w, int h)
{
    // A border of one unselected point on every side spares the tests below any bounds checks.
    const int pw = w + 2, ph = h + 2;
    std::vector<uchar> grid(size_t(pw) * ph, 0);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            grid[size_t(x + 1) * ph + y + 1] = mask[size_t(x) * h + y] != 0;
    const auto at = [&](int x, int y) { return grid[size_t(x) * ph + y]; };
    std::vector<size_t> doomed;
    qsizetype removed = 0;
    for (bool changed = true; changed;) {
        changed = false;
        for (int pass = 0; pass < 2; ++pass) {
            doomed.clear();
            for (int x = 1; x <= w; ++x)
                for (int y = 1; y <= h; ++y) {
                    if (!at(x, y))
                        continue;
                    // Neighbours P2..P9 clockwise from the one above (up is +y).
                    const uchar p[8] = { at(x, y + 1), at(x + 1, y + 1), at(x + 1, y), at(x + 1, y - 1), at(x, y - 1),
                        at(x - 1, y - 1), at(x - 1, y), at(x - 1, y + 1) };
                    int count = 0, transitions = 0;
                    for (int k = 0; k < 8; ++k) {
                        count += p[k];
                        transitions += !p[k] && p[(k + 1) % 8];
                    }
                    if (count < 2 || count > 6 || transitions != 1)
                        continue;
                    const bool first = pass == 0;
                    if (first ? (p[0] && p[2] && p[4]) || (p[2] && p[4] && p[6])
                              : (p[0] && p[2] && p[6]) || (p[0] && p[4] && p[6]))
                        continue;
                    doomed.push_back(size_t(x) * ph + y);
                }
            for (size_t i : doomed)
                grid[i] = 0;
            removed += qsizetype(doomed.size());
            changed = changed || !doomed.empty();
        }
    }
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            mask[size_t(x) * h + y] = grid[size_t(x + 1) * ph + y + 1];
    return removed;
}
