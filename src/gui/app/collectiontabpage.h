#pragma once

#include <QHash>
#include <QPointer>
#include <QWidget>

#include "core/items/qsciimage.h"

class CollectionTab;
class CollectionTabView;
class ImageGraphicsItem;
class QGraphicsScene;
class QGraphicsView;
class QPainter;
class ToolMouseSink;

/**
 * One page of the collection tabs: the view and scene that show one CollectionTab of the project, with a
 * graphics item per image item in the tab's stacking order. Follows the tab's signals; keeps the zoom that
 * the zoom box shows for this tab.
 */
class CollectionTabPage final : public QWidget {
    Q_OBJECT

public:
    explicit CollectionTabPage(CollectionTab* tab, QWidget* parent = nullptr);

    CollectionTab* tab() const;
    QGraphicsView* view() const;
    CollectionTabView* tabView() const { return m_view; }
    QGraphicsScene* scene() const { return m_scene; }
    ImageGraphicsItem* graphicsItem(const QSciImage* item) const { return m_items.value(item); }

    int zoomPercent() const { return m_zoomPercent; }
    void setZoomPercent(int percent);

    /** Sends mouse gestures to @p sink first (nullptr: the default pointer only). */
    void setToolMouseSink(ToolMouseSink* sink);
    /** Whether the default pointer may drag items. */
    void setItemsMovable(bool movable);
    bool itemsMovable() const { return m_movable; }

    /** The part of the scene the view shows, in data points. */
    QRectF visibleSceneRect() const;
    /** Paints the visible part of the tab into @p target, without selection frames. */
    void renderVisibleArea(QPainter* painter, const QRectF& target);
    /** Makes the scrollable area the items' bounding rectangle, so that it shrinks when items shrink or go. */
    void fitSceneToItems();

signals:
    /** The user asked for the item context menu at @p globalPos. */
    void contextMenuRequested(const QPoint& globalPos);
    void zoomStepRequested(int steps);
    void itemsDragged(const QList<QSciImage*>& items, int dx, int dy);
    void pointHovered(QSciImage* item, const QPoint& point);

private:
    void addGraphicsItem(QSciImage* item);
    void removeGraphicsItem(QSciImage* item);

    QPointer<CollectionTab> m_tab;
    QGraphicsScene* m_scene;
    CollectionTabView* m_view;
    QHash<const QSciImage*, ImageGraphicsItem*> m_items;
    int m_zoomPercent = 100;
    bool m_movable = true;
    bool m_fitPending = false;
};
