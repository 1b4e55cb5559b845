#include "colorgradient.h"

#include "core/base/tokencodec.h"
#include "core/settings/options.h"

#include <QCoreApplication>
#include <QHash>
#include <algorithm>
#include <QLinearGradient>
#include <QPainter>

namespace {

constexpr int SlotCount = 8;

struct BuiltInStop {
    int slot;
    int red, green, blue;
    double position;
};

struct BuiltInGradient {
    int repeat;
    QVector<BuiltInStop> active;
};

// The active stops of each built-in gradient; every other slot is inactive white at 50. The slot order
// is part of the stored text, so it stays as listed even where it is out of position order.
const QVector<BuiltInGradient>& builtInTable()
{
    static const QVector<BuiltInGradient> table {
        { 1, { { 0, 0, 0, 0, 5 }, { 7, 255, 255, 255, 95 } } },
        { 1, { { 0, 0, 0, 0, 95 }, { 7, 255, 255, 255, 5 } } },
        { 1, { { 0, 0, 0, 0, 10 }, { 1, 255, 0, 0, 40 }, { 2, 255, 255, 0, 75 }, { 7, 255, 255, 255, 90 } } },
        { 1, { { 0, 255, 255, 255, 10 }, { 5, 255, 248, 34, 40 }, { 6, 185, 0, 0, 75 }, { 7, 0, 0, 0, 90 } } },
        { 1, { { 0, 0, 0, 0, 10 }, { 1, 85, 0, 127, 25 }, { 2, 85, 0, 255, 40 }, { 7, 255, 255, 255, 85 } } },
        { 1, { { 0, 255, 255, 255, 15 }, { 5, 85, 0, 255, 60 }, { 6, 85, 0, 127, 75 }, { 7, 0, 0, 0, 90 } } },
        { 1, { { 0, 0, 0, 0, 10 }, { 1, 0, 170, 0, 25 }, { 2, 85, 255, 127, 40 }, { 7, 255, 255, 255, 85 } } },
        { 1, { { 0, 255, 255, 255, 10 }, { 5, 73, 220, 107, 60 }, { 6, 0, 170, 0, 75 }, { 7, 0, 0, 0, 90 } } },
        { 1, { { 0, 0, 0, 0, 10 }, { 1, 170, 0, 127, 40 }, { 2, 255, 0, 255, 75 }, { 7, 255, 255, 255, 90 } } },
        { 1, { { 0, 255, 255, 255, 10 }, { 5, 255, 0, 255, 40 }, { 6, 170, 0, 127, 75 }, { 7, 0, 0, 0, 90 } } },
        { 1,
            { { 0, 0, 0, 0, 5 }, { 1, 255, 170, 0, 40 }, { 5, 255, 230, 128, 75 }, { 6, 255, 247, 181, 80 },
                { 7, 255, 255, 255, 90 } } },
        { 1,
            { { 0, 255, 255, 255, 10 }, { 1, 255, 247, 181, 20 }, { 2, 255, 230, 128, 25 }, { 6, 255, 170, 0, 60 },
                { 7, 0, 0, 0, 95 } } },
        { 1,
            { { 0, 0, 0, 0, 5 }, { 1, 0, 0, 127, 20 }, { 2, 0, 170, 255, 33 }, { 3, 0, 191, 92, 46 },
                { 4, 255, 255, 0, 59 }, { 5, 255, 170, 0, 71 }, { 6, 255, 0, 0, 84 }, { 7, 255, 255, 255, 97 } } },
        { 1,
            { { 0, 255, 255, 255, 3 }, { 1, 255, 170, 0, 19 }, { 2, 255, 0, 0, 32 }, { 3, 255, 255, 0, 45 },
                { 4, 0, 191, 92, 57 }, { 5, 0, 170, 255, 70 }, { 6, 0, 0, 127, 82 }, { 7, 0, 0, 0, 95 } } },
        { 5,
            { { 0, 0, 0, 0, 0 }, { 1, 135, 135, 135, 50 }, { 2, 75, 75, 75, 20 }, { 3, 222, 222, 222, 50 },
                { 4, 171, 171, 171, 40 }, { 5, 234, 234, 234, 50 }, { 6, 206, 206, 206, 60 },
                { 7, 255, 255, 255, 80 } } },
        { 5,
            { { 0, 0, 0, 0, 0 }, { 2, 100, 100, 100, 20 }, { 4, 171, 171, 171, 40 }, { 6, 255, 255, 255, 60 },
                { 7, 100, 100, 100, 80 } } },
    };
    return table;
}

QString slotKey(int slot, const char* suffix)
{
    return QLatin1Char('c') + QString::number(slot) + QLatin1String(suffix);
}

} // namespace

ColorGradient::ColorGradient()
{
    m_stops.fill(GradientStop(), SlotCount);
    m_stops[0].active = true;
    m_stops[SlotCount - 1] = GradientStop { true, QColor(255, 255, 255, 255), 95 };
    rebuildRamp();
}

