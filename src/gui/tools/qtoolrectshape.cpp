#include "qtoolrectshape.h"

QToolRectShape::QToolRectShape(QWidget* parent)
    : QToolShape(QStringLiteral("RECT_SHAPE"), PictureDraw::Shape::Rectangle, parent)
{
}
