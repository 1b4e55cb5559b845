#pragma once

#include "qtoolbrush.h"

class QDoubleSpinBox;

/** Smooths the z-matrix under the brush by the mean over a disc; the picture is re-rendered from it. */
class QToolSmoothen final : public QToolBrush {
    Q_OBJECT

public:
    explicit QToolSmoothen(QWidget* parent = nullptr);

    double smoothingRadius() const;
    void setSmoothingRadius(double radius);

protected:
    QColor trailColor() const override { return Qt::gray; }
    void applyStroke(const BrushFootprint& footprint) override;

private:
    QDoubleSpinBox* m_smoothing;
};
