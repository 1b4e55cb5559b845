#pragma once

#include <QWidget>

class QGraphicsScene;
class QGraphicsView;

/**
 * One page of the collection tabs: a graphics view over a scene of its own, in which the
 * project's tab places its items. Keeps the zoom that the zoom box shows for this tab.
 */
class CollectionTabPage final : public QWidget {
    Q_OBJECT

public:
    explicit CollectionTabPage(QWidget* parent = nullptr);

    QGraphicsView* view() const { return m_view; }
    QGraphicsScene* scene() const { return m_scene; }

    int zoomPercent() const { return m_zoomPercent; }
    void setZoomPercent(int percent);

signals:
    /** The user asked for the item context menu at @p globalPos. */
    void contextMenuRequested(const QPoint& globalPos);

private:
    QGraphicsScene* m_scene;
    QGraphicsView* m_view;
    int m_zoomPercent = 100;
};
