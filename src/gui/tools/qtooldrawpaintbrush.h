#pragma once

#include "qtooldrawstroke.h"

/** A round, smooth brush of chosen width in the button's colour. */
class QToolDrawPaintbrush final : public QToolDrawStroke {
    Q_OBJECT

public:
    explicit QToolDrawPaintbrush(QWidget* parent = nullptr);
};
