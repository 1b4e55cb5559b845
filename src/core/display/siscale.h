#pragma once

#include <QString>

/**
 * Readable numbers for rulers, axis labels and the z scale: the SI prefix that keeps values between 1 and
 * 1000 (1.5 µm rather than 1500 nm), "nice" steps of 1, 2 or 5 times a power of ten, and their text.
 *
 * A unit is re-prefixed only when its base is a known SI unit ("nm", "pA", "mV", "Hz", ...); any other unit
 * ("", "deg", "counts") keeps its text and its numbers.
 */
class SiScale final {
public:
    /** Values in the original unit times `factor` are values in `unit`. */
    struct Scaled {
        double factor = 1;
        QString unit;
    };

    /** The prefix of @p unit's base for which @p magnitude (in @p unit; its sign is ignored) reads from 1 to 1000. */
    static Scaled forMagnitude(double magnitude, const QString& unit);
    /** The same for the larger end of the range @p from to @p to. */
    static Scaled forRange(double from, double to, const QString& unit);

    /** The smallest 1, 2 or 5 times a power of ten that splits @p span into at most @p maxSteps steps. */
    static double niceStep(double span, int maxSteps);
    /** The largest 1, 2 or 5 times a power of ten that is not above @p value (which must be positive). */
    static double niceFloor(double value);

    /** @p value with as many decimals as @p step needs to tell neighbouring ticks apart; never "-0". */
    static QString format(double value, double step);
    /** "1.5 µm": @p value formatted for @p step, a blank and the unit (no blank when the unit is empty). */
    static QString withUnit(double value, double step, const QString& unit);
};
