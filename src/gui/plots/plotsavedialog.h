#pragma once

#include <QString>

class QWidget;

/** The save dialog of the plot windows, opening in the folder last chosen under the settings key @p key. */
class PlotSaveDialog final {
public:
    static QString choose(QWidget* parent, const QString& key, const QString& title, const QString& filter);
};
