#include "qtoolfreehandshape.h"

QToolFreehandShape::QToolFreehandShape(QWidget* parent)
    : QToolPathShape(QStringLiteral("FREEHAND_SHAPE"), Kind::Freehand, parent)
{
}
