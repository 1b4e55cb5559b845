#pragma once

#include "qtoolshape.h"

/** A rectangle on the picture. */
class QToolRectShape final : public QToolShape {
    Q_OBJECT

public:
    explicit QToolRectShape(QWidget* parent = nullptr);
};
