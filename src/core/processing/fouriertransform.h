#pragma once

#include <QString>
#include <memory>

class QMutex;
class QSciImage;

/**
 * Two-dimensional discrete Fourier transforms of z through FFTW: spectra as new items with the zero frequency in
 * the middle and the axes in physical inverse units, and the round trip back with a mask on the spectrum choosing
 * the frequencies that stay.
 */
class FourierTransform final {
public:
    enum class Mode { Magnitude, Phase, LogPower };

    /** |F| / N (so a cosine of amplitude A shows two peaks of A/2), arg F in rad, or log10 of (|F| / N)^2. */
    static std::unique_ptr<QSciImage> spectrum(const QSciImage& item, Mode mode);
    /**
     * The inverse transform of z's spectrum with only the frequencies kept that @p keep selects; @p keep is laid
     * out like the spectrum (zero frequency in the middle), one byte per point, column by column. Null keeps all.
     */
    static void filter(const double* z, int width, int height, const unsigned char* keep, double* out);
    static QString modeName(Mode mode);
    /**
     * The autocorrelation of z about its mean, laid out like a spectrum: offset (0, 0) in the middle, offset
     * (dx, dy) at (W / 2 + dx, H / 2 + dy), periodic at the edges.
     */
    static void autocorrelation(const double* z, int width, int height, double* out);
    /** FFTW's planner is not thread-safe (execution is): every plan is made and destroyed under this lock. */
    static QMutex& plannerLock();
};
