#pragma once

#include <QJsonObject>
#include <QString>

/** `info` for 2D and 3D plot files: their settings and every plot's name and values, as JSON. */
class PlotInfo final {
public:
    static bool isPlotFileName(const QString& path);
    [[nodiscard]] static bool describe(const QString& path, QJsonObject* json, QString* message);
};
