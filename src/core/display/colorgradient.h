#pragma once

#include "core/display/gradientstop.h"

#include <QImage>
#include <QString>
#include <QVector>
#include <cmath>

/**
 * A colour gradient: colour stops along a percent scale, repeated a number of times across the z range,
 * and the 1000-entry ramp built from them. A value type; the ramp is rebuilt whenever stops or repeat change,
 * never per lookup.
 *
 * Its text form is the token string "rep", then "c<i>act", "c<i>col", "c<i>pos" for every slot, which the
 * image item stores in its native file and the settings store keeps.
 */
class ColorGradient final {
public:
    static constexpr int RampSize = 1000;

    /** Repeat 1; slot 0 active black at 5, slots 1-6 inactive black at 5, slot 7 active white at 95. */
    ColorGradient();

    /** The built-in gradients 1 to builtInCount(); any other number gives the default gradient. */
    static ColorGradient builtIn(int number);
    static int builtInCount();

    QString toString() const;
    /**
     * Reads a token string. Empty text leaves the gradient unchanged; any other text is accepted: missing keys
     * take defaults, unreadable numbers become 0, and the stops run from c0 until the first missing "c<i>act".
     */
    void fromString(const QString& text);

    /** True when an active stop lies within 0 to 100 percent: without one the gradient paints nothing. */
    bool hasUsableStop() const;
    /**
     * Reads a token string that a user typed: false (and @p gradient unchanged) with a message when the text
     * yields no usable stop, which would colour every point transparent.
     */
    [[nodiscard]] static bool parseUserText(const QString& text, ColorGradient* gradient, QString* message);

    /** Points whose z is NaN or infinite (aborted scans) get this colour in every gradient. */
    static constexpr QRgb NonFiniteColor = 0xFFFF00FFu;

    int repeat() const { return m_repeat; }
    /** Counts below 1 are kept (and written back) but paint as 1. */
    void setRepeat(int repeat);
    /** Slot order, not position order. */
    const QVector<GradientStop>& stops() const { return m_stops; }
    void setStops(const QVector<GradientStop>& stops);

    /** 1 x RampSize, Format_ARGB32 (not premultiplied); entry i is row i, the low end of the z range. */
    const QImage& ramp() const { return m_ramp; }
    /** The ramp upside down: row RampSize-1-i holds ramp entry i. */
    const QImage& reversedRamp() const { return m_reversedRamp; }
    /** The RampSize ramp entries, contiguous. */
    const QRgb* rampData() const { return reinterpret_cast<const QRgb*>(m_ramp.constBits()); }

    /**
     * The ramp entry of @p z when zMin maps to entry 0 and zMax to the top entry; values outside clamp.
     * A flat range maps z above zMin to the top entry and the rest to entry 0; zMin > zMax mirrors the mapping.
     * A z that is no finite number gets NonFiniteColor.
     */
    QRgb colorAt(double z, double zMin, double zMax) const
    {
        if (!std::isfinite(z))
            return NonFiniteColor;
        double range = zMax - zMin;
        if (range < 1e-200 && range > -1e-200)
            range = range < 0 ? -1e-200 : 1e-200;
        const double t = (z - zMin) / range * RampSize;
        // Truncation toward zero, then clamping; written so that NaN and huge values never reach the cast.
        const int index = t > 0 ? (t < RampSize - 1 ? int(t) : RampSize - 1) : 0;
        return rampData()[index];
    }
    /** The z value of a colour by its grey level (the mean of red, green and blue) within zMin to zMax. */
    static double zFromColor(QRgb color, double zMin, double zMax);

    /** The ramp scaled to @p width x @p height (row 0, the low end, on top). */
    QImage preview(int width, int height) const;

    /** Compares stops and repeat. */
    bool operator==(const ColorGradient& other) const;
    bool operator!=(const ColorGradient& other) const { return !(*this == other); }

private:
    void rebuildRamp();

    int m_repeat = 1;
    QVector<GradientStop> m_stops;
    QImage m_ramp;
    QImage m_reversedRamp;
};
