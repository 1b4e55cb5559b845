#pragma once

#include "qtool.h"

#include "core/items/distancemeasure.h"

class QLabel;

/**
 * Measures the line of a drag: its length and angle in the item's physical units and in points, shown in
 * the panel and written to the output page. Changes nothing, so it opens no history transaction.
 */
class QToolMeasureDistance final : public QTool {
    Q_OBJECT

public:
    explicit QToolMeasureDistance(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    const DistanceMeasure& lastMeasure() const { return m_measure; }

protected:
    void drawPreview(QPainter& painter) override;

private:
    QPoint m_start;
    QPoint m_end;
    DistanceMeasure m_measure;
    QLabel* m_result;
};
