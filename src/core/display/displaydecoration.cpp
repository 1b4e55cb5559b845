#include "displaydecoration.h"

#include "core/display/siscale.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace {

constexpr int Pad = 4;
constexpr int Gap = 2;
constexpr int MaxTicks = 10;

/** Room for a label of @p extent centred on @p at, beyond the ends 0 and @p length. */
void overhang(int at, int extent, int length, int* before, int* after)
{
    *before = qMax(*before, extent / 2 + 1 - at);
    *after = qMax(*after, at + extent / 2 + 1 - length);
}

/** Row of the value at @p fraction (0 the bottom row, 1 the top one) on a column of @p height points. */
int rowOf(double fraction, int height)
{
    return qBound(0, int(std::lround((1 - fraction) * (height - 1))), height - 1);
}

void drawRotated(QPainter* painter, const QRect& rect, const QString& text)
{
    painter->save();
    painter->translate(rect.center() + QPointF(0.5, 0.5));
    painter->rotate(-90);
    painter->drawText(
        QRectF(-rect.height() / 2.0, -rect.width() / 2.0, rect.height(), rect.width()), Qt::AlignCenter, text);
    painter->restore();
}

} // namespace

DisplayDecoration::DisplayDecoration(const DisplayElements& elements, const Source& source)
    : m_elements(elements)
    , m_source(source)
{
    if (m_source.size.isEmpty())
        m_source.size = QSize(1, 1);
    layOut();
}

QFont DisplayDecoration::font(int pixelSize, bool bold) const
{
    QFont font(m_elements.fontFamily);
    font.setPixelSize(qMax(1, pixelSize));
    font.setBold(bold);
    return font;
}

QString DisplayDecoration::caption(const QString& axis, const QString& unit) const
{
    return unit.isEmpty() ? axis : axis + QStringLiteral(" [") + unit + QLatin1Char(']');
}

QVector<DisplayDecoration::Tick> DisplayDecoration::ticks(double from, double to, const QString& unit, int maxSteps,
    bool natural, bool subticks, bool withUnit, QString* shownUnit)
{
    const SiScale::Scaled scaled = SiScale::forRange(from, to, unit);
    if (shownUnit)
        *shownUnit = scaled.unit;
    const double a = from * scaled.factor, b = to * scaled.factor;
    QVector<Tick> out;
    if (!std::isfinite(a) || !std::isfinite(b))
        return out;
    const auto label = [&](double v, double step) {
        return withUnit ? SiScale::withUnit(v, step, scaled.unit) : SiScale::format(v, step);
    };
    const double span = b - a;
    if (span == 0 || !std::isfinite(span)) {
        // No step to take digits from: six significant ones, without trailing zeros.
        const QString number = QString::number(a, 'g', 6);
        out.append({ 0, withUnit && !scaled.unit.isEmpty() ? number + QLatin1Char(' ') + scaled.unit : number, true });
        return out;
    }
    maxSteps = qBound(1, maxSteps, MaxTicks);
    if (!natural) {
        // Evenly from edge to edge: the ends are labelled, with one digit more than the step needs.
        const double step = span / maxSteps;
        const double precision = SiScale::niceFloor(std::fabs(step)) / 10;
        for (int i = 0; i <= maxSteps; ++i) {
            out.append({ double(i) / maxSteps, label(a + i * step, precision), true });
            for (int j = 1; subticks && i < maxSteps && j < 5; ++j)
                out.append({ (i + j / 5.0) / maxSteps, QString(), false });
        }
        return out;
    }
    double step = SiScale::niceStep(span, maxSteps);
    // A scale with a single number says nothing about its size: take smaller steps until two fit.
    for (int i = 0; i < 6 && std::floor(std::fmax(a, b) / step) - std::ceil(std::fmin(a, b) / step) < 1; ++i)
        step = SiScale::niceFloor(step * 0.99);
    const double mantissa = step / std::pow(10.0, std::floor(std::log10(step) + 1e-9));
    const int divisions = subticks ? (std::lround(mantissa) == 2 ? 4 : 5) : 1;
    const double minor = step / divisions;
    const double low = std::fmin(a, b), high = std::fmax(a, b);
    const double first = std::ceil(low / minor - 1e-9);
    const double last = std::floor(high / minor + 1e-9);
    // A span lost in the digits of its values (1e6 + 1e-10) has no steps a double can count.
    if (!(last - first < 1000) || first + 1 == first) {
        out.append({ 0, label(a, step), true });
        return out;
    }
    for (double k = first; k <= last; ++k) {
        const double v = k * minor;
        const bool major = std::fmod(std::fabs(k), divisions) == 0;
        out.append({ (v - a) / span, major ? label(v, step) : QString(), major });
    }
    if (out.isEmpty())
        out.append({ 0, label(a, step), true });
    return out;
}

