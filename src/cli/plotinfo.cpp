#include "plotinfo.h"

#include "core/plots/plot2dfile.h"
#include "core/plots/plot3dfile.h"
#include "core/plots/plotvalues.h"

#include <QJsonArray>
#include <cmath>

namespace {

QJsonObject settingsObject(const QMap<QString, QString>& settings)
{
    QJsonObject object;
    for (auto it = settings.constBegin(); it != settings.constEnd(); ++it)
        object.insert(it.key(), it.value());
    return object;
}

QJsonArray numbers(const QVector<double>& values)
{
    QJsonArray array;
    for (double v : values)
        array.append(std::isfinite(v) ? QJsonValue(v) : QJsonValue());
    return array;
}

} // namespace

bool PlotInfo::isPlotFileName(const QString& path)
{
    return Plot2dFile::isPlotFileName(path) || Plot3dFile::isPlotFileName(path);
}

bool PlotInfo::describe(const QString& path, QJsonObject* json, QString* message)
{
    const QString geometry = QStringLiteral("geometry");
    if (Plot2dFile::isPlotFileName(path)) {
        Plot2dDocument document;
        if (!Plot2dFile::read(path, &document, message))
            return false;
        QJsonArray plots;
        for (const Plot2dCurve& curve : qAsConst(document.curves))
            plots.append(QJsonObject { { QStringLiteral("plotName"), curve.plotName },
                { QStringLiteral("variables"), QJsonArray::fromStringList(curve.variables) },
                { QStringLiteral("valueLength"), double(curve.values.size()) },
                { QStringLiteral("values"), numbers(curve.values) } });
        *json = { { QStringLiteral("type"), Plot2dFile::type() },
            { QStringLiteral("settings"), settingsObject(document.settings()) },
            { geometry, PlotValues::joinRect(document.geometry) }, { QStringLiteral("plots"), plots } };
        return true;
    }
    Plot3dDocument document;
    if (!Plot3dFile::read(path, &document, message))
        return false;
    *json = { { QStringLiteral("type"), Plot3dFile::type() },
        { QStringLiteral("settings"), settingsObject(document.settings()) },
        { geometry, PlotValues::joinRect(document.geometry) }, { QStringLiteral("itemName"), document.itemName },
        { QStringLiteral("imageWidth"), document.width }, { QStringLiteral("imageHeight"), document.height },
        { QStringLiteral("zMin"), document.zMin }, { QStringLiteral("zMax"), document.zMax },
        { QStringLiteral("plots"),
            QJsonArray { QJsonObject { { QStringLiteral("plotName"), document.itemName },
                { QStringLiteral("valueLength"), double(document.z.size()) },
                { QStringLiteral("values"), numbers(document.z) } } } } };
    return true;
}
