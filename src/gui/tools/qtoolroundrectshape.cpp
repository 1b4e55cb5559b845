#include "qtoolroundrectshape.h"

QToolRoundRectShape::QToolRoundRectShape(QWidget* parent)
    : QToolShape(QStringLiteral("ROUND_RECT_SHAPE"), PictureDraw::Shape::RoundedRectangle, parent)
{
}
