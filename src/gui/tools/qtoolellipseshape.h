#pragma once

#include "qtoolshape.h"

/** An ellipse on the picture, inscribed in the rectangle of the drag. */
class QToolEllipseShape final : public QToolShape {
    Q_OBJECT

public:
    explicit QToolEllipseShape(QWidget* parent = nullptr);
};
