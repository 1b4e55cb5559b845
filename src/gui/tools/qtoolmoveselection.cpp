#include "qtoolmoveselection.h"

#include <QPainter>

QToolMoveSelection::QToolMoveSelection(QWidget* parent)
    : QToolSelection(QStringLiteral("MOVE_SELECTION"), parent)
{
    finishPanel();
}

void QToolMoveSelection::beginDrag(const QPoint& point, Qt::MouseButton)
{
    QSciImage* target = item();
    if (!target)
        return;
    const int w = target->width(), h = target->height();
    m_maskImage = QImage(w, h, QImage::Format_ARGB32_Premultiplied);
    m_maskImage.fill(Qt::transparent);
    const QRgb selected = qRgba(255, 80, 0, 140);
    const uchar* mask = target->maskData();
    for (int row = 0; row < h; ++row) {
        auto* line = reinterpret_cast<QRgb*>(m_maskImage.scanLine(row));
        const qsizetype y = h - 1 - row;
        for (int x = 0; x < w; ++x) {
            if (mask[qsizetype(x) * h + y])
                line[x] = qPremultiply(selected);
        }
    }
    m_start = point;
    startDrag(point);
}

void QToolMoveSelection::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolMoveSelection::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    m_maskImage = QImage();
    const QPoint by = offset();
    const MaskEdit::Mode how = gestureMode();
    applyToItem(MaskEdit::shiftText(), QSciImage::MaskPart,
        [by, how](QSciImage& target) { MaskEdit::applyShift(target, by, how); });
}

void QToolMoveSelection::drawPreview(QPainter& painter)
{
    painter.drawImage(offset(), m_maskImage);
}
