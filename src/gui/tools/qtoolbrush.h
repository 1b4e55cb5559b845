#pragma once

#include "qtool.h"

#include <QPolygon>

class BrushFootprint;
class QSpinBox;
class QVBoxLayout;

/**
 * A round brush: the path of a drag is collected and shown as a translucent trail; at the release the
 * points it covered change in one history step. Subclasses say what a stroke does.
 */
class QToolBrush : public QTool {
    Q_OBJECT

public:
    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    QPolygon path() const { return m_path; }
    int brushRadius() const;
    void setBrushRadius(int radius);

protected:
    QToolBrush(const QString& identifier, QWidget* parent);
    bool previewsOverPicture() const override { return true; }
    void drawPreview(QPainter& painter) override;
    QVBoxLayout* panelLayout() const { return m_layout; }
    Qt::MouseButton strokeButton() const { return m_button; }
    /** The trail's colour in the preview. */
    virtual QColor trailColor() const = 0;
    /** Applies one stroke covering @p footprint to the current item. */
    virtual void applyStroke(const BrushFootprint& footprint) = 0;

private:
    void append(const QPoint& point);

    QVBoxLayout* m_layout;
    QSpinBox* m_radius;
    QPolygon m_path;
    Qt::MouseButton m_button = Qt::LeftButton;
};
