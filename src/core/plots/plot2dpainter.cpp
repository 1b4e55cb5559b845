#include "plot2dpainter.h"

#include "plot2ddocument.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace {

using Scale = Plot2dDocument::Scale;

double forward(Scale scale, double value)
{
    switch (scale) {
    case Scale::Ln:
        return value > 0 ? std::log(value) : qQNaN();
    case Scale::Log10:
        return value > 0 ? std::log10(value) : qQNaN();
    case Scale::Linear:
        break;
    }
    return value;
}

double backward(Scale scale, double value)
{
    switch (scale) {
    case Scale::Ln:
        return std::exp(value);
    case Scale::Log10:
        return std::pow(10.0, value);
    case Scale::Linear:
        break;
    }
    return value;
}

/** A tick step of 1, 2 or 5 times a power of ten giving about @p count ticks over @p span. */
double niceStep(double span, int count)
{
    const double raw = span / std::max(1, count);
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double factor : { 1.0, 2.0, 5.0 })
        if (raw <= factor * power)
            return factor * power;
    return 10 * power;
}

struct Axis {
    Scale scale = Scale::Linear;
    double low = 0; // in scaled units
    double high = 1;
    double step = 0; // in scaled units; 0 means automatic
};

Axis axisOf(const Plot2dDocument& d, QChar a)
{
    Axis axis;
    axis.scale = d.scale(a);
    axis.low = forward(axis.scale, d.number(a + QLatin1String("RangeMin")));
    axis.high = forward(axis.scale, d.number(a + QLatin1String("RangeMax")));
    // A log axis asked to start at 0 or below shows three decades under its top instead.
    if (!std::isfinite(axis.high))
        axis.high = std::isfinite(axis.low) ? axis.low + 1 : 1;
    if (!std::isfinite(axis.low))
        axis.low = axis.high - 3;
    if (axis.low == axis.high)
        axis.high = axis.low + 1;
    if (axis.low > axis.high)
        std::swap(axis.low, axis.high);
    const double fixed = d.number(a + QLatin1String("TickStep"));
    if (!d.flag(a + QLatin1String("TickStepAutoCheck")) && fixed > 0 && (axis.high - axis.low) / fixed < 200)
        axis.step = fixed;
    else
        axis.step = niceStep(axis.high - axis.low, 6);
    return axis;
}

QFont fontOf(const Plot2dDocument& d, const char* sizeKey, const char* boldKey)
{
    QFont font(d.setting(QStringLiteral("fontFamily")));
    font.setPointSizeF(std::clamp(d.number(QLatin1String(sizeKey)), 4.0, 72.0));
    if (boldKey)
        font.setBold(d.flag(QLatin1String(boldKey)));
    return font;
}

} // namespace

QColor Plot2dPainter::curveColor(int index)
{
    static const QRgb colours[] = { 0x1f77b4, 0xd62728, 0x2ca02c, 0xff7f0e, 0x9467bd, 0x8c564b, 0xe377c2, 0x17becf };
    return QColor(colours[index % 8]);
}

