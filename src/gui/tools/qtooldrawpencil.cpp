#include "qtooldrawpencil.h"

QToolDrawPencil::QToolDrawPencil(QWidget* parent)
    : QToolDrawStroke(QStringLiteral("PENCIL"), PictureDraw::Stroke::Pencil, 0, parent)
{
}
