#include "plot3ddocument.h"

#include "core/items/qsciimage.h"

#include <QStringList>
#include <cmath>

namespace {

QVector<QPair<QString, QString>> makeDefaults()
{
    QVector<QPair<QString, QString>> d;
    auto add = [&d](const char* key, const QString& value) { d.append({ QLatin1String(key), value }); };
    auto text = [](const char* value) { return QLatin1String(value); };
    add("tabPage", text("0"));
    add("backgroundColor", text("0;0;0;255"));
    add("foregroundColor", text("255;255;255;255"));
    add("xAxisTitle", text("x"));
    add("yAxisTitle", text("y"));
    add("zAxisTitle", text("z"));
    for (const char* key : { "addXUnit", "addYUnit", "addZUnit" })
        add(key, text("1"));
    add("useNaturalUnits", text("1"));
    add("useKomma", text("0"));
    for (const char* key : { "xTickNumberValue", "yTickNumberValue", "zTickNumberValue" })
        add(key, text("5"));
    for (const char* key : { "xSubTickCheck", "ySubTickCheck", "zSubTickCheck" })
        add(key, text("0"));
    for (const char* key : { "xSubTickNumber", "ySubTickNumber", "zSubTickNumber" })
        add(key, text("1"));
    for (const char* key : { "xNumericalFormat", "yNumericalFormat", "zNumericalFormat" })
        add(key, text("0"));
    for (const char* key : { "xNumericalPrecision", "yNumericalPrecision", "zNumericalPrecision" })
        add(key, text("2"));
    add("plotTitle", QString());
    for (const char* key : { "xAxisCheck", "yAxisCheck", "zAxisCheck", "plotTitleCheck" })
        add(key, text("1"));
    add("fontfamily", text("arial"));
    add("fontSize", text("12"));
    add("fontStyle", text("normal"));
    add("useDefaultColorGradient", text("0"));
    add("defaultColorScheme", text("0"));
    const char* colours[]
        = { "0;0;128;255", "0;0;255;255", "0;255;255;255", "255;255;0;255", "255;0;0;255", "128;0;0;255" };
    for (int i = 0; i < 6; ++i)
        d.append({ QStringLiteral("color%1").arg(i + 1), QLatin1String(colours[i]) });
    add("colorPeriods", text("1"));
    add("saveWidth", text("1200"));
    add("saveHeight", text("900"));
    add("keepAspectRatio", text("1"));
    add("useWebGL", text("1"));
    add("render", text("0"));
    add("precision", text("100"));
    add("autoPrecision", text("1"));
    for (const char* key : { "xLabelCheck", "yLabelCheck", "zLabelCheck" })
        add(key, text("1"));
    add("ambientBrightness", text("0.6"));
    add("spotBrightness", text("0.6"));
    add("ambientScheme", text("0"));
    add("spotXDirection", text("-0.25"));
    add("spotYDirection", text("-0.25"));
    add("spotZDirection", text("-1"));
    add("angleWebGLX", text("-60"));
    add("angleWebGLY", text("-30"));
    add("xTranslation", text("0"));
    add("yTranslation", text("0"));
    add("zoom", text("1"));
    add("autoUpdate", text("1"));
    return d;
}

QString colorText(const QColor& c)
{
    return QStringLiteral("%1;%2;%3;%4").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
}

} // namespace

const QVector<QPair<QString, QString>>& Plot3dDocument::settingDefaults()
{
    static const QVector<QPair<QString, QString>> defaults = makeDefaults();
    return defaults;
}

Plot3dDocument::Plot3dDocument()
    : geometry(120, 120, 900, 700)
{
    for (const auto& pair : settingDefaults())
        m_settings.insert(pair.first, pair.second);
}

void Plot3dDocument::setSetting(const QString& key, const QString& value)
{
    auto it = m_settings.find(key);
    if (it != m_settings.end())
        *it = value;
}

double Plot3dDocument::number(const QString& key, double fallback) const
{
    bool ok = false;
    const double value = m_settings.value(key).toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

QColor Plot3dDocument::color(const QString& key, const QColor& fallback) const
{
    const QStringList parts = m_settings.value(key).split(QLatin1Char(';'));
    if (parts.size() != 4)
        return fallback;
    int channel[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        channel[i] = parts[i].toInt(&ok);
        if (!ok || channel[i] < 0 || channel[i] > 255)
            return fallback;
    }
    return QColor(channel[0], channel[1], channel[2], channel[3]);
}

void Plot3dDocument::setColor(const QString& key, const QColor& color)
{
    setSetting(key, colorText(color));
}

void Plot3dDocument::updateRange()
{
    double low = qInf(), high = -qInf();
    for (double value : qAsConst(z)) {
        if (std::isfinite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    zMin = low <= high ? low : 0;
    zMax = low <= high ? high : 0;
}

Plot3dDocument Plot3dDocument::fromItem(const QSciImage& item)
{
    Plot3dDocument d;
    d.width = item.width();
    d.height = item.height();
    d.z.resize(qsizetype(d.width) * d.height);
    // The item keeps columns from the bottom; the page wants rows from the top.
    const double* source = item.zData();
    for (int x = 0; x < d.width; ++x) {
        const double* column = source + qsizetype(x) * d.height;
        for (int y = 0; y < d.height; ++y)
            d.z[qsizetype(d.height - 1 - y) * d.width + x] = column[y];
    }
    d.updateRange();
    const QSciImage::SciValues& sci = item.sciValues();
    d.itemName = item.name();
    d.xUnit = sci.xUnit;
    d.yUnit = sci.yUnit;
    d.zUnit = sci.zUnit;
    d.xSize = sci.sizeX > 0 ? sci.sizeX : d.width;
    d.ySize = sci.sizeY > 0 ? sci.sizeY : d.height;
    d.setSetting(QStringLiteral("plotTitle"), item.name());
    const ColorGradient& gradient = item.colorGradient();
    for (int i = 0; i < 6; ++i) {
        const int entry = std::min(ColorGradient::RampSize - 1, i * ColorGradient::RampSize / 5);
        d.setColor(QStringLiteral("color%1").arg(i + 1), QColor::fromRgba(gradient.rampData()[entry]));
    }
    d.setNumber(QStringLiteral("colorPeriods"), std::max(1, gradient.repeat()));
    return d;
}
