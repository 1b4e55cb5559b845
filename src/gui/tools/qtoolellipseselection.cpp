#include "qtoolellipseselection.h"

#include <QPainter>
#include <QPainterPath>

QToolEllipseSelection::QToolEllipseSelection(QWidget* parent)
    : QToolRectangleSelection(QStringLiteral("ELLIPSE_SELECTION"), parent)
{
}

void QToolEllipseSelection::drawPreview(QPainter& painter)
{
    QPainterPath path;
    path.addEllipse(QRectF(selectionRect()).adjusted(0.5, 0.5, -0.5, -0.5));
    paintRubberBand(painter, path);
}

QString QToolEllipseSelection::operationText() const
{
    return MaskEdit::ellipseText();
}

void QToolEllipseSelection::applySelection(QSciImage& item, const QRect& rect, MaskEdit::Mode mode) const
{
    MaskEdit::applyEllipse(item, rect, mode);
}
