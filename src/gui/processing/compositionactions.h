#pragma once

#include <QObject>

class MainActions;
class MainWindow;

/** "Compose image parts" and "Recompose images" on the selected items. */
class CompositionActions final : public QObject {
    Q_OBJECT

public:
    CompositionActions(MainWindow* window, MainActions* actions);

signals:
    void messageRequested(const QString& title, const QString& text);
};
