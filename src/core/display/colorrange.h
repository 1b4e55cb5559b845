#pragma once

#include <QString>

/**
 * Which z values an item's gradient spans: the whole range of the z-matrix, a range the user fixed, or
 * the range left after cutting a percentage of outliers at both ends. Values outside the range clamp to
 * the ends of the ramp. Stored in the item header as a token string (toString / fromString).
 */
struct ColorRange {
    enum class Mode { Full, Fixed, Cut };

    Mode mode = Mode::Full;
    double minimum = 0; ///< Fixed: z mapped to the first ramp entry, in the item's z unit
    double maximum = 1; ///< Fixed: z mapped to the last ramp entry
    double cutPercent = 1; ///< Cut: percent of the finite points dropped at EACH end

    /**
     * The range in use for the @p count values at @p z, whose finite extremes are @p fullMin and @p fullMax
     * (NaN when there is none). Cut ignores NaN and infinity; with no finite value the full extremes stand.
     */
    void limits(const double* z, qsizetype count, double fullMin, double fullMax, double* low, double* high) const;
    /** The values at the @p percent and 100 - @p percent points of the sorted finite values. */
    static void cutLimits(const double* z, qsizetype count, double percent, double* low, double* high);

    /** "" for the full range (the default, so old files read alike), else pairs of tokens. */
    QString toString() const;
    /** Unreadable or empty text gives the full range. */
    static ColorRange fromString(const QString& text);

    /**
     * A number typed in @p unit, optionally followed by the same unit under another SI prefix ("1.5 nm" while
     * the unit is "m"); false when the text is no number or names another unit.
     */
    static bool parseValue(const QString& text, const QString& unit, double* value);
    /** Reads "MIN:MAX" as a fixed range; false when either number is missing or not finite. */
    static bool parseFixed(const QString& text, ColorRange* range);
    /** Reads a percentage from 0 to below 50 as a cut range. */
    static bool parseCut(const QString& text, ColorRange* range);

    bool operator==(const ColorRange& o) const;
    bool operator!=(const ColorRange& o) const { return !(*this == o); }
};
