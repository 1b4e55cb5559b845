#pragma once

#include "qtool.h"

#include "core/plots/lineprofile.h"

#include <QPointer>

class FormPlot;
class QLabel;
class QSpinBox;

/**
 * Draws a line over an item and shows z along it in a 2D plot window, in the item's physical units; the line
 * may be thick, its samples then averaged across its width. Changes nothing in the item.
 */
class QToolLineProfile final : public QTool {
    Q_OBJECT

public:
    explicit QToolLineProfile(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    const LineProfile& lastProfile() const { return m_profile; }
    /** The window the profiles are shown in; made on the first profile and reused. */
    FormPlot* plotWindow() const;

protected:
    void drawPreview(QPainter& painter) override;

private:
    void showProfile();

    QPoint m_start;
    QPoint m_end;
    LineProfile m_profile;
    QSpinBox* m_width;
    QLabel* m_result;
    QPointer<FormPlot> m_window;
};
