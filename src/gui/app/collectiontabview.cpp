#include "collectiontabview.h"

#include <QContextMenuEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

#include "core/items/qsciimage.h"
#include "gui/tools/toolmousesink.h"
#include "imagegraphicsitem.h"

CollectionTabView::CollectionTabView(CollectionTabPage* page, QGraphicsScene* scene)
    : QGraphicsView(scene)
    , m_page(page)
{
    setObjectName(QStringLiteral("graphicsView"));
    setDragMode(QGraphicsView::RubberBandDrag);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setBackgroundBrush(QColor(200, 200, 200));
    setMouseTracking(true);
}

ImageGraphicsItem* CollectionTabView::imageAt(const QPoint& viewPos) const
{
    // items() returns the topmost first.
    for (QGraphicsItem* candidate : items(viewPos)) {
        if (candidate->type() == ImageGraphicsItem::Type && candidate->isVisible())
            return static_cast<ImageGraphicsItem*>(candidate);
    }
    return nullptr;
}

QPoint CollectionTabView::pointIn(const QSciImage* item, const QPoint& viewPos) const
{
    const QPointF scenePos = mapToScene(viewPos);
    const QPointF origin = item ? QPointF(item->left(), item->top()) : QPointF();
    return QPoint(int(std::floor(scenePos.x() - origin.x())), int(std::floor(scenePos.y() - origin.y())));
}

void CollectionTabView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        const int delta = event->angleDelta().y();
        if (delta != 0)
            emit zoomStepRequested(delta > 0 ? 1 : -1);
        event->accept();
        return;
    }
    QGraphicsView::wheelEvent(event);
}

void CollectionTabView::mousePressEvent(QMouseEvent* event)
{
    ImageGraphicsItem* under = imageAt(event->pos());
    QSciImage* item = under ? under->item() : nullptr;
    if (m_sink)
        m_sink->toolModifiersPressed(event->modifiers());
    if (m_sink && m_sink->toolMousePressed(m_page, item, pointIn(item, event->pos()), event->button())) {
        m_toolGesture = true;
        m_toolItem = item;
        m_suppressContextMenu = event->button() == Qt::RightButton;
        event->accept();
        return;
    }
    // A right click on an item outside the selection makes it the selection, as file managers do. The scene
    // does not see it: items that a tool keeps fixed ignore presses, and the scene would then clear the selection
    // that the menu is about to act on.
    if (event->button() == Qt::RightButton) {
        if (under && !under->isSelected()) {
            scene()->clearSelection();
            under->setSelected(true);
        }
        event->accept();
        return;
    }
    QGraphicsView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        rememberDragStart();
}

void CollectionTabView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_toolGesture) {
        m_sink->toolMouseMoved(m_page, m_toolItem, pointIn(m_toolItem, event->pos()));
        event->accept();
    } else {
        QGraphicsView::mouseMoveEvent(event);
    }
    ImageGraphicsItem* under = imageAt(event->pos());
    QSciImage* item = under ? under->item() : nullptr;
    emit pointHovered(item, pointIn(item, event->pos()));
}

void CollectionTabView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_toolGesture) {
        m_toolGesture = false;
        if (m_sink)
            m_sink->toolMouseReleased(m_page, m_toolItem, pointIn(m_toolItem, event->pos()), event->button());
        m_toolItem.clear();
        event->accept();
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton)
        finishDrag();
}

void CollectionTabView::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    // A right click that a drawing tool took; the keyboard always gets its menu.
    if (event->reason() == QContextMenuEvent::Mouse && m_suppressContextMenu) {
        m_suppressContextMenu = false;
        return;
    }
    // Some platforms follow the Menu key with a menu event of their own: it is open already.
    if (event->reason() == QContextMenuEvent::Keyboard) {
        if (!m_menuFromKey)
            openKeyboardMenu();
        m_menuFromKey = false;
        return;
    }
    emit contextMenuRequested(event->globalPos());
}

void CollectionTabView::openKeyboardMenu()
{
    // At the mouse when it is over the image area, else in the middle of it; with nothing selected, the menu is
    // for the item it opens over.
    const QPoint cursor = viewport()->mapFromGlobal(QCursor::pos());
    const QPoint at = viewport()->rect().contains(cursor) ? cursor : viewport()->rect().center();
    if (scene()->selectedItems().isEmpty()) {
        if (ImageGraphicsItem* under = imageAt(at))
            under->setSelected(true);
    }
    emit contextMenuRequested(viewport()->mapToGlobal(at));
}

void CollectionTabView::keyPressEvent(QKeyEvent* event)
{
    const bool menuKey
        = event->key() == Qt::Key_Menu || (event->key() == Qt::Key_F10 && (event->modifiers() & Qt::ShiftModifier));
    if (!menuKey) {
        m_menuFromKey = false;
        QGraphicsView::keyPressEvent(event);
        return;
    }
    event->accept();
    m_menuFromKey = event->key() == Qt::Key_Menu;
    openKeyboardMenu();
}

void CollectionTabView::leaveEvent(QEvent* event)
{
    emit pointHovered(nullptr, QPoint());
    QGraphicsView::leaveEvent(event);
}

void CollectionTabView::rememberDragStart()
{
    m_dragStart.clear();
    for (QGraphicsItem* selected : scene()->selectedItems()) {
        if (selected->type() == ImageGraphicsItem::Type && (selected->flags() & QGraphicsItem::ItemIsMovable))
            m_dragStart.append({ static_cast<ImageGraphicsItem*>(selected), selected->pos().toPoint() });
    }
}

void CollectionTabView::finishDrag()
{
    QList<QSciImage*> moved;
    QPoint delta;
    for (const auto& start : qAsConst(m_dragStart)) {
        ImageGraphicsItem* graphics = start.first;
        if (!graphics || !graphics->item())
            continue;
        const QPoint now = graphics->pos().toPoint();
        if (now != start.second) {
            delta = now - start.second;
            moved.append(graphics->item());
        }
        // Back to where the item is; the move itself comes through the history as one step.
        graphics->syncPlace();
    }
    m_dragStart.clear();
    if (!moved.isEmpty())
        emit itemsDragged(moved, delta.x(), delta.y());
}
