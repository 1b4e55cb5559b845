#pragma once

#include "qtool.h"

#include "core/processing/latticeanalysis.h"

class QLabel;

/**
 * Measures a lattice: the first drag lays vector a, the second vector b from a's origin. The overlay then
 * shows the lattice grid over the item; the lengths and the angle in physical units go to the panel, the
 * status bar and the output page. "Find in the item" lays both vectors from the item's autocorrelation.
 * Changes nothing, so it opens no history transaction.
 */
class QToolLattice final : public QTool {
    Q_OBJECT

public:
    explicit QToolLattice(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    /** 0, 1 or 2: how many vectors are laid. */
    int vectorCount() const { return m_count; }
    const LatticeAnalysis::Result& result() const { return m_result; }
    void findInItem();
    void clearLattice();

protected:
    void drawPreview(QPainter& painter) override;

private:
    /** Grid and vectors into @p painter, with b as the drag in progress when @p dragging. */
    void paintLattice(QPainter& painter, const QPointF& a, const QPointF& b, bool grid) const;
    void report();
    void showGrid();

    QPointF m_origin; // display points, centres at .5
    QPointF m_a; // display terms: y down
    QPointF m_b;
    QPoint m_start;
    QPoint m_end;
    int m_count = 0;
    LatticeAnalysis::Result m_result;
    QLabel* m_status;
};
