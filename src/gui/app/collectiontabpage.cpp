#include "collectiontabpage.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QVBoxLayout>

CollectionTabPage::CollectionTabPage(QWidget* parent)
    : QWidget(parent)
    , m_scene(new QGraphicsScene(this))
    , m_view(new QGraphicsView(m_scene, this))
{
    m_view->setObjectName(QStringLiteral("graphicsView"));
    m_view->setDragMode(QGraphicsView::RubberBandDrag);
    m_view->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this,
        [this](const QPoint& pos) { emit contextMenuRequested(m_view->viewport()->mapToGlobal(pos)); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
}

void CollectionTabPage::setZoomPercent(int percent)
{
    if (percent <= 0 || percent == m_zoomPercent)
        return;
    m_zoomPercent = percent;
    const qreal factor = percent / 100.0;
    m_view->setTransform(QTransform::fromScale(factor, factor));
}
