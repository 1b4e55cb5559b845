#include "collectiontabpage.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

#include "collectiontabview.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "imagegraphicsitem.h"

CollectionTabPage::CollectionTabPage(CollectionTab* tab, QWidget* parent)
    : QWidget(parent)
    , m_tab(tab)
    , m_scene(new QGraphicsScene(this))
    , m_view(new CollectionTabView(this, m_scene))
{
    connect(m_view, &CollectionTabView::contextMenuRequested, this, &CollectionTabPage::contextMenuRequested);
    connect(m_view, &CollectionTabView::zoomStepRequested, this, &CollectionTabPage::zoomStepRequested);
    connect(m_view, &CollectionTabView::itemsDragged, this, &CollectionTabPage::itemsDragged);
    connect(m_view, &CollectionTabView::pointHovered, this, &CollectionTabPage::pointHovered);

    // A scene left to itself only ever grows: after a huge item shrank, the view would scroll over emptiness.
    connect(m_scene, &QGraphicsScene::changed, this, [this] {
        if (m_fitPending)
            return;
        m_fitPending = true;
        QTimer::singleShot(0, this, &CollectionTabPage::fitSceneToItems);
    });
    fitSceneToItems();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);

    if (!tab)
        return;
    for (QSciImage* item : tab->items())
        addGraphicsItem(item);
    connect(tab, &CollectionTab::itemAdded, this, &CollectionTabPage::addGraphicsItem);
    connect(tab, &CollectionTab::itemRemoved, this, &CollectionTabPage::removeGraphicsItem);
    connect(tab, &CollectionTab::orderChanged, this, [this] {
        for (ImageGraphicsItem* graphics : qAsConst(m_items))
            graphics->syncPlace();
    });
}

CollectionTab* CollectionTabPage::tab() const
{
    return m_tab;
}

QGraphicsView* CollectionTabPage::view() const
{
    return m_view;
}

void CollectionTabPage::setZoomPercent(int percent)
{
    if (percent <= 0 || percent == m_zoomPercent)
        return;
    m_zoomPercent = percent;
    const qreal factor = percent / 100.0;
    m_view->setTransform(QTransform::fromScale(factor, factor));
}

void CollectionTabPage::setToolMouseSink(ToolMouseSink* sink)
{
    m_view->setToolMouseSink(sink);
}

void CollectionTabPage::setItemsMovable(bool movable)
{
    m_movable = movable;
    for (ImageGraphicsItem* graphics : qAsConst(m_items))
        graphics->setMovable(movable);
}

QRectF CollectionTabPage::visibleSceneRect() const
{
    return m_view->mapToScene(m_view->viewport()->rect()).boundingRect();
}

void CollectionTabPage::renderVisibleArea(QPainter* painter, const QRectF& target)
{
    for (ImageGraphicsItem* graphics : qAsConst(m_items))
        graphics->setDecorated(false);
    m_scene->render(painter, target, visibleSceneRect(), Qt::KeepAspectRatio);
    for (ImageGraphicsItem* graphics : qAsConst(m_items))
        graphics->setDecorated(true);
}

void CollectionTabPage::fitSceneToItems()
{
    m_fitPending = false;
    QRectF bounds;
    for (const ImageGraphicsItem* graphics : qAsConst(m_items)) {
        if (graphics->isVisible())
            bounds |= graphics->sceneBoundingRect();
    }
    // The origin stays in view, where new items go.
    bounds |= QRectF(0, 0, 1, 1);
    if (m_scene->sceneRect() != bounds)
        m_scene->setSceneRect(bounds);
}

void CollectionTabPage::addGraphicsItem(QSciImage* item)
{
    if (m_items.contains(item))
        return;
    auto* graphics = new ImageGraphicsItem(item);
    graphics->setMovable(m_movable);
    m_items.insert(item, graphics);
    m_scene->addItem(graphics);
    // Items below may have moved up a place.
    for (ImageGraphicsItem* other : qAsConst(m_items))
        other->syncPlace();
}

void CollectionTabPage::removeGraphicsItem(QSciImage* item)
{
    delete m_items.take(item);
    for (ImageGraphicsItem* other : qAsConst(m_items))
        other->syncPlace();
}
