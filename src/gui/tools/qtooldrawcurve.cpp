#include "qtooldrawcurve.h"

QToolDrawCurve::QToolDrawCurve(QWidget* parent)
    : QToolPathShape(QStringLiteral("LINE_CURVE"), Kind::Curve, parent)
{
}
