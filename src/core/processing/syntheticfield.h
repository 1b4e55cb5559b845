#pragma once

#include <QVector>
#include <cstdint>

/**
 * A deterministic synthetic height image: tilted plane, smooth background waves, round grains,
 * white noise and a few single-point spikes. z in nm; the matrix is column by column, rows from the bottom.
 */
class SyntheticField final {
public:
    /** Each grain costs memory before a point is drawn; beyond this a field is all grain anyway. */
    static constexpr int MaxGrains = 1000000;

    struct Parameters {
        int width = 256;
        int height = 256;
        int grains = -1; ///< below 0: one grain per 8192 points; at most MaxGrains are drawn
        uint64_t seed = 12345;
        double noise = 0.05;
    };
    static QVector<double> generate(const Parameters& parameters);
};
