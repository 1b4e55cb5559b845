#pragma once

#include "qtool.h"

#include <QPointer>

class QLabel;
class QPushButton;

/**
 * Aligns items by a point of interest: the user marks the same feature on several items (a drag places
 * the mark at its release, a new mark on an item replaces its old one); "Align items" then moves every
 * item so its mark lies on the first item's mark, in one history step.
 */
class QToolAlignByPoi final : public QTool {
    Q_OBJECT

public:
    explicit QToolAlignByPoi(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    int markCount() const;
    void alignItems();
    void clearMarks();

protected:
    void drawPreview(QPainter& painter) override;

private:
    struct Mark {
        QPointer<QSciImage> item;
        QPoint point;
    };
    void refresh();

    QList<Mark> m_marks;
    QPoint m_cursor;
    QLabel* m_status;
    QPushButton* m_align;
};
