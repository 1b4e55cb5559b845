#include "mediannetwork.h"

#include <QSet>
#include <algorithm>

MedianNetwork::MedianNetwork(int count)
    : m_count(count)
{
    int size = 1;
    while (size < count)
        size <<= 1;
    // slot[i]: which input holds logical position i; positions from count up hold +infinity.
    QVector<int> slot(size);
    QVector<bool> infinite(size);
    for (int i = 0; i < size; ++i) {
        slot[i] = i;
        infinite[i] = i >= count;
    }
    QVector<QPair<int, int>> all;
    auto compare = [&](int i, int j) {
        if (infinite[j])
            return; // the larger side already holds +infinity
        if (infinite[i]) {
            std::swap(slot[i], slot[j]);
            std::swap(infinite[i], infinite[j]);
            return;
        }
        all.append({ slot[i], slot[j] });
    };
    for (int p = 1; p < size; p <<= 1)
        for (int k = p; k >= 1; k >>= 1)
            for (int j = k % p; j + k < size; j += 2 * k)
                for (int i = 0; i < std::min(k, size - j - k); ++i)
                    if ((i + j) / (2 * p) == (i + j + k) / (2 * p))
                        compare(i + j, i + j + k);
    m_median = slot[count / 2];

    QSet<int> needed { m_median };
    for (int c = all.size() - 1; c >= 0; --c) {
        const QPair<int, int>& pair = all.at(c);
        if (needed.contains(pair.first) || needed.contains(pair.second)) {
            needed.insert(pair.first);
            needed.insert(pair.second);
            m_comparators.prepend(pair);
        }
    }
}
