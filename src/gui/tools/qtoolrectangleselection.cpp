#include "qtoolrectangleselection.h"

#include <QCheckBox>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

QToolRectangleSelection::QToolRectangleSelection(QWidget* parent)
    : QToolRectangleSelection(QStringLiteral("RECTANGLE_SELECTION"), parent)
{
}

QToolRectangleSelection::QToolRectangleSelection(const QString& identifier, QWidget* parent)
    : QToolSelection(identifier, parent)
{
    panelLayout()->addWidget(makeSelectionMethodBox());
    finishPanel();
}

void QToolRectangleSelection::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    m_start = point;
    startDrag(point);
}

void QToolRectangleSelection::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolRectangleSelection::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    const QRect rect = selectionRect();
    const MaskEdit::Mode how = gestureMode();
    applyToItem(operationText(), QSciImage::MaskPart,
        [this, rect, how](QSciImage& target) { applySelection(target, rect, how); });
}

void QToolRectangleSelection::drawPreview(QPainter& painter)
{
    QPainterPath path;
    path.addRect(QRectF(selectionRect()).adjusted(0.5, 0.5, -0.5, -0.5));
    paintRubberBand(painter, path);
}

QString QToolRectangleSelection::operationText() const
{
    return MaskEdit::rectangleText();
}

void QToolRectangleSelection::applySelection(QSciImage& item, const QRect& rect, MaskEdit::Mode mode) const
{
    MaskEdit::applyRect(item, rect, mode);
}
