#include "plot3dpage.h"

#include "plot3ddocument.h"
#include "surfacegrid.h"

#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace {

QString number(double value)
{
    return std::isfinite(value) ? QString::number(value, 'g', 12) : QStringLiteral("0");
}

QString boolean(bool on)
{
    return on ? QStringLiteral("true") : QStringLiteral("false");
}

QString colourObject(const QColor& c)
{
    return QStringLiteral("{red:%1, green:%2, blue:%3}").arg(c.red()).arg(c.green()).arg(c.blue());
}

/** Tick labels as the settings ask: fixed or scientific, with the chosen precision and decimal mark. */
QString tickLabel(const Plot3dDocument& d, QChar axis, double value)
{
    const int precision = std::clamp(int(d.number(axis + QLatin1String("NumericalPrecision"), 2)), 0, 12);
    const bool scientific = d.setting(axis + QLatin1String("NumericalFormat")) == QLatin1String("1");
    QString text = QString::number(value, scientific ? 'e' : 'f', precision);
    if (d.flag(QStringLiteral("useKomma")))
        text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

/** "[[position, "label"], ...]" with positions 0..1 along the axis and labels from @p low to @p high. */
QString ticks(const Plot3dDocument& d, QChar axis, double low, double high)
{
    const int count = std::clamp(int(d.number(axis + QLatin1String("TickNumberValue"), 5)), 0, 50);
    const int sub = d.flag(axis + QLatin1String("SubTickCheck"))
        ? std::clamp(int(d.number(axis + QLatin1String("SubTickNumber"), 1)), 0, 10)
        : 0;
    QStringList entries;
    if (count >= 1) {
        const int steps = std::max(1, count - 1);
        for (int i = 0; i <= steps * (sub + 1); ++i) {
            const double t = double(i) / (steps * (sub + 1));
            // Sub-ticks get a mark but no label.
            const QString label = i % (sub + 1) == 0 ? tickLabel(d, axis, low + t * (high - low)) : QString();
            entries.append(QLatin1Char('[') + number(t) + QStringLiteral(", \"") + Plot3dPage::scriptString(label)
                + QStringLiteral("\"]"));
        }
    }
    return QLatin1Char('[') + entries.join(QStringLiteral(", ")) + QLatin1Char(']');
}

QString axisTitle(const Plot3dDocument& d, QChar axis, const QString& unit)
{
    if (!d.flag(axis + QLatin1String("AxisCheck")))
        return QString();
    QString title = d.setting(axis + QLatin1String("AxisTitle"));
    const QString addKey = QLatin1String("add") + axis.toUpper() + QLatin1String("Unit");
    if (d.flag(addKey) && !unit.isEmpty())
        title += QStringLiteral(" [") + unit + QLatin1Char(']');
    return title;
}

QString dataScript(const SurfaceGrid& grid, QString* assignments)
{
    QString functions;
    functions.reserve(grid.z.size() * 24);
    assignments->reserve(grid.rows * 40);
    for (int r = 0; r < grid.rows; ++r) {
        const QString index = QString::number(r);
        functions += QStringLiteral("function ManyValues") + index + QStringLiteral("() {\nvar row = new Array();\n");
        for (int c = 0; c < grid.columns; ++c) {
            const double v = grid.at(c, r);
            functions += QStringLiteral("row[") + QString::number(c) + QStringLiteral("] = ")
                + (std::isfinite(v) ? QString::number(v, 'g', 10) : QStringLiteral("NaN")) + QStringLiteral(";\n");
        }
        functions += QStringLiteral("return row;\n}\n");
        *assignments += QStringLiteral("    values[") + index + QStringLiteral("] = ManyValues") + index
            + QStringLiteral("();\n");
    }
    return functions;
}

} // namespace

const QStringList& Plot3dPage::placeholderNames()
{
    static const QStringList names = QStringLiteral(
        "plotID useWebGL xAngleNoGL yAngleNoGL xAngleGL yAngleGL xTranslation yTranslation plotWidth plotHeight "
        "lightPosX lightPosY lightPosZ lightBrightness ambientLightX ambientLightY ambientLightZ "
        "fontStyle fontSize fontFamily fontTitle plotTitle boldTitle italicTitle XAxisTitle YAxisTitle ZAxisTitle "
        "xLabelPos yLabelPos zLabelPos xLabelCheck yLabelCheck zLabelCheck xTicks yTicks zTicks autoCalcZ "
        "foregroundColor backgroundColor color1 color2 color3 color4 color5 color6 colorPeriods "
        "numberOfRows numberOfCols zValues valueArrayFunctions renderDataPoints")
                                         .split(QLatin1Char(' '));
    return names;
}

