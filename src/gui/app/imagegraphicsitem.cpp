#include "imagegraphicsitem.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionGraphicsItem>

#include "core/items/itemdecoration.h"
#include "itemrenderer.h"

ImageGraphicsItem::ImageGraphicsItem(QSciImage* item)
    : m_item(item)
    , m_size(item->size())
{
    setFlags(ItemIsSelectable | ItemSendsGeometryChanges);
    connect(item, &QSciImage::contentChanged, this, &ImageGraphicsItem::onContentChanged);
    connect(item, &QSciImage::placeChanged, this, &ImageGraphicsItem::syncPlace);
    syncPlace();
    setOpacity(item->opacity());
    updateDecoration();
}

QRgb ImageGraphicsItem::maskColor()
{
    return qRgba(40, 120, 255, 110);
}

QRectF ImageGraphicsItem::boundingRect() const
{
    return QRectF(QRect(QPoint(0, 0), m_size).marginsAdded(m_decoration.margins()));
}

void ImageGraphicsItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*)
{
    if (!m_item)
        return;
    if (m_baseDirty) {
        m_base = ItemRenderer::base(*m_item).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        m_baseDirty = false;
    }
    if (!m_decoration.isEmpty()) {
        // The elements' margins get a sheet of paper of their own, so that they read on any tab background.
        QPainterPath margins;
        margins.addRect(boundingRect());
        margins.addRect(QRectF(QPointF(0, 0), QSizeF(m_size)));
        painter->fillPath(margins, Qt::white);
    }
    painter->drawImage(QPointF(0, 0), m_base);
    if (m_item->drawMaskInSciPaint()) {
        if (m_maskDirty) {
            m_mask = ItemRenderer::maskOverlay(*m_item, maskColor());
            m_maskDirty = false;
        }
        if (!m_mask.isNull())
            painter->drawImage(QPointF(0, 0), m_mask);
    }
    if (m_item->drawObjectsInSciPaint()) {
        if (m_outlinesDirty) {
            m_outlines = ItemRenderer::objectOutlines(*m_item);
            m_outlinesDirty = false;
        }
        if (!m_outlines.isNull())
            painter->drawImage(QPointF(0, 0), m_outlines);
        painter->save();
        ItemRenderer::paintObjectLabels(painter, *m_item);
        painter->restore();
    }
    m_decoration.paint(painter);
    if (m_decorated && (option->state & QStyle::State_Selected)) {
        QPen pen(QColor(255, 140, 0), 0, Qt::DashLine);
        pen.setCosmetic(true);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(boundingRect());
    }
}

void ImageGraphicsItem::setMovable(bool movable)
{
    setFlag(ItemIsMovable, movable);
}

void ImageGraphicsItem::setDecorated(bool decorated)
{
    if (decorated == m_decorated)
        return;
    m_decorated = decorated;
    update();
}

void ImageGraphicsItem::syncPlace()
{
    if (!m_item)
        return;
    m_syncing = true;
    setPos(m_item->left(), m_item->top());
    setZValue(m_item->zPosInImageList());
    setVisible(m_item->isVisible());
    setSelected(m_item->isSelected());
    m_syncing = false;
}

QVariant ImageGraphicsItem::itemChange(GraphicsItemChange change, const QVariant& value)
{
    // Items sit on whole data points, also while dragged.
    if (change == ItemPositionChange) {
        const QPointF p = value.toPointF();
        return QPointF(qRound(p.x()), qRound(p.y()));
    }
    if (change == ItemSelectedHasChanged && !m_syncing && m_item)
        m_item->setSelected(value.toBool());
    return QGraphicsObject::itemChange(change, value);
}

void ImageGraphicsItem::onContentChanged(QSciImage::Parts parts)
{
    if (!m_item)
        return;
    if (m_item->size() != m_size) {
        prepareGeometryChange();
        m_size = m_item->size();
        parts |= QSciImage::AllParts;
    }
    // The elements show the z range, the calibration and the name as well as their own settings.
    if (parts & (QSciImage::ZPart | QSciImage::DisplayPart | QSciImage::HeaderPart))
        updateDecoration();
    if (parts & (QSciImage::PicturePart | QSciImage::ZPart | QSciImage::DisplayPart))
        m_baseDirty = true;
    if (parts & (QSciImage::MaskPart | QSciImage::DisplayPart))
        m_maskDirty = true;
    if (parts & (QSciImage::ObjectsPart | QSciImage::DisplayPart))
        m_outlinesDirty = true;
    setOpacity(m_item->opacity());
    // A whole-item reload (undo, file) may also have moved it.
    syncPlace();
    update();
}

void ImageGraphicsItem::updateDecoration()
{
    if (!m_item)
        return;
    const DisplayElements elements = DisplayElements::fromMap(m_item->displayElements());
    DisplayDecoration decoration = elements.anyShown() ? ItemDecoration::of(*m_item, elements) : DisplayDecoration();
    if (decoration.margins() != m_decoration.margins())
        prepareGeometryChange();
    m_decoration = decoration;
}
