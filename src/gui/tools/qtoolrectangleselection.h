#pragma once

#include "qtoolselection.h"

/** Selects the rectangle spanned by a drag: the model of every drag tool. */
class QToolRectangleSelection : public QToolSelection {
    Q_OBJECT

public:
    explicit QToolRectangleSelection(QWidget* parent = nullptr);

    void beginDrag(const QPoint& point, Qt::MouseButton button) override;
    void updateDrag(const QPoint& point) override;
    void endDrag(const QPoint& point, Qt::MouseButton button) override;

    /** The rectangle of the last stored points, corners inclusive. */
    QRect selectionRect() const { return dragRect(m_start, m_end); }

protected:
    QToolRectangleSelection(const QString& identifier, QWidget* parent);
    bool usesSelectionMethod() const override { return true; }
    void drawPreview(QPainter& painter) override;
    virtual QString operationText() const;
    virtual void applySelection(QSciImage& item, const QRect& rect, MaskEdit::Mode mode) const;

private:
    QPoint m_start;
    QPoint m_end;
};