QString Plot3dPage::scriptString(const QString& text)
{
    QString out;
    out.reserve(text.size() + 8);
    for (const QChar ch : text) {
        const ushort u = ch.unicode();
        // Quotes and backslashes would end the string; "<", ">" and "&" could end the script element or start an
        // entity; line separators end a script line.
        if (u < 0x20 || u == '"' || u == '\'' || u == '\\' || u == '<' || u == '>' || u == '&' || u == 0x2028
            || u == 0x2029 || u == 0x7F)
            out += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        else
            out += ch;
    }
    return out;
}

int Plot3dPage::gridSide(const Plot3dDocument& d)
{
    if (!d.flag(QStringLiteral("autoPrecision")))
        return std::clamp(int(d.number(QStringLiteral("precision"), 100)), 2, 400);
    // A 2D canvas repaints every cell on each mouse move; WebGL keeps far more cells interactive.
    return d.flag(QStringLiteral("useWebGL")) ? 200 : 90;
}

QMap<QString, QString> Plot3dPage::values(const Plot3dDocument& d, const QSize& size)
{
    QMap<QString, QString> v;
    const int side = gridSide(d);
    const SurfaceGrid grid
        = d.hasData() ? SurfaceGrid::reduce(d.z.constData(), d.width, d.height, side, side) : SurfaceGrid();
    double low = qInf(), high = -qInf();
    for (double value : grid.z) {
        if (std::isfinite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    if (!(low <= high))
        low = 0, high = 1;

    v[QStringLiteral("plotID")] = QStringLiteral("surfacePlotDiv");
    v[QStringLiteral("useWebGL")] = boolean(d.flag(QStringLiteral("useWebGL")));
    const QString xAngle = number(d.number(QStringLiteral("angleWebGLX"), -60));
    const QString yAngle = number(d.number(QStringLiteral("angleWebGLY"), -30));
    v[QStringLiteral("xAngleGL")] = v[QStringLiteral("xAngleNoGL")] = xAngle;
    v[QStringLiteral("yAngleGL")] = v[QStringLiteral("yAngleNoGL")] = yAngle;
    v[QStringLiteral("xTranslation")] = number(d.number(QStringLiteral("xTranslation")));
    v[QStringLiteral("yTranslation")] = number(d.number(QStringLiteral("yTranslation")));
    v[QStringLiteral("plotWidth")] = QString::number(std::clamp(size.width(), 16, 16384));
    v[QStringLiteral("plotHeight")] = QString::number(std::clamp(size.height(), 16, 16384));

    v[QStringLiteral("lightPosX")] = number(d.number(QStringLiteral("spotXDirection"), -0.25));
    v[QStringLiteral("lightPosY")] = number(d.number(QStringLiteral("spotYDirection"), -0.25));
    v[QStringLiteral("lightPosZ")] = number(d.number(QStringLiteral("spotZDirection"), -1));
    v[QStringLiteral("lightBrightness")] = number(d.number(QStringLiteral("spotBrightness"), 0.6));
    const QString ambient = number(d.number(QStringLiteral("ambientBrightness"), 0.6));
    v[QStringLiteral("ambientLightX")] = v[QStringLiteral("ambientLightY")] = v[QStringLiteral("ambientLightZ")]
        = ambient;

    QString style = d.setting(QStringLiteral("fontStyle"));
    if (style != QLatin1String("italic") && style != QLatin1String("bold"))
        style = QStringLiteral("normal");
    const int fontSize = std::clamp(int(d.number(QStringLiteral("fontSize"), 12)), 4, 200);
    v[QStringLiteral("fontStyle")] = style;
    v[QStringLiteral("fontSize")] = QString::number(fontSize);
    const QString family = d.setting(QStringLiteral("fontfamily"));
    v[QStringLiteral("fontFamily")] = scriptString(family.isEmpty() ? QStringLiteral("arial") : family);
    v[QStringLiteral("fontTitle")] = QString::number(fontSize * 3 / 2);
    v[QStringLiteral("plotTitle")]
        = d.flag(QStringLiteral("plotTitleCheck")) ? scriptString(d.setting(QStringLiteral("plotTitle"))) : QString();
    v[QStringLiteral("boldTitle")] = boolean(true);
    v[QStringLiteral("italicTitle")] = boolean(style == QLatin1String("italic"));
    const bool natural = d.flag(QStringLiteral("useNaturalUnits"));
    v[QStringLiteral("XAxisTitle")] = scriptString(axisTitle(d, QLatin1Char('x'), natural ? d.xUnit : QString()));
    v[QStringLiteral("YAxisTitle")] = scriptString(axisTitle(d, QLatin1Char('y'), natural ? d.yUnit : QString()));
    v[QStringLiteral("ZAxisTitle")] = scriptString(axisTitle(d, QLatin1Char('z'), d.zUnit));
    for (const char* axis : { "x", "y", "z" }) {
        const QString a = QLatin1String(axis);
        v[a + QLatin1String("LabelPos")] = QStringLiteral("0.08");
        v[a + QLatin1String("LabelCheck")] = boolean(d.flag(a + QLatin1String("LabelCheck")));
    }
    const double xRange = natural ? d.xSize : d.width, yRange = natural ? d.ySize : d.height;
    v[QStringLiteral("xTicks")] = ticks(d, QLatin1Char('x'), 0, xRange);
    v[QStringLiteral("yTicks")] = ticks(d, QLatin1Char('y'), 0, yRange);
    v[QStringLiteral("zTicks")] = ticks(d, QLatin1Char('z'), low, high);
    v[QStringLiteral("autoCalcZ")] = boolean(true);

    const QColor foreground = d.color(QStringLiteral("foregroundColor"), Qt::white);
    const QColor background = d.color(QStringLiteral("backgroundColor"), Qt::black);
    v[QStringLiteral("foregroundColor")] = QStringLiteral("color: ") + foreground.name();
    v[QStringLiteral("backgroundColor")] = QStringLiteral("background:") + background.name();
    for (int i = 1; i <= 6; ++i)
        v[QStringLiteral("color%1").arg(i)] = colourObject(d.color(QStringLiteral("color%1").arg(i)));
    v[QStringLiteral("colorPeriods")]
        = QString::number(std::clamp(int(d.number(QStringLiteral("colorPeriods"), 1)), 1, 100));

    QString assignments;
    v[QStringLiteral("valueArrayFunctions")] = dataScript(grid, &assignments);
    v[QStringLiteral("zValues")] = assignments;
    v[QStringLiteral("numberOfRows")] = QString::number(grid.rows);
    v[QStringLiteral("numberOfCols")] = QString::number(grid.columns);
    v[QStringLiteral("renderDataPoints")] = boolean(d.setting(QStringLiteral("render")) == QLatin1String("1"));
    return v;
}

QString Plot3dPage::templateText(const QString& name)
{
    Q_INIT_RESOURCE(plot3dhtml);
    QFile file(QStringLiteral(":/plot3dhtml/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

QString Plot3dPage::html(const Plot3dDocument& document, const QSize& size, bool standalone)
{
    QString page = templateText(QStringLiteral("examples/mainGL.html"));
    if (standalone) {
        const QString style = templateText(QStringLiteral("css/style.css"));
        page.replace(QStringLiteral("<link rel=\"stylesheet\" type=\"text/css\" href=\"../css/style.css\">"),
            QStringLiteral("<style type=\"text/css\">\n") + style + QStringLiteral("</style>"));
        static const QRegularExpression script(
            QStringLiteral("<script type=\"text/javascript\" src=\"\\.\\./javascript/([A-Za-z]+\\.js)\"></script>"));
        QRegularExpressionMatch match;
        while ((match = script.match(page)).hasMatch()) {
            const QString code = templateText(QStringLiteral("javascript/") + match.captured(1));
            page.replace(match.capturedStart(), match.capturedLength(),
                QStringLiteral("<script type=\"text/javascript\">\n") + code + QStringLiteral("</script>"));
        }
    }
    // One pass over the template: a value is never searched again, so a title that reads "${plotID}" stays text.
    const QMap<QString, QString> fill = values(document, size);
    static const QRegularExpression placeholder(QStringLiteral("\\$\\{([A-Za-z0-9]+)\\}"));
    QString out;
    out.reserve(page.size() + fill.value(QStringLiteral("valueArrayFunctions")).size() * 2);
    qsizetype last = 0;
    QRegularExpressionMatchIterator it = placeholder.globalMatch(page);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        out += QStringView(page).mid(last, m.capturedStart() - last);
        const auto found = fill.constFind(m.captured(1));
        out += found != fill.constEnd() ? *found : m.captured(0);
        last = m.capturedEnd();
    }
    out += QStringView(page).mid(last);
    return out;
}
