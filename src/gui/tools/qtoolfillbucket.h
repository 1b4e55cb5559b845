#pragma once

#include "qtool.h"

class QSpinBox;

/** A click fills the connected area of similar colour in the picture with the button's colour. */
class QToolFillBucket final : public QTool {
    Q_OBJECT

public:
    explicit QToolFillBucket(QWidget* parent = nullptr);

    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }

    int tolerance() const;
    void setTolerance(int tolerance);

private:
    QSpinBox* m_tolerance;
};
