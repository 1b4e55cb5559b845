#pragma once

#include "qtoolpathshape.h"

/** A shape along the path of a drag, closed back to its start. */
class QToolFreehandShape final : public QToolPathShape {
    Q_OBJECT

public:
    explicit QToolFreehandShape(QWidget* parent = nullptr);
};
