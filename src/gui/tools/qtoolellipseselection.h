#pragma once

#include "qtoolrectangleselection.h"

/** Selects the ellipse inscribed in the rectangle of a drag. */
class QToolEllipseSelection final : public QToolRectangleSelection {
    Q_OBJECT

public:
    explicit QToolEllipseSelection(QWidget* parent = nullptr);

protected:
    void drawPreview(QPainter& painter) override;
    QString operationText() const override;
    void applySelection(QSciImage& item, const QRect& rect, MaskEdit::Mode mode) const override;
};
