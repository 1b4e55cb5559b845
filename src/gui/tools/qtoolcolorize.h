#pragma once

#include "qtoolbrush.h"

class QSpinBox;

/** Tints the picture under the brush in the colour of the dragging button, keeping its lightness. */
class QToolColorize final : public QToolBrush {
    Q_OBJECT

public:
    explicit QToolColorize(QWidget* parent = nullptr);

    bool takesRightButton() const override { return true; }
    int strengthPercent() const;
    void setStrengthPercent(int percent);

protected:
    QColor trailColor() const override;
    void applyStroke(const BrushFootprint& footprint) override;

private:
    QSpinBox* m_strength;
};