bool DisplayDecoration::layOutRuler(bool vertical, Ruler* ruler) const
{
    const DisplayElements& e = m_elements;
    const int w = m_source.size.width(), h = m_source.size.height();
    const int extent = vertical ? h : w;
    const double physical = vertical ? m_source.ySize : m_source.xSize;
    if (!(physical > 0) || !std::isfinite(physical))
        return false;
    const double perPoint = physical / extent;
    int length = e.rulerSizeManual ? e.rulerLength : qMax(1, extent / 4);
    length = qBound(1, length, qMax(1, extent - 2 * e.rulerMargin));
    const SiScale::Scaled scaled = SiScale::forMagnitude(length * perPoint, vertical ? m_source.yUnit : m_source.xUnit);
    double shown = length * perPoint * scaled.factor;
    double precision = SiScale::niceFloor(shown) / 100;
    QVector<int> divisions { 4, 2 };
    if (e.rulerNaturalUnits) {
        // A round length reads at a glance; the bar shrinks to it.
        shown = SiScale::niceFloor(shown);
        length = qMax(1, int(std::lround(shown / scaled.factor / perPoint)));
        precision = shown;
        const int mantissa = int(std::lround(shown / std::pow(10.0, std::floor(std::log10(shown) + 1e-9))));
        divisions = mantissa == 1 ? QVector<int> { 10, 5, 2 }
            : mantissa == 2       ? QVector<int> { 4, 2 }
                                  : QVector<int> { 5 };
    }
    ruler->text
        = e.rulerShowUnit ? SiScale::withUnit(shown, precision, scaled.unit) : SiScale::format(shown, precision);
    ruler->vertical = vertical;
    ruler->showLabel = vertical ? e.showVerticalRulerLabel : e.showHorizontalRulerLabel;
    ruler->showPanel = vertical ? e.showVerticalRulerPanel : e.showHorizontalRulerPanel;
    for (int n : divisions) {
        if (length / n >= 4) {
            for (int i = 1; i < n; ++i)
                ruler->minorTicks.append(int(std::lround(double(length) * i / n)));
            break;
        }
    }

    const int corner = vertical ? e.verticalRulerCorner : e.horizontalRulerCorner;
    const bool bottom = corner == DisplayElements::BottomLeft || corner == DisplayElements::BottomRight;
    const bool leftSide = corner == DisplayElements::BottomLeft || corner == DisplayElements::TopLeft;
    const int t = e.rulerThickness, m = e.rulerMargin;
    const QFontMetrics metrics(font(e.rulerLabelSize, e.rulerLabelBold));
    const int lw = metrics.horizontalAdvance(ruler->text), lh = metrics.height();
    QRect ticks;
    if (!vertical) {
        ruler->bar = QRect(leftSide ? m : w - m - length, bottom ? h - m - t : m, length, t);
        ticks = ruler->bar.translated(0, bottom ? -t : t);
        const int x = qBound(0, ruler->bar.center().x() - lw / 2, qMax(0, w - lw));
        ruler->label = QRect(x, bottom ? ticks.top() - Gap - lh : ticks.bottom() + 1 + Gap, lw, lh);
    } else {
        ruler->bar = QRect(leftSide ? m : w - m - t, bottom ? h - m - length : m, t, length);
        ticks = ruler->bar.translated(leftSide ? t : -t, 0);
        const int y = qBound(0, ruler->bar.center().y() - lw / 2, qMax(0, h - lw));
        ruler->label = QRect(leftSide ? ticks.right() + 1 + Gap : ticks.left() - Gap - lh, y, lh, lw);
    }
    QRect panel = ruler->bar.united(ticks);
    if (ruler->showLabel)
        panel = panel.united(ruler->label);
    ruler->panel = panel.adjusted(-Pad, -Pad, Pad, Pad).intersected(QRect(QPoint(0, 0), m_source.size));
    return true;
}

