#pragma once

#include "qtoolselection.h"

/**
 * Moves the mask by the length of a drag. With "Add" the moved copy joins the selection, with
 * "Subtract" it is taken out of it.
 */
class QToolMoveSelection final : public QToolSelection {
    Q_OBJECT

public:
    explicit QToolMoveSelection(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    QPoint offset() const { return m_end - m_start; }

protected:
    void drawPreview(QPainter& painter) override;

private:
    QPoint m_start;
    QPoint m_end;
    /** The mask as an image, made once per drag and drawn at the offset on each redraw. */
    QImage m_maskImage;
};
