#pragma once

#include "qtooldrawstroke.h"

/** A one-point-wide aliased line in the button's colour. */
class QToolDrawPencil final : public QToolDrawStroke {
    Q_OBJECT

public:
    explicit QToolDrawPencil(QWidget* parent = nullptr);
};
