#pragma once

#include "qtool.h"

class QRadioButton;
class QSpinBox;

/**
 * Edits an object by hand: a drag that starts on an object paints points into it (or takes them away) with a
 * round brush; on release its measures are computed anew. One undo step per stroke ("Edit object").
 */
class QToolEditObject final : public QTool {
    Q_OBJECT

public:
    explicit QToolEditObject(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }

protected:
    void drawPreview(QPainter& painter) override;

private:
    void addStamp(const QPoint& point);

    QRadioButton* m_add;
    QRadioButton* m_remove;
    QSpinBox* m_radius;
    int m_object = -1;
    bool m_erasing = false;
    QVector<QPoint> m_points; ///< display coordinates
};
