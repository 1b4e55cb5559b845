#include "qtooleraser.h"

QToolEraser::QToolEraser(QWidget* parent)
    : QToolDrawStroke(QStringLiteral("ERASER"), PictureDraw::Stroke::Eraser, 9, parent)
{
}