void DisplayDecoration::separateRulers(Ruler* horizontal, Ruler* vertical) const
{
    // Two rulers in one corner would write their labels over each other: each steps aside by the other's
    // breadth, and one panel, with the corner between them, holds both.
    const int corner = m_elements.horizontalRulerCorner;
    const bool bottom = corner == DisplayElements::BottomLeft || corner == DisplayElements::BottomRight;
    const bool leftSide = corner == DisplayElements::BottomLeft || corner == DisplayElements::TopLeft;
    const QRect picture(QPoint(0, 0), m_source.size);
    const auto breadth = [](const Ruler& r, bool across) {
        const QRect body = r.showLabel ? r.bar.united(r.label) : r.bar;
        return (across ? body.width() : body.height()) + 2 * Pad;
    };
    const int dx = breadth(*vertical, true), dy = breadth(*horizontal, false);
    for (auto [ruler, offset] :
        { std::pair(horizontal, QPoint(leftSide ? dx : -dx, 0)), std::pair(vertical, QPoint(0, bottom ? -dy : dy)) }) {
        ruler->bar.translate(offset);
        ruler->label.translate(offset);
        ruler->panel = ruler->panel.translated(offset).intersected(picture);
    }
    vertical->panelJoin = QRect(QPoint(vertical->panel.left(), horizontal->panel.top()),
        QPoint(vertical->panel.right(), horizontal->panel.bottom()));
}

