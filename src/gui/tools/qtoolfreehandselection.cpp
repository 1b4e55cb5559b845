#include "qtoolfreehandselection.h"

#include <QPainter>
#include <QPainterPath>

QToolFreehandSelection::QToolFreehandSelection(QWidget* parent)
    : QToolSelection(QStringLiteral("FREEHAND_SELECTION"), parent)
{
    finishPanel();
}

void QToolFreehandSelection::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    m_path.clear();
    startDrag(point);
}

void QToolFreehandSelection::updateDrag(const QPoint& point)
{
    append(point);
    setNeedsRedraw();
}

void QToolFreehandSelection::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        append(point);
    finishDrag();
    const QPolygon polygon = m_path;
    const MaskEdit::Mode how = gestureMode();
    applyToItem(MaskEdit::polygonText(), QSciImage::MaskPart,
        [&polygon, how](QSciImage& target) { MaskEdit::applyPolygon(target, polygon, how); });
}

void QToolFreehandSelection::append(const QPoint& point)
{
    if (m_path.isEmpty() || m_path.last() != point)
        m_path.append(point);
}

void QToolFreehandSelection::drawPreview(QPainter& painter)
{
    if (m_path.isEmpty())
        return;
    // Through the same corner coordinates that the mask's polygon test uses.
    QPainterPath outline(m_path.first());
    for (const QPoint& p : qAsConst(m_path))
        outline.lineTo(p);
    outline.closeSubpath();
    paintRubberBand(painter, outline);
}