ColorGradient ColorGradient::builtIn(int number)
{
    ColorGradient gradient;
    if (number < 1 || number > builtInCount())
        return gradient;
    const BuiltInGradient& entry = builtInTable().at(number - 1);
    QVector<GradientStop> stops(SlotCount, GradientStop { false, QColor(255, 255, 255, 255), 50 });
    for (const BuiltInStop& stop : entry.active)
        stops[stop.slot] = GradientStop { true, QColor(stop.red, stop.green, stop.blue, 255), stop.position };
    gradient.m_repeat = entry.repeat;
    gradient.setStops(stops);
    return gradient;
}

int ColorGradient::builtInCount()
{
    return builtInTable().size();
}

QString ColorGradient::toString() const
{
    QString text;
    text.reserve(40 + m_stops.size() * 48);
    TokenCodec::append(text, QStringLiteral("rep"));
    TokenCodec::append(text, QString::number(m_repeat));
    for (int i = 0; i < m_stops.size(); ++i) {
        const GradientStop& stop = m_stops.at(i);
        TokenCodec::append(text, slotKey(i, "act"));
        TokenCodec::append(text, stop.active ? QStringLiteral("1") : QStringLiteral("0"));
        TokenCodec::append(text, slotKey(i, "col"));
        TokenCodec::append(text, Options::formatColor(stop.color));
        TokenCodec::append(text, slotKey(i, "pos"));
        TokenCodec::append(text, Options::formatReal(stop.position));
    }
    return text;
}

void ColorGradient::fromString(const QString& text)
{
    if (text.isEmpty())
        return;
    const QHash<QString, QString> map = TokenCodec::decodeMap(text);
    m_repeat = map.value(QStringLiteral("rep"), QStringLiteral("1")).toInt();
    m_stops.clear();
    const QString end = QStringLiteral("#");
    for (int i = 0;; ++i) {
        const QString active = map.value(slotKey(i, "act"), end);
        if (active == end)
            break;
        GradientStop stop;
        stop.active = active == QLatin1String("1");
        // A colour text that is not four numbers reads as opaque black, the same as a missing one.
        stop.color = Options::parseColor(map.value(slotKey(i, "col")), QColor(0, 0, 0, 255));
        stop.position = map.value(slotKey(i, "pos")).toDouble();
        m_stops.append(stop);
    }
    rebuildRamp();
}

bool ColorGradient::hasUsableStop() const
{
    return std::any_of(m_stops.cbegin(), m_stops.cend(),
        [](const GradientStop& stop) { return stop.active && stop.position >= 0.0 && stop.position <= 100.0; });
}

bool ColorGradient::parseUserText(const QString& text, ColorGradient* gradient, QString* message)
{
    ColorGradient parsed;
    parsed.m_stops.clear();
    parsed.fromString(text);
    if (!parsed.hasUsableStop()) {
        if (message)
            *message = QCoreApplication::translate(
                "ColorGradient", "The gradient text holds no active colour stop at a position from 0 to 100: %1")
                           .arg(text.left(60));
        return false;
    }
    *gradient = parsed;
    return true;
}

void ColorGradient::setRepeat(int repeat)
{
    m_repeat = repeat;
    rebuildRamp();
}

void ColorGradient::setStops(const QVector<GradientStop>& stops)
{
    m_stops = stops;
    rebuildRamp();
}

double ColorGradient::zFromColor(QRgb color, double zMin, double zMax)
{
    const int sum = qRed(color) + qGreen(color) + qBlue(color);
    return zMin + (zMax - zMin) * (sum / 3.0) / 255.0;
}

QImage ColorGradient::preview(int width, int height) const
{
    return m_ramp.scaled(qMax(1, width), qMax(1, height), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool ColorGradient::operator==(const ColorGradient& other) const
{
    return m_repeat == other.m_repeat && m_stops == other.m_stops;
}

void ColorGradient::rebuildRamp()
{
    m_ramp = QImage(1, RampSize, QImage::Format_ARGB32);
    m_ramp.fill(Qt::transparent);

    QLinearGradient gradient(0, 0, 0, (RampSize - 1.0) / qMax(1, m_repeat));
    gradient.setSpread(QGradient::RepeatSpread);
    bool anyStop = false;
    for (const GradientStop& stop : qAsConst(m_stops)) {
        const double at = stop.position / 100.0;
        // QGradient would warn about these; they are meant to be kept but not painted.
        if (!stop.active || !(at >= 0.0 && at <= 1.0))
            continue;
        // A stop at a position already taken replaces its colour, so the latest slot wins.
        gradient.setColorAt(at, stop.color);
        anyStop = true;
    }
    if (anyStop) {
        QPainter painter(&m_ramp);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRect(0, 0, 1, RampSize), gradient);
    }

    m_reversedRamp = QImage(1, RampSize, QImage::Format_ARGB32);
    const QRgb* from = rampData();
    auto* to = reinterpret_cast<QRgb*>(m_reversedRamp.bits());
    for (int i = 0; i < RampSize; ++i)
        to[RampSize - 1 - i] = from[i];
}