void DisplayDecoration::layOut()
{
    const DisplayElements& e = m_elements;
    const Source& s = m_source;
    const int w = s.size.width(), h = s.size.height();
    int left = 0, top = 0, right = 0, bottom = 0;

    if (e.showHorizontalRuler) {
        Ruler ruler;
        if (layOutRuler(false, &ruler))
            m_rulers.append(ruler);
    }
    if (e.showVerticalRuler) {
        Ruler ruler;
        if (layOutRuler(true, &ruler))
            m_rulers.append(ruler);
    }
    if (m_rulers.size() == 2 && e.horizontalRulerCorner == e.verticalRulerCorner)
        separateRulers(&m_rulers[0], &m_rulers[1]);

    const QFontMetrics xy(font(e.xyLabelSize, e.xyLabelBold));
    m_xyTick = qMax(3, e.xyLabelSize / 2);
    if (e.showXLabels || e.showXPosLabel) {
        const double x0 = s.xOffset, x1 = s.xOffset + s.xSize;
        m_xTicks = ticks(x0, x1, s.xUnit, MaxTicks, e.xyNaturalUnits, false, false, &m_xUnit);
        int widest = 0;
        for (const Tick& t : qAsConst(m_xTicks))
            widest = qMax(widest, xy.horizontalAdvance(t.text));
        // As many labels as fit side by side with a few characters between them.
        const int steps = w / qMax(1, widest + 3 * xy.averageCharWidth());
        m_xTicks = ticks(x0, x1, s.xUnit, steps, e.xyNaturalUnits);
        bottom = Pad;
        if (e.showXLabels) {
            bottom += m_xyTick + Gap + xy.height();
            for (const Tick& t : qAsConst(m_xTicks))
                overhang(int(t.fraction * w), xy.horizontalAdvance(t.text), w, &left, &right);
        }
        if (e.showXPosLabel)
            bottom += Gap + xy.height();
    }
    if (e.showYLabels || e.showYPosLabel) {
        const int steps = h / qMax(1, 3 * xy.height());
        m_yTicks = ticks(s.yOffset, s.yOffset + s.ySize, s.yUnit, steps, e.xyNaturalUnits, false, false, &m_yUnit);
        int side = Pad;
        if (e.showYLabels) {
            for (const Tick& t : qAsConst(m_yTicks)) {
                m_yLabelWidth = qMax(m_yLabelWidth, xy.horizontalAdvance(t.text));
                overhang(rowOf(t.fraction, h), xy.height(), h, &top, &bottom);
            }
            side += m_yLabelWidth + Gap + m_xyTick;
        }
        if (e.showYPosLabel)
            side += xy.height() + Gap;
        left = qMax(left, side);
    }
    if (e.showZScale) {
        const QFontMetrics z(font(e.zLabelSize, e.zLabelBold));
        m_zTick = qMax(3, e.zLabelSize / 2);
        const int steps = h / qMax(1, 3 * z.height());
        m_zTicks = ticks(s.zMin, s.zMax, s.zUnit, steps, true, e.showZScaleSubticks, e.zLabelWithUnit, &m_zUnit);
        int side = e.zScaleLeftMargin + e.zScaleWidth + (e.zScaleBorder ? 1 : 0);
        if (e.showZScaleTicks)
            side += m_zTick;
        if (e.showZLabels) {
            for (const Tick& t : qAsConst(m_zTicks)) {
                m_zLabelWidth = qMax(m_zLabelWidth, z.horizontalAdvance(t.text));
                if (t.major)
                    overhang(rowOf(t.fraction, h), z.height(), h, &top, &bottom);
            }
            side += Gap + m_zLabelWidth;
        }
        if (e.showZPosLabel)
            side += Pad + z.height();
        right = qMax(right, side + Pad);
        if (e.zScaleBorder) {
            top = qMax(top, 1);
            bottom = qMax(bottom, 1);
        }
    }
    if (e.showTitle && !s.title.isEmpty()) {
        const QFontMetrics title(font(e.titleSize, e.titleBold));
        top += title.height() + 2 * Pad;
        const int spill = (title.horizontalAdvance(s.title) - w) / 2 + Pad;
        left = qMax(left, spill);
        right = qMax(right, spill);
    }
    m_margins = QMargins(left, top, right, bottom);
}

