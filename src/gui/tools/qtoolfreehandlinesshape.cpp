#include "qtoolfreehandlinesshape.h"

QToolFreehandLinesShape::QToolFreehandLinesShape(QWidget* parent)
    : QToolPathShape(QStringLiteral("FREEHAND_LINES"), Kind::Lines, parent)
{
}
