#include "colorrange.h"

#include "core/base/tokencodec.h"

#include <QPair>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

const QList<QPair<QString, double>>& prefixes()
{
    static const QList<QPair<QString, double>> list {
        { QStringLiteral("y"), 1e-24 },
        { QStringLiteral("z"), 1e-21 },
        { QStringLiteral("a"), 1e-18 },
        { QStringLiteral("f"), 1e-15 },
        { QStringLiteral("p"), 1e-12 },
        { QStringLiteral("n"), 1e-9 },
        { QString(QChar(0x00B5)), 1e-6 },
        { QString(QChar(0x03BC)), 1e-6 },
        { QStringLiteral("u"), 1e-6 },
        { QStringLiteral("m"), 1e-3 },
        { QStringLiteral("k"), 1e3 },
        { QStringLiteral("M"), 1e6 },
        { QStringLiteral("G"), 1e9 },
        { QStringLiteral("T"), 1e12 },
        { QStringLiteral("P"), 1e15 },
        { QStringLiteral("E"), 1e18 },
        { QStringLiteral("Z"), 1e21 },
        { QStringLiteral("Y"), 1e24 },
    };
    return list;
}

/** The factor of @p text's prefix before @p base ("" counts 1); 0 when @p text is not prefix + base. */
double prefixFactor(const QString& text, const QString& base)
{
    if (!text.endsWith(base))
        return 0;
    const QString prefix = text.left(text.size() - base.size());
    if (prefix.isEmpty())
        return 1;
    for (const auto& p : prefixes())
        if (p.first == prefix)
            return p.second;
    return 0;
}

} // namespace

void ColorRange::limits(
    const double* z, qsizetype count, double fullMin, double fullMax, double* low, double* high) const
{
    *low = fullMin;
    *high = fullMax;
    if (mode == Mode::Fixed) {
        *low = minimum;
        *high = maximum;
    } else if (mode == Mode::Cut && cutPercent > 0) {
        double a, b;
        cutLimits(z, count, cutPercent, &a, &b);
        if (std::isfinite(a) && std::isfinite(b)) {
            *low = a;
            *high = b;
        }
    }
}

void ColorRange::cutLimits(const double* z, qsizetype count, double percent, double* low, double* high)
{
    std::vector<double> values;
    values.reserve(size_t(count));
    for (qsizetype i = 0; i < count; ++i)
        if (std::isfinite(z[i]))
            values.push_back(z[i]);
    if (values.empty()) {
        *low = *high = std::nan("");
        return;
    }
    const double p = std::clamp(percent, 0.0, 50.0) / 100;
    const size_t last = values.size() - 1;
    const size_t lowIndex = size_t(std::floor(p * double(last)));
    const size_t highIndex = std::max(lowIndex, size_t(std::ceil((1 - p) * double(last))));
    std::nth_element(values.begin(), values.begin() + qsizetype(lowIndex), values.end());
    *low = values[lowIndex];
    // Everything above lowIndex is now at or above it, so the second selection needs only that part.
    std::nth_element(values.begin() + qsizetype(lowIndex), values.begin() + qsizetype(highIndex), values.end());
    *high = values[highIndex];
}

QString ColorRange::toString() const
{
    if (mode == Mode::Full)
        return QString();
    QList<QPair<QString, QString>> pairs;
    if (mode == Mode::Fixed) {
        pairs.append({ QStringLiteral("mode"), QStringLiteral("fixed") });
        pairs.append({ QStringLiteral("min"), QString::number(minimum, 'g', 17) });
        pairs.append({ QStringLiteral("max"), QString::number(maximum, 'g', 17) });
    } else {
        pairs.append({ QStringLiteral("mode"), QStringLiteral("cut") });
        pairs.append({ QStringLiteral("percent"), QString::number(cutPercent, 'g', 17) });
    }
    return TokenCodec::encodePairs(pairs);
}

ColorRange ColorRange::fromString(const QString& text)
{
    ColorRange range;
    if (text.isEmpty())
        return range;
    const QHash<QString, QString> map = TokenCodec::decodeMap(text);
    const QString mode = map.value(QStringLiteral("mode"));
    bool ok1 = false, ok2 = false;
    if (mode == QLatin1String("fixed")) {
        const double a = map.value(QStringLiteral("min")).toDouble(&ok1);
        const double b = map.value(QStringLiteral("max")).toDouble(&ok2);
        if (ok1 && ok2 && std::isfinite(a) && std::isfinite(b)) {
            range.mode = Mode::Fixed;
            range.minimum = a;
            range.maximum = b;
        }
    } else if (mode == QLatin1String("cut")) {
        const double p = map.value(QStringLiteral("percent")).toDouble(&ok1);
        if (ok1 && p >= 0 && p < 50) {
            range.mode = Mode::Cut;
            range.cutPercent = p;
        }
    }
    return range;
}

bool ColorRange::parseValue(const QString& text, const QString& unit, double* value)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*([-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?)\\s*(\\S*)\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    bool ok = false;
    const double number = match.captured(1).toDouble(&ok);
    if (!ok || !std::isfinite(number))
        return false;
    const QString suffix = match.captured(2);
    if (suffix.isEmpty() || suffix == unit) {
        *value = number;
        return true;
    }
    // Find a common base: "nm" against "m", "pA" against "nA", "mV" against "V".
    for (int length = unit.size(); length >= 1; --length) {
        const QString base = unit.right(length);
        const double from = prefixFactor(suffix, base);
        const double to = prefixFactor(unit, base);
        if (from > 0 && to > 0) {
            *value = number * from / to;
            return true;
        }
    }
    return false;
}

bool ColorRange::parseFixed(const QString& text, ColorRange* range)
{
    // A leading minus belongs to the first number, so split at the first colon after it.
    const int colon = text.indexOf(QLatin1Char(':'), 1);
    if (colon < 0)
        return false;
    bool ok1 = false, ok2 = false;
    const double a = text.left(colon).toDouble(&ok1);
    const double b = text.mid(colon + 1).toDouble(&ok2);
    if (!ok1 || !ok2 || !std::isfinite(a) || !std::isfinite(b))
        return false;
    range->mode = Mode::Fixed;
    range->minimum = a;
    range->maximum = b;
    return true;
}

bool ColorRange::parseCut(const QString& text, ColorRange* range)
{
    bool ok = false;
    const double percent = text.toDouble(&ok);
    // Half from each end would leave nothing to colour.
    if (!ok || !(percent >= 0 && percent < 50))
        return false;
    range->mode = Mode::Cut;
    range->cutPercent = percent;
    return true;
}

bool ColorRange::operator==(const ColorRange& o) const
{
    if (mode != o.mode)
        return false;
    if (mode == Mode::Fixed)
        return minimum == o.minimum && maximum == o.maximum;
    if (mode == Mode::Cut)
        return cutPercent == o.cutPercent;
    return true;
}
