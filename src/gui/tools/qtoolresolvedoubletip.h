#pragma once

#include "qtool.h"

#include <QVector>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;

/**
 * Removes the ghost image of a double tip: the first click marks a feature, the second its ghost. The
 * resolved z-matrix is then shown over the item as a preview; "Apply" writes it in one history step,
 * "Discard" or a new click starts over.
 */
class QToolResolveDoubleTip final : public QTool {
    Q_OBJECT

public:
    explicit QToolResolveDoubleTip(QWidget* parent = nullptr);

    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    bool hasPreview() const { return !m_preview.isEmpty(); }
    const QVector<double>& preview() const { return m_preview; }
    /** Writes the previewed matrix into the item. */
    void applyPreview();
    void discard();

private:
    void showMarks();
    void computePreview();

    QCheckBox* m_autoRatio;
    QDoubleSpinBox* m_ratio;
    QLabel* m_status;
    QPushButton* m_apply;
    QPushButton* m_discard;
    int m_marks = 0;
    QPoint m_feature; // display points of the item
    QPoint m_ghost;
    QVector<double> m_preview;
};
