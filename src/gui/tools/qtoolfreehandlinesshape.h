#pragma once

#include "qtoolpathshape.h"

/** A polygon of straight edges between clicked corners. */
class QToolFreehandLinesShape final : public QToolPathShape {
    Q_OBJECT

public:
    explicit QToolFreehandLinesShape(QWidget* parent = nullptr);
};
