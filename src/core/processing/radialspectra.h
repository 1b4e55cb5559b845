#pragma once

#include <QVector>

/**
 * Radially averaged statistics of a height field: the power spectral density over the spatial frequency |k| and
 * the autocorrelation over the lag length, both about the mean height, in physical units of the point spacings
 * @p dx and @p dy. Rings are as wide as the coarser of the two frequency (or lag) steps.
 */
class RadialSpectra final {
public:
    struct Curve {
        QVector<double> x;
        QVector<double> y;
    };

    /**
     * x: |k| in 1/length, from 0 to the Nyquist frequency of the coarser axis. y: the 2D PSD |F|^2 dx dy / N
     * averaged over each ring, in z^2 length^2; summed over the whole plane times dkx dky it gives Sq^2.
     */
    static Curve powerSpectralDensity(const double* z, int width, int height, double dx, double dy);

    /**
     * x: the lag length, up to half the shorter side. y: the mean of (z(r) - m)(z(r + t) - m) over the pairs that
     * lie inside the field, averaged over each ring, in z^2. The field is padded with zeros rather than wrapped, so
     * opposite edges never correlate.
     */
    static Curve autocorrelation(const double* z, int width, int height, double dx, double dy);
};
