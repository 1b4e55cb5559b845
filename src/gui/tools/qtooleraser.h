#pragma once

#include "qtooldrawstroke.h"

/** Paints over the picture with the right (background) colour, whichever button drags. */
class QToolEraser final : public QToolDrawStroke {
    Q_OBJECT

public:
    explicit QToolEraser(QWidget* parent = nullptr);

protected:
    QColor strokeColor(Qt::MouseButton) const override { return rightColor(); }
};
