#pragma once

#include "qtoolselection.h"

#include <QPolygon>

/**
 * Selects a polygon of straight edges: each drag draws one edge from the last corner, its release adds
 * the next corner. A release back on the first corner, or with the right button, closes the polygon and
 * selects it.
 */
class QToolFreehandLinesSelection final : public QToolSelection {
    Q_OBJECT

public:
    explicit QToolFreehandLinesSelection(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    QPolygon corners() const { return m_corners; }

protected:
    void drawPreview(QPainter& painter) override;

private:
    void apply();

    QPolygon m_corners;
    QPoint m_cursor;
};
