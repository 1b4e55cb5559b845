#include "tooloverlayitem.h"

#include "qtool.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

ToolOverlayItem::ToolOverlayItem()
{
    setAcceptedMouseButtons(Qt::NoButton);
}

QRectF ToolOverlayItem::boundingRect() const
{
    return QRectF(QPointF(0, 0), QSizeF(m_size));
}

void ToolOverlayItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*)
{
    if (!m_tool)
        return;
    const QImage& image = m_tool->currentOverlay();
    // Only the exposed part: a drag over a large item repaints a small band of it.
    const QRect exposed = option->exposedRect.toAlignedRect().intersected(image.rect());
    if (!exposed.isEmpty())
        painter->drawImage(exposed.topLeft(), image, exposed);
}

void ToolOverlayItem::showFrom(QTool* tool, const QPointF& pos)
{
    const QSize size = tool ? tool->currentOverlay().size() : QSize();
    if (size != m_size) {
        prepareGeometryChange();
        m_size = size;
    }
    m_tool = tool;
    setPos(pos);
    show();
    update();
}
