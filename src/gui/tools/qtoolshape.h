#pragma once

#include "qtool.h"

#include "core/items/picturedraw.h"

class QComboBox;
class QSpinBox;

/**
 * Draws a shape on the picture in the rectangle of a drag, as an outline of a chosen width or filled,
 * in the colour of the button that drags. Previewed over the held copy of the picture.
 */
class QToolShape : public QTool {
    Q_OBJECT

public:
    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }

    QRect shapeRect() const { return dragRect(m_start, m_end); }
    bool isFilled() const;
    void setFilled(bool filled);
    int lineWidth() const;
    void setLineWidth(int width);

protected:
    QToolShape(const QString& identifier, PictureDraw::Shape shape, QWidget* parent);
    bool previewsOverPicture() const override { return true; }
    bool usesSelectionMethod() const override { return true; }
    void drawPreview(QPainter& painter) override;

private:
    PictureDraw::Shape m_shape;
    QComboBox* m_style;
    QSpinBox* m_lineWidth;
    QPoint m_start;
    QPoint m_end;
    Qt::MouseButton m_button = Qt::LeftButton;
};
