#pragma once

#include "qtoolshape.h"

/** A rectangle with rounded corners on the picture. */
class QToolRoundRectShape final : public QToolShape {
    Q_OBJECT

public:
    explicit QToolRoundRectShape(QWidget* parent = nullptr);
};
