#pragma once

#include "qtool.h"

#include "core/items/picturedraw.h"

#include <QPolygon>

class QSpinBox;

/**
 * Freehand painting on the picture along the path of a drag, previewed over the held copy of the
 * picture with the same drawing code that applies it. Pencil, paintbrush and eraser differ in the
 * stroke only.
 */
class QToolDrawStroke : public QTool {
    Q_OBJECT

public:
    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }

    QPolygon path() const { return m_path; }
    int strokeWidth() const;
    void setStrokeWidth(int width);

protected:
    /** @p defaultWidth 0: a one-point stroke without a width field. */
    QToolDrawStroke(const QString& identifier, PictureDraw::Stroke stroke, int defaultWidth, QWidget* parent);
    bool previewsOverPicture() const override { return true; }
    void drawPreview(QPainter& painter) override;
    /** The colour the stroke paints with when drawn with @p button. */
    virtual QColor strokeColor(Qt::MouseButton button) const { return colorFor(button); }

private:
    void append(const QPoint& point);

    PictureDraw::Stroke m_stroke;
    QSpinBox* m_width = nullptr;
    QPolygon m_path;
    Qt::MouseButton m_button = Qt::LeftButton;
};
