#include "siscale.h"

#include <QStringList>
#include <cmath>

namespace {

constexpr int MinExponent = -24;
constexpr int MaxExponent = 24;

// Engineering prefixes from 10^-24 to 10^24 in steps of three; index 8 is no prefix.
const char16_t* const prefixes[]
    = { u"y", u"z", u"a", u"f", u"p", u"n", u"\u00b5", u"m", u"", u"k", u"M", u"G", u"T", u"P", u"E", u"Z", u"Y" };

const QStringList& siBases()
{
    static const QStringList bases
        = { QStringLiteral("m"), QStringLiteral("g"), QStringLiteral("s"), QStringLiteral("A"), QStringLiteral("K"),
              QStringLiteral("V"), QStringLiteral("Hz"), QStringLiteral("N"), QStringLiteral("Pa"), QStringLiteral("J"),
              QStringLiteral("W"), QStringLiteral("C"), QStringLiteral("F"), QStringLiteral("S"), QStringLiteral("T"),
              QStringLiteral("H"), QStringLiteral("Ohm"), QStringLiteral("\u03a9"), QStringLiteral("eV") };
    return bases;
}

int prefixExponent(QChar c)
{
    switch (c.unicode()) {
    case 'y':
        return -24;
    case 'z':
        return -21;
    case 'a':
        return -18;
    case 'f':
        return -15;
    case 'p':
        return -12;
    case 'n':
        return -9;
    case 'u':
    case 0x00b5: // micro sign
    case 0x03bc: // Greek mu, which keyboards often give instead
        return -6;
    case 'm':
        return -3;
    case 'c':
        return -2;
    case 'd':
        return -1;
    case 'k':
        return 3;
    case 'M':
        return 6;
    case 'G':
        return 9;
    case 'T':
        return 12;
    case 'P':
        return 15;
    case 'E':
        return 18;
    case 'Z':
        return 21;
    case 'Y':
        return 24;
    default:
        return 0x7fff;
    }
}

/** Splits "nm" into -9 and "m"; false for a unit that is not a (prefixed) SI unit. */
bool splitUnit(const QString& unit, int* exponent, QString* base)
{
    // The whole text first, so that "m", "Pa" and "T" are bases, not prefixes.
    if (siBases().contains(unit)) {
        *exponent = 0;
        *base = unit;
        return true;
    }
    if (unit.size() < 2 || !siBases().contains(unit.mid(1)))
        return false;
    const int e = prefixExponent(unit.at(0));
    if (e == 0x7fff)
        return false;
    *exponent = e;
    *base = unit.mid(1);
    return true;
}

} // namespace

SiScale::Scaled SiScale::forMagnitude(double magnitude, const QString& unit)
{
    Scaled scaled { 1, unit };
    int exponent = 0;
    QString base;
    magnitude = std::fabs(magnitude);
    if (!std::isfinite(magnitude) || magnitude == 0 || !splitUnit(unit, &exponent, &base))
        return scaled;
    // The small allowance keeps exact powers such as 1000 nm, whose logarithm may come out a hair low, at 1 µm.
    const double decades = std::log10(magnitude) + exponent;
    int target = int(std::floor(decades / 3 + 1e-9)) * 3;
    target = qBound(MinExponent, target, MaxExponent);
    scaled.factor = std::pow(10.0, exponent - target);
    scaled.unit = QString::fromUtf16(prefixes[(target - MinExponent) / 3]) + base;
    return scaled;
}

SiScale::Scaled SiScale::forRange(double from, double to, const QString& unit)
{
    return forMagnitude(std::fmax(std::fabs(from), std::fabs(to)), unit);
}

double SiScale::niceFloor(double value)
{
    if (!(value > 0) || !std::isfinite(value))
        return 1;
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    // Compared with a relative allowance so that 0.3 (stored a hair below) still gives 0.2, and 5 gives 5.
    const double mantissa = value / power * (1 + 1e-9);
    return (mantissa >= 10 ? 10 : mantissa >= 5 ? 5 : mantissa >= 2 ? 2 : 1) * power;
}

double SiScale::niceStep(double span, int maxSteps)
{
    span = std::fabs(span);
    if (!(span > 0) || !std::isfinite(span) || maxSteps < 1)
        return 1;
    const double raw = span / maxSteps;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    const double mantissa = raw / power * (1 - 1e-9);
    return (mantissa <= 1 ? 1 : mantissa <= 2 ? 2 : mantissa <= 5 ? 5 : 10) * power;
}

QString SiScale::format(double value, double step)
{
    int decimals = 0;
    if (step > 0 && std::isfinite(step))
        decimals = qBound(0, int(-std::floor(std::log10(step) + 1e-9)), 17);
    // Values a rounding error away from a tick (0.30000000000000004) print as the tick.
    QString text = QString::number(value, 'f', decimals);
    if (text.startsWith(QLatin1Char('-')) && text.mid(1).remove(QLatin1Char('0')).remove(QLatin1Char('.')).isEmpty())
        text.remove(0, 1);
    return text;
}

QString SiScale::withUnit(double value, double step, const QString& unit)
{
    const QString number = format(value, step);
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}
