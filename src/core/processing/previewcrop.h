#pragma once

#include "core/display/colorgradient.h"

#include <QImage>
#include <QRect>
#include <QVector>

class ProgressSink;
class QSciEffect;
class QSciImage;

/**
 * A small piece of an item for the live preview of an effect: the middle of the item, at most `side` points
 * square, with a margin around it so the piece's own edges stay out of sight. Taken on the GUI thread, computed
 * and rendered on any thread.
 */
class PreviewCrop final {
public:
    PreviewCrop() = default;
    /** Copies the piece of @p item to show, @p side points square at most. */
    PreviewCrop(const QSciImage& item, int side);

    bool isEmpty() const { return m_shown.isEmpty(); }
    /** The item point under pixel @p pixel of the pictures (row 0 on top); x column, y row from the bottom. */
    QPoint itemPoint(const QPoint& pixel) const
    {
        return QPoint(m_origin.x() + m_shown.left() + pixel.x(), m_origin.y() + m_shown.bottom() - pixel.y());
    }
    /** The piece as it is, through the item's gradient over its own range. */
    QImage original() const;
    /**
     * The piece after @p effect, through the item's gradient over the result's range; a null image when
     * @p progress asked to stop.
     */
    QImage processed(const QSciEffect& effect, ProgressSink* progress = nullptr) const;

private:
    QImage render(const QVector<double>& z) const;

    QVector<double> m_z;
    QVector<uchar> m_mask;
    int m_width = 0;
    int m_height = 0;
    QRect m_shown; // inside the piece, x column, y row from the bottom
    QPoint m_origin; // the piece's first point in the item
    ColorGradient m_gradient;
};