QImage Plot2dPainter::render(const Plot2dDocument& d, const QSize& requested)
{
    const QSize size = requested.boundedTo(QSize(8000, 8000)).expandedTo(QSize(100, 80));
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const Axis ax = axisOf(d, QLatin1Char('x')), ay = axisOf(d, QLatin1Char('y'));

    const QFont titleFont = fontOf(d, "titleSize", "titleBoldCheck");
    const QFont tickFont = fontOf(d, "xTickSize", nullptr);
    const QFont labelFont = fontOf(d, "xLabelSize", "xLabelBoldCheck");
    const int tickHeight = QFontMetrics(tickFont).height();
    const int labelHeight = QFontMetrics(labelFont).height();
    const bool showTitle = d.flag(QStringLiteral("titleCheck")) && !d.setting(QStringLiteral("title")).isEmpty();
    const int top = 10 + (showTitle ? QFontMetrics(titleFont).height() + 6 : 0);
    const int left = 20 + labelHeight + QFontMetrics(tickFont).horizontalAdvance(QStringLiteral("-0.000000"));
    const int bottom = size.height() - (16 + tickHeight + labelHeight);
    const QRect plot(left, top, std::max(10, size.width() - left - 20), std::max(10, bottom - top));

    const auto toX = [&](double v) { return plot.left() + (v - ax.low) / (ax.high - ax.low) * plot.width(); };
    const auto toY = [&](double v) { return plot.bottom() - (v - ay.low) / (ay.high - ay.low) * plot.height(); };

    // Grid and ticks.
    p.setFont(tickFont);
    for (const QChar a : { QLatin1Char('x'), QLatin1Char('y') }) {
        const Axis& axis = a == QLatin1Char('x') ? ax : ay;
        const bool grid = d.flag(a + QLatin1String("TickGridCheck"));
        const bool values = d.flag(a + QLatin1String("AxisValueCheck"));
        const int length = int(d.number(a + QLatin1String("TickLength")));
        for (double v = std::ceil(axis.low / axis.step) * axis.step; v <= axis.high + axis.step * 1e-9;
             v += axis.step) {
            const double at = a == QLatin1Char('x') ? toX(v) : toY(v);
            if (grid) {
                p.setPen(QPen(QColor(220, 220, 220), 0));
                if (a == QLatin1Char('x'))
                    p.drawLine(QPointF(at, plot.top()), QPointF(at, plot.bottom()));
                else
                    p.drawLine(QPointF(plot.left(), at), QPointF(plot.right(), at));
            }
            p.setPen(Qt::black);
            if (d.flag(a + QLatin1String("TickCheck"))) {
                if (a == QLatin1Char('x'))
                    p.drawLine(QPointF(at, plot.bottom()), QPointF(at, plot.bottom() - length));
                else
                    p.drawLine(QPointF(plot.left(), at), QPointF(plot.left() + length, at));
            }
            if (!values)
                continue;
            const QString text = d.formatNumber(backward(axis.scale, std::abs(v) < axis.step * 1e-9 ? 0 : v));
            if (a == QLatin1Char('x'))
                p.drawText(QRectF(at - 60, plot.bottom() + 4, 120, tickHeight), Qt::AlignHCenter | Qt::AlignTop, text);
            else
                p.drawText(QRectF(0, at - tickHeight, plot.left() - 6, 2 * tickHeight),
                    Qt::AlignRight | Qt::AlignVCenter, text);
        }
    }
    p.setPen(Qt::black);
    if (d.flag(QStringLiteral("useFrame")))
        p.drawRect(plot);
    else {
        p.drawLine(plot.bottomLeft(), plot.bottomRight());
        p.drawLine(plot.bottomLeft(), plot.topLeft());
    }

    // Curves, clipped to the plot area.
    p.save();
    p.setClipRect(plot);
    for (int i = 0; i < d.curves.size(); ++i) {
        const Plot2dCurve& curve = d.curves[i];
        for (int column = 1; column < curve.variables.size(); ++column) {
            QPainterPath path;
            bool open = false;
            for (int k = 0; k < curve.pointCount(); ++k) {
                const double x = forward(ax.scale, curve.x(k)), y = forward(ay.scale, curve.y(k, column));
                if (!std::isfinite(x) || !std::isfinite(y)) {
                    open = false;
                    continue;
                }
                const QPointF point(toX(x), toY(y));
                if (open)
                    path.lineTo(point);
                else
                    path.moveTo(point);
                open = true;
            }
            p.setPen(QPen(curveColor(i + column - 1), 1.5));
            p.drawPath(path);
        }
    }
    p.restore();

    if (showTitle) {
        p.setFont(titleFont);
        p.drawText(QRect(0, 6, size.width(), top - 6), Qt::AlignCenter, d.setting(QStringLiteral("title")));
    }
    p.setFont(labelFont);
    if (d.flag(QStringLiteral("xLabelCheck")))
        p.drawText(QRect(plot.left(), size.height() - labelHeight - 6, plot.width(), labelHeight), Qt::AlignCenter,
            d.setting(QStringLiteral("xLabel")));
    if (d.flag(QStringLiteral("yLabelCheck"))) {
        p.save();
        p.translate(6, plot.center().y());
        p.rotate(-90);
        p.drawText(QRect(-plot.height() / 2, 0, plot.height(), labelHeight), Qt::AlignCenter,
            d.setting(QStringLiteral("yLabel")));
        p.restore();
    }

    if (d.flag(QStringLiteral("legendCheck")) && !d.curves.isEmpty()) {
        const QFont legendFont = fontOf(d, "legendSize", "legendBoldCheck");
        p.setFont(legendFont);
        const QFontMetrics fm(legendFont);
        int width = 0;
        for (const Plot2dCurve& curve : d.curves)
            width = std::max(width, fm.horizontalAdvance(curve.plotName));
        const QRect box(plot.right() - width - 40, plot.top() + 8, width + 32, fm.height() * d.curves.size() + 8);
        p.fillRect(box, Qt::white);
        p.drawRect(box);
        for (int i = 0; i < d.curves.size(); ++i) {
            const int y = box.top() + 4 + i * fm.height() + fm.height() / 2;
            p.setPen(QPen(curveColor(i), 2));
            p.drawLine(box.left() + 4, y, box.left() + 20, y);
            p.setPen(Qt::black);
            p.drawText(QRect(box.left() + 24, y - fm.height() / 2, width + 4, fm.height()), Qt::AlignVCenter,
                d.curves[i].plotName);
        }
    }
    return image;
}
