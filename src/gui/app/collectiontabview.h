#pragma once

#include <QGraphicsView>
#include <QList>
#include <QPair>
#include <QPointer>

#include "core/items/qsciimage.h"

class CollectionTabPage;
class ImageGraphicsItem;
class ToolMouseSink;

/**
 * The graphics view of one collection tab. Ctrl+wheel asks for a zoom step; a drag of items with the
 * default pointer is shown live and then handed on as one move, so that the move goes through the
 * history; while a tool sink takes a press, the gesture goes to the tool instead.
 */
class CollectionTabView final : public QGraphicsView {
    Q_OBJECT

public:
    CollectionTabView(CollectionTabPage* page, QGraphicsScene* scene);

    void setToolMouseSink(ToolMouseSink* sink) { m_sink = sink; }
    ToolMouseSink* toolMouseSink() const { return m_sink; }

    /** The topmost visible item at @p viewPos (viewport coordinates), or nullptr. */
    ImageGraphicsItem* imageAt(const QPoint& viewPos) const;
    /** The data point of @p item under @p viewPos, column and row from the top; may lie outside the item. */
    QPoint pointIn(const QSciImage* item, const QPoint& viewPos) const;

signals:
    void zoomStepRequested(int steps);
    /** The user dragged @p items by @p dx, @p dy points; they are back in place until the move is made. */
    void itemsDragged(const QList<QSciImage*>& items, int dx, int dy);
    /** The cursor is over @p item (nullptr: none) at its data point @p point (column, row from the top). */
    void pointHovered(QSciImage* item, const QPoint& point);
    void contextMenuRequested(const QPoint& globalPos);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void openKeyboardMenu();
    void rememberDragStart();
    void finishDrag();

    CollectionTabPage* m_page;
    ToolMouseSink* m_sink = nullptr;
    bool m_toolGesture = false;
    QPointer<QSciImage> m_toolItem;
    bool m_suppressContextMenu = false;
    bool m_menuFromKey = false;
    QList<QPair<QPointer<ImageGraphicsItem>, QPoint>> m_dragStart;
};
