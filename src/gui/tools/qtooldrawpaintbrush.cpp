#include "qtooldrawpaintbrush.h"

QToolDrawPaintbrush::QToolDrawPaintbrush(QWidget* parent)
    : QToolDrawStroke(QStringLiteral("PAINTBRUSH"), PictureDraw::Stroke::Paintbrush, 5, parent)
{
}
