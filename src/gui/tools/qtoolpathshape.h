#pragma once

#include "qtool.h"

#include <QPainterPath>
#include <QPolygon>

class QComboBox;
class QSpinBox;

/**
 * Draws a path on the picture in the colour of the button that starts it: a freehand outline along a drag,
 * a polygon of straight edges, or a smooth curve through clicked points. Polygons and curves get one point
 * per release; a release back on the first corner closes a polygon, one on the last point again ends the
 * path open. Previewed over the held copy of the picture.
 */
class QToolPathShape : public QTool {
    Q_OBJECT

public:
    enum class Kind { Freehand, Lines, Curve };

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;
    bool takesRightButton() const override { return true; }

    QPolygon points() const { return m_points; }
    bool isFilled() const;
    void setFilled(bool filled);
    int lineWidth() const;
    void setLineWidth(int width);

protected:
    QToolPathShape(const QString& identifier, Kind kind, QWidget* parent);
    bool previewsOverPicture() const override { return true; }
    void drawPreview(QPainter& painter) override;

private:
    /** The path of the stored points, with @p cursor as a last point when it is not null. */
    QPainterPath path(bool closed, const QPoint* cursor = nullptr) const;
    void append(const QPoint& point);
    void apply(bool closed);

    Kind m_kind;
    QComboBox* m_style = nullptr;
    QSpinBox* m_lineWidth;
    QPolygon m_points;
    QPoint m_cursor;
    Qt::MouseButton m_button = Qt::LeftButton;
};
