#pragma once

#include "qtoolselection.h"

#include <QPolygon>

/** Selects the area enclosed by the path of a drag, closed by a straight line back to its start. */
class QToolFreehandSelection final : public QToolSelection {
    Q_OBJECT

public:
    explicit QToolFreehandSelection(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    QPolygon path() const { return m_path; }

protected:
    void drawPreview(QPainter& painter) override;

private:
    void append(const QPoint& point);

    QPolygon m_path;
};
