#pragma once

#include <QObject>

class MainActions;
class MainWindow;

/**
 * The menu entries that turn regions of the selected items into objects (the mask's regions, watershed grains) and
 * the Voronoi cells around objects.
 */
class SegmentationActions final : public QObject {
    Q_OBJECT

public:
    SegmentationActions(MainWindow* window, MainActions* actions);

signals:
    void messageRequested(const QString& title, const QString& text);

private:
    void maskToObjects();
    void watershed();
    void voronoi();

    MainWindow* m_window;
};
