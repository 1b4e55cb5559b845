#include "syntheticfield.h"

#include <QtConcurrent>
#include <cmath>
#include <numeric>

namespace {

struct SplitMix64 {
    uint64_t state;
    uint64_t next()
    {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double uniform() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }
    double range(double lo, double hi) { return lo + (hi - lo) * uniform(); }
};

struct Wave {
    double kx, ky, amplitude, phase;
};

struct Grain {
    double cx, cy, radius, height;
};

} // namespace

QVector<double> SyntheticField::generate(const Parameters& p)
{
    const int w = qMax(1, p.width);
    const int h = qMax(1, p.height);
    SplitMix64 rng { p.seed };
    QVector<Wave> waves;
    for (int i = 0; i < 12; ++i) {
        const double amplitude = rng.range(0.1, 0.4);
        const double wavelength = rng.range(64, 1024);
        const double angle = rng.range(0, 2 * M_PI);
        const double phase = rng.range(0, 2 * M_PI);
        const double k = 2 * M_PI / wavelength;
        waves.append({ k * std::cos(angle), k * std::sin(angle), amplitude, phase });
    }
    const int grainCount = qMin(SyntheticField::MaxGrains, p.grains >= 0 ? p.grains : int(qint64(w) * h / 8192));
    QVector<Grain> grains;
    for (int i = 0; i < grainCount; ++i)
        grains.append({ rng.range(0, w), rng.range(0, h), rng.range(4, 20), rng.range(8, 20) });

    QVector<double> z(qsizetype(w) * h);
    double* data = z.data();
    const uint64_t noiseSeed = rng.next();
    QVector<int> columns(w);
    std::iota(columns.begin(), columns.end(), 0);
    QtConcurrent::blockingMap(columns, [&](int x) {
        SplitMix64 noise { noiseSeed ^ (uint64_t(x) * 0xD1B54A32D192ED03ull) };
        double* column = data + qsizetype(x) * h;
        for (int y = 0; y < h; ++y) {
            double v = 0.05 * x + 0.03 * y;
            for (const Wave& wave : waves)
                v += wave.amplitude * std::cos(wave.kx * x + wave.ky * y + wave.phase);
            column[y] = v + p.noise * (2 * noise.uniform() - 1);
        }
    });
    for (const Grain& g : grains) {
        const int x0 = qMax(0, int(std::floor(g.cx - g.radius)));
        const int x1 = qMin(w - 1, int(std::ceil(g.cx + g.radius)));
        const int y0 = qMax(0, int(std::floor(g.cy - g.radius)));
        const int y1 = qMin(h - 1, int(std::ceil(g.cy + g.radius)));
        for (int x = x0; x <= x1; ++x) {
            for (int y = y0; y <= y1; ++y) {
                const double r2 = ((x - g.cx) * (x - g.cx) + (y - g.cy) * (y - g.cy)) / (g.radius * g.radius);
                if (r2 < 1)
                    data[qsizetype(x) * h + y] += g.height * std::sqrt(1 - r2);
            }
        }
    }
    const qsizetype spikes = qMax<qsizetype>(1, qsizetype(w) * h / 200);
    for (qsizetype i = 0; i < spikes; ++i) {
        const qsizetype index = qsizetype(rng.next() % uint64_t(qsizetype(w) * h));
        const double sign = (rng.next() & 1) ? 1.0 : -1.0;
        data[index] += sign * rng.range(20, 50);
    }
    return z;
}
