#pragma once

#include "qtoolselection.h"

class QCheckBox;
class QDoubleSpinBox;

/**
 * Selects, on a click, the points whose z lies within the tolerance of the clicked point's z: the
 * connected region around it or every such point of the item. The tolerance is in percent of the item's
 * z range, so one setting suits items of any height scale.
 */
class QToolMagicWandSelection final : public QToolSelection {
    Q_OBJECT

public:
    explicit QToolMagicWandSelection(QWidget* parent = nullptr);

    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    double tolerancePercent() const;
    void setTolerancePercent(double percent);
    bool isContiguous() const;
    void setContiguous(bool contiguous);

private:
    QDoubleSpinBox* m_tolerance;
    QCheckBox* m_contiguous;
};
