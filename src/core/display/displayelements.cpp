#include "displayelements.h"

#include <QStringList>

namespace {

class Reader {
public:
    explicit Reader(const QMap<QString, QString>& values)
        : m_values(values)
    {
    }

    void flag(const char* key, bool* target) const
    {
        const QString text = value(key).trimmed();
        if (text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            *target = true;
        else if (text == QLatin1String("0") || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            *target = false;
    }

    // Sizes are bounded so that a damaged file cannot ask for a picture of absurd size.
    void number(const char* key, int* target, int low, int high) const
    {
        bool ok = false;
        const double v = value(key).trimmed().toDouble(&ok);
        if (ok && v == v)
            *target = int(qBound(double(low), v, double(high)));
    }

    void color(const char* key, QColor* target) const
    {
        const QStringList parts = value(key).split(QLatin1Char(';'));
        if (parts.size() < 3 || parts.size() > 4)
            return;
        int channels[4] = { 0, 0, 0, 255 };
        for (int i = 0; i < parts.size(); ++i) {
            bool ok = false;
            channels[i] = parts.at(i).trimmed().toInt(&ok);
            if (!ok)
                return;
            channels[i] = qBound(0, channels[i], 255);
        }
        *target = QColor(channels[0], channels[1], channels[2], channels[3]);
    }

    void text(const char* key, QString* target) const
    {
        const QString v = value(key).trimmed();
        if (!v.isEmpty())
            *target = v;
    }

private:
    QString value(const char* key) const { return m_values.value(QLatin1String(key)); }
    const QMap<QString, QString>& m_values;
};

constexpr int MaxSize = 4096;

} // namespace

DisplayElements DisplayElements::fromMap(const QMap<QString, QString>& values)
{
    DisplayElements e;
    const Reader r(values);
    r.text("displayFontClassName", &e.fontFamily);
    r.color("displayFontColor", &e.fontColor);
    r.color("displayLineColor", &e.lineColor);
    r.color("displayRulerBackgroundPanelColor", &e.rulerPanelColor);
    r.color("displayRulerColor", &e.rulerColor);
    r.number("displayRulerHeightInPix", &e.rulerThickness, 1, MaxSize);
    r.flag("displayRulerLabelBold", &e.rulerLabelBold);
    r.number("displayRulerLabelSize", &e.rulerLabelSize, 1, MaxSize);
    r.number("displayRulerMarginInPix", &e.rulerMargin, 0, MaxSize);
    r.flag("displayRulerNaturalUnits", &e.rulerNaturalUnits);
    r.number("displayRulerPosition", &e.horizontalRulerCorner, BottomLeft, TopRight);
    r.flag("displayRulerShowUnit", &e.rulerShowUnit);
    r.number("displayRulerWidthInPix", &e.rulerLength, 1, 1 << 30);
    r.flag("displayRulerSizeManual", &e.rulerSizeManual);
    r.flag("displayTitleBold", &e.titleBold);
    r.number("displayTitleSize", &e.titleSize, 1, MaxSize);
    r.number("displayVERTRulerPosition", &e.verticalRulerCorner, BottomLeft, TopRight);
    r.flag("displayXYLabelBold", &e.xyLabelBold);
    r.number("displayXYLabelSize", &e.xyLabelSize, 1, MaxSize);
    r.flag("displayXYNaturalUnits", &e.xyNaturalUnits);
    r.flag("displayZLabelBold", &e.zLabelBold);
    r.number("displayZLabelSize", &e.zLabelSize, 1, MaxSize);
    r.flag("displayZLabelWithUnit", &e.zLabelWithUnit);
    r.flag("displayZScaleBorder", &e.zScaleBorder);
    r.color("displayZScaleBorderColor", &e.zScaleBorderColor);
    r.number("displayZScaleLeftMargin", &e.zScaleLeftMargin, 0, MaxSize);
    r.number("displayZScaleWidth", &e.zScaleWidth, 1, MaxSize);
    r.flag("showHorizontalRuler", &e.showHorizontalRuler);
    r.flag("showHorizontalRulerLabel", &e.showHorizontalRulerLabel);
    r.flag("showHorizontalRulerPanel", &e.showHorizontalRulerPanel);
    r.flag("showTitle", &e.showTitle);
    r.flag("showVerticalRuler", &e.showVerticalRuler);
    r.flag("showVerticalRulerLabel", &e.showVerticalRulerLabel);
    r.flag("showVerticalRulerPanel", &e.showVerticalRulerPanel);
    r.flag("showXLabels", &e.showXLabels);
    r.flag("showXPosLabel", &e.showXPosLabel);
    r.flag("showYLabels", &e.showYLabels);
    r.flag("showYPosLabel", &e.showYPosLabel);
    r.flag("showZLabels", &e.showZLabels);
    r.flag("showZPosLabel", &e.showZPosLabel);
    r.flag("showZScale", &e.showZScale);
    r.flag("showZScaleSubticks", &e.showZScaleSubticks);
    r.flag("showZScaleTicks", &e.showZScaleTicks);
    return e;
}

bool DisplayElements::anyShown() const
{
    return showHorizontalRuler || showVerticalRuler || showTitle || showXLabels || showXPosLabel || showYLabels
        || showYPosLabel || showZScale;
}

void DisplayElements::showFigureSet()
{
    showHorizontalRuler = true;
    showVerticalRuler = true;
    showTitle = true;
    showZScale = true;
    showZLabels = true;
}
