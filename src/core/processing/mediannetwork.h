#pragma once

#include <QVector>

/**
 * A comparator network that leaves the element at position count/2 of the ascending order in one of its
 * inputs: Batcher's odd-even merge sort over the next power of two, with the padding of +infinity folded away
 * and every comparator that cannot reach the median dropped. Applied to many points at once, its min/max pairs
 * run as vector instructions.
 */
class MedianNetwork final {
public:
    explicit MedianNetwork(int count);

    int count() const { return m_count; }
    /** Pairs (a, b) of input slots: a receives the smaller, b the larger value. */
    const QVector<QPair<int, int>>& comparators() const { return m_comparators; }
    /** The slot that holds the median once every comparator ran. */
    int medianSlot() const { return m_median; }

private:
    int m_count;
    int m_median = 0;
    QVector<QPair<int, int>> m_comparators;
};
