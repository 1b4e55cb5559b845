#pragma once

#include "qtool.h"

/** A click takes the picture's colour as the left colour (left button) or the right colour (right button). */
class QToolColorPicker final : public QTool {
    Q_OBJECT

public:
    explicit QToolColorPicker(QWidget* parent = nullptr);

    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }
};
