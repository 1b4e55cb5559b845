#include "qtoolellipseshape.h"

QToolEllipseShape::QToolEllipseShape(QWidget* parent)
    : QToolShape(QStringLiteral("ELLIPSE_SHAPE"), PictureDraw::Shape::Ellipse, parent)
{
}
