#include "plot2ddocument.h"

#include <QLocale>

namespace {

QVector<QPair<QString, QString>> makeDefaults()
{
    QVector<QPair<QString, QString>> d;
    auto add = [&d](const char* key, const char* value) { d.append({ QLatin1String(key), QLatin1String(value) }); };
    add("titleCheck", "1");
    add("title", "");
    add("titleSize", "14");
    add("titleBoldCheck", "1");
    for (const char* axis : { "x", "y" }) {
        const QString a = QLatin1String(axis);
        d.append({ a + QLatin1String("LabelCheck"), QStringLiteral("1") });
        d.append({ a + QLatin1String("Label"), a });
        d.append({ a + QLatin1String("LabelSize"), QStringLiteral("11") });
        d.append({ a + QLatin1String("LabelBoldCheck"), QStringLiteral("0") });
    }
    add("xAxisValueCheck", "1");
    add("xTickSize", "9");
    add("yAxisValueCheck", "1");
    add("yTickSize", "9");
    add("useKomma", "0");
    add("useFrame", "1");
    add("fontFamily", "DejaVu Sans");
    for (const char* axis : { "x", "y" }) {
        const QString a = QLatin1String(axis);
        const auto key = [&a](const char* field) -> QString { return a + QLatin1String(field); };
        d.append({ key("TickCheck"), QStringLiteral("1") });
        d.append({ key("TickStep"), QStringLiteral("1") });
        d.append({ key("TickStepAutoCheck"), QStringLiteral("1") });
        d.append({ key("TickLength"), QStringLiteral("5") });
        d.append({ key("TickGridCheck"), QStringLiteral("1") });
        d.append({ key("SubTickCheck"), QStringLiteral("1") });
        d.append({ key("SubTickCount"), QStringLiteral("4") });
        d.append({ key("SubTickStepAutoCheck"), QStringLiteral("1") });
        d.append({ key("SubTickLength"), QStringLiteral("2") });
        d.append({ key("SubTickGridCheck"), QStringLiteral("0") });
    }
    add("legendCheck", "1");
    add("legendPosition", "0");
    add("legendSize", "9");
    add("legendBoldCheck", "0");
    add("xLinearCheck", "1");
    add("xLnCheck", "0");
    add("xLog10Check", "0");
    add("yLinearCheck", "1");
    add("yLnCheck", "0");
    add("yLog10Check", "0");
    add("xRangeMin", "0");
    add("xRangeMax", "1");
    add("yRangeMin", "0");
    add("yRangeMax", "1");
    return d;
}

} // namespace

const QVector<QPair<QString, QString>>& Plot2dDocument::settingDefaults()
{
    static const QVector<QPair<QString, QString>> defaults = makeDefaults();
    return defaults;
}

bool Plot2dDocument::isBooleanKey(const QString& key)
{
    return key.endsWith(QLatin1String("Check")) || key == QLatin1String("useKomma") || key == QLatin1String("useFrame");
}

Plot2dDocument::Plot2dDocument()
    : geometry(100, 100, 800, 560)
{
    for (const auto& pair : settingDefaults())
        m_settings.insert(pair.first, pair.second);
}

void Plot2dDocument::setSetting(const QString& key, const QString& value)
{
    auto it = m_settings.find(key);
    if (it != m_settings.end())
        *it = value;
}

double Plot2dDocument::number(const QString& key) const
{
    // Files written with a decimal comma elsewhere still read.
    QString text = m_settings.value(key);
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    return text.toDouble();
}

void Plot2dDocument::setNumber(const QString& key, double value)
{
    setSetting(key, QString::number(value, 'g', 12));
}

Plot2dDocument::Scale Plot2dDocument::scale(QChar axis) const
{
    if (flag(axis + QLatin1String("LnCheck")))
        return Scale::Ln;
    if (flag(axis + QLatin1String("Log10Check")))
        return Scale::Log10;
    return Scale::Linear;
}

void Plot2dDocument::setScale(QChar axis, Scale scale)
{
    setFlag(axis + QLatin1String("LinearCheck"), scale == Scale::Linear);
    setFlag(axis + QLatin1String("LnCheck"), scale == Scale::Ln);
    setFlag(axis + QLatin1String("Log10Check"), scale == Scale::Log10);
}

QString Plot2dDocument::formatNumber(double value, int precision) const
{
    QString text = QString::number(value, 'g', precision);
    if (flag(QStringLiteral("useKomma")))
        text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}
