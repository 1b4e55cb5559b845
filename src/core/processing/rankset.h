#pragma once

#include <QtGlobal>
#include <algorithm>
#include <vector>

/**
 * A set of distinct ranks 0..size-1 as a plain bit set. A disc's ranks within its tile lie a few words apart,
 * so stepping to the next or previous member scans only a few words, and insert and erase are one operation.
 */
class RankSet final {
public:
    /** Makes the set empty and able to hold ranks below @p size. */
    void reset(quint64 size)
    {
        // One more word with its lowest bit set stops a forward scan at the end.
        const size_t words = size_t((size + 63) / 64);
        m_words.assign(words + 1, 0);
        m_words[words] = 1;
    }

    void insert(quint64 rank) { m_words[rank >> 6] |= quint64(1) << (rank & 63); }
    void erase(quint64 rank) { m_words[rank >> 6] &= ~(quint64(1) << (rank & 63)); }
    bool contains(quint64 rank) const { return (m_words[rank >> 6] >> (rank & 63)) & 1; }

    /** The smallest member >= @p rank; the size rounded up to 64 when there is none. */
    qint64 next(qint64 rank) const
    {
        size_t w = size_t(rank >> 6);
        quint64 bits = m_words[w] & (~quint64(0) << (rank & 63));
        while (!bits)
            bits = m_words[++w];
        return qint64(w << 6) + __builtin_ctzll(bits);
    }

    /** The largest member <= @p rank, or -1. */
    qint64 previous(qint64 rank) const
    {
        if (rank < 0)
            return -1;
        size_t w = size_t(rank >> 6);
        quint64 bits = m_words[w] & (~quint64(0) >> (63 - (rank & 63)));
        while (!bits) {
            if (w == 0)
                return -1;
            bits = m_words[--w];
        }
        return qint64(w << 6) + 63 - __builtin_clzll(bits);
    }

private:
    std::vector<quint64> m_words;
};