void DisplayDecoration::paint(QPainter* painter) const
{
    if (isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setRenderHint(QPainter::TextAntialiasing, true);

    // The panels go down first and as one shape, so that two rulers in one corner share a single panel.
    QPainterPath panels;
    panels.setFillRule(Qt::WindingFill);
    for (const Ruler& ruler : m_rulers) {
        if (ruler.showPanel) {
            panels.addRect(ruler.panel);
            if (!ruler.panelJoin.isEmpty())
                panels.addRect(ruler.panelJoin);
        }
    }
    if (!panels.isEmpty())
        painter->fillPath(panels, m_elements.rulerPanelColor);
    for (const Ruler& ruler : m_rulers)
        paintRuler(painter, ruler);

    const DisplayElements& e = m_elements;
    if (e.showXLabels || e.showXPosLabel)
        paintXLabels(painter);
    if (e.showYLabels || e.showYPosLabel)
        paintYLabels(painter);
    if (e.showZScale)
        paintZScale(painter);
    if (e.showTitle && !m_source.title.isEmpty()) {
        const QFont font = this->font(e.titleSize, e.titleBold);
        const QFontMetrics metrics(font);
        const int w = m_source.size.width();
        const int width = qMax(w, metrics.horizontalAdvance(m_source.title));
        painter->setFont(font);
        painter->setPen(e.fontColor);
        painter->drawText(
            QRect((w - width) / 2, -m_margins.top() + Pad, width, metrics.height()), Qt::AlignCenter, m_source.title);
    }
    painter->restore();
}

void DisplayDecoration::paintRuler(QPainter* painter, const Ruler& ruler) const
{
    const QColor color = m_elements.rulerColor;
    const QRect& bar = ruler.bar;
    const int t = m_elements.rulerThickness;
    const int line = qMax(1, t / 4);
    painter->fillRect(bar, color);
    // End ticks reach the full thickness inwards, the others half of it.
    if (!ruler.vertical) {
        const int dir = bar.top() + t / 2 > m_source.size.height() / 2 ? -1 : 1;
        const int base = dir < 0 ? bar.top() - t : bar.bottom() + 1;
        painter->fillRect(QRect(bar.left(), base, line, t), color);
        painter->fillRect(QRect(bar.right() + 1 - line, base, line, t), color);
        for (int offset : ruler.minorTicks) {
            const int len = (t + 1) / 2;
            painter->fillRect(QRect(bar.left() + offset, dir < 0 ? bar.top() - len : base, 1, len), color);
        }
    } else {
        const int dir = bar.left() + t / 2 > m_source.size.width() / 2 ? -1 : 1;
        const int base = dir < 0 ? bar.left() - t : bar.right() + 1;
        painter->fillRect(QRect(base, bar.top(), t, line), color);
        painter->fillRect(QRect(base, bar.bottom() + 1 - line, t, line), color);
        for (int offset : ruler.minorTicks) {
            const int len = (t + 1) / 2;
            painter->fillRect(QRect(dir < 0 ? bar.left() - len : base, bar.bottom() - offset, len, 1), color);
        }
    }
    if (!ruler.showLabel)
        return;
    painter->setFont(font(m_elements.rulerLabelSize, m_elements.rulerLabelBold));
    painter->setPen(m_elements.fontColor);
    if (ruler.vertical)
        drawRotated(painter, ruler.label, ruler.text);
    else
        painter->drawText(ruler.label, Qt::AlignCenter, ruler.text);
}

void DisplayDecoration::paintXLabels(QPainter* painter) const
{
    const DisplayElements& e = m_elements;
    const int w = m_source.size.width(), h = m_source.size.height();
    const QFont font = this->font(e.xyLabelSize, e.xyLabelBold);
    const QFontMetrics metrics(font);
    painter->setFont(font);
    int y = h + Pad / 2;
    if (e.showXLabels) {
        painter->fillRect(QRect(0, h, w, 1), e.lineColor);
        for (const Tick& t : m_xTicks) {
            const int x = qBound(0, int(std::lround(t.fraction * w)), w - 1);
            painter->fillRect(QRect(x, h, 1, m_xyTick), e.lineColor);
            const int width = metrics.horizontalAdvance(t.text);
            painter->setPen(e.fontColor);
            painter->drawText(
                QRect(x - width / 2 - 1, h + m_xyTick + Gap, width + 2, metrics.height()), Qt::AlignCenter, t.text);
        }
        y = h + m_xyTick + Gap + metrics.height();
    }
    if (e.showXPosLabel) {
        const QString text = caption(QStringLiteral("x"), m_xUnit);
        const int width = qMax(w, metrics.horizontalAdvance(text));
        painter->setPen(e.fontColor);
        painter->drawText(QRect((w - width) / 2, y + Gap, width, metrics.height()), Qt::AlignCenter, text);
    }
}

void DisplayDecoration::paintYLabels(QPainter* painter) const
{
    const DisplayElements& e = m_elements;
    const int h = m_source.size.height();
    const QFont font = this->font(e.xyLabelSize, e.xyLabelBold);
    const QFontMetrics metrics(font);
    painter->setFont(font);
    int x = -Pad / 2;
    if (e.showYLabels) {
        painter->fillRect(QRect(-1, 0, 1, h), e.lineColor);
        for (const Tick& t : m_yTicks) {
            const int y = qBound(0, int(std::lround((1 - t.fraction) * h)), h - 1);
            painter->fillRect(QRect(-m_xyTick, y, m_xyTick, 1), e.lineColor);
            painter->setPen(e.fontColor);
            painter->drawText(
                QRect(-m_xyTick - Gap - m_yLabelWidth, y - metrics.height() / 2, m_yLabelWidth, metrics.height()),
                Qt::AlignRight | Qt::AlignVCenter, t.text);
        }
        x = -m_xyTick - Gap - m_yLabelWidth;
    }
    if (e.showYPosLabel) {
        const QString text = caption(QStringLiteral("y"), m_yUnit);
        const int length = qMax(h, metrics.horizontalAdvance(text));
        painter->setPen(e.fontColor);
        drawRotated(painter, QRect(x - Gap - metrics.height(), (h - length) / 2, metrics.height(), length), text);
    }
}

void DisplayDecoration::paintZScale(QPainter* painter) const
{
    const DisplayElements& e = m_elements;
    const int w = m_source.size.width(), h = m_source.size.height();
    const QRect bar(w + e.zScaleLeftMargin, 0, e.zScaleWidth, h);
    // One ramp entry per row, the ends exactly the gradient's end colours, so that the bar matches the picture.
    QImage column(1, h, QImage::Format_ARGB32);
    const QRgb* ramp = m_source.gradient.rampData();
    for (int row = 0; row < h; ++row) {
        const int entry = h == 1 ? ColorGradient::RampSize - 1
                                 : int(std::lround(double(h - 1 - row) / (h - 1) * (ColorGradient::RampSize - 1)));
        reinterpret_cast<QRgb*>(column.scanLine(row))[0] = ramp[entry];
    }
    painter->drawImage(bar, column);
    int x = bar.right() + 1;
    if (e.zScaleBorder) {
        painter->setPen(QPen(e.zScaleBorderColor, 0));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(bar.adjusted(-1, -1, 0, 0));
        x += 1;
    }
    const QFont font = this->font(e.zLabelSize, e.zLabelBold);
    const QFontMetrics metrics(font);
    painter->setFont(font);
    for (const Tick& t : m_zTicks) {
        const int y = rowOf(t.fraction, h);
        if (e.showZScaleTicks && (t.major || e.showZScaleSubticks))
            painter->fillRect(QRect(x, y, t.major ? m_zTick : (m_zTick + 1) / 2, 1), e.lineColor);
        if (e.showZLabels && t.major) {
            painter->setPen(e.fontColor);
            painter->drawText(QRect(x + (e.showZScaleTicks ? m_zTick : 0) + Gap, y - metrics.height() / 2,
                                  m_zLabelWidth, metrics.height()),
                Qt::AlignLeft | Qt::AlignVCenter, t.text);
        }
    }
    if (e.showZPosLabel) {
        const int labels = x + (e.showZScaleTicks ? m_zTick : 0) + (e.showZLabels ? Gap + m_zLabelWidth : 0);
        const QString text = caption(QStringLiteral("z"), m_zUnit);
        const int length = qMax(h, metrics.horizontalAdvance(text));
        painter->setPen(e.fontColor);
        drawRotated(painter, QRect(labels + Pad, (h - length) / 2, metrics.height(), length), text);
    }
}

QImage DisplayDecoration::render(const QImage& picture) const
{
    const QRect outer = outerRect();
    QImage image(outer.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.translate(-outer.topLeft());
        painter.drawImage(QPoint(0, 0), picture);
        paint(&painter);
    }
    return image.convertToFormat(QImage::Format_ARGB32);
}
