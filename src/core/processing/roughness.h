#pragma once

#include <QList>
#include <QPair>
#include <QString>

class QSciImage;

/**
 * Areal height parameters of a z-matrix (deviations from the mean height over the evaluated points): Sa, Sq, Sp,
 * Sv, Sz, Ssk, Sku, and the hybrid Sdq (rms gradient) and Sdr (developed interfacial area ratio, percent); plus the
 * means over the rows of the profile parameters Ra, Rq and Rz. Heights are in the item's z unit; the gradients use
 * the physical point spacing, converted to the z unit when both are lengths.
 */
class Roughness final {
public:
    struct Result {
        double sa = 0, sq = 0, sp = 0, sv = 0, sz = 0, ssk = 0, sku = 0, sdq = 0, sdr = 0;
        double ra = 0, rq = 0, rz = 0;
        qint64 points = 0;
        /** False when the spacing could not be brought to the z unit, so Sdq and Sdr use one point as one unit. */
        bool physicalSlopes = true;
        /** The parameters by name, in the order above. */
        QList<QPair<QString, double>> named() const;
    };

    /** Evaluates @p item over every point, or over its selected points with @p masked. False: nothing to evaluate. */
    [[nodiscard]] static bool evaluate(const QSciImage& item, bool masked, Result* result, QString* message = nullptr);
    /** The same over a bare matrix with the point spacings @p dx and @p dy in z units. */
    [[nodiscard]] static bool evaluate(
        const double* z, const unsigned char* mask, int width, int height, double dx, double dy, Result* result);

    /** Metres per @p unit for length units ("nm", "µm", "Å", "m", ...), 0 for anything else. */
    static double metres(const QString& unit);
};
