#pragma once

#include <QPolygon>
#include <QRect>
#include <QString>

class QSciImage;

/**
 * Drawing into an item's mask, shared by the selection tools, velmora-cli and scripts. Shapes are given
 * in display coordinates of the item (row 0 on top) and clipped to it.
 */
class MaskEdit final {
public:
    enum class Mode { New, Add, Subtract };

    static QString rectangleText();
    static QString ellipseText();
    static QString polygonText();
    static QString polygonLinesText();
    static QString magicWandText();
    static QString shiftText();

    static void applyRect(QSciImage& item, const QRect& rect, Mode mode);
    /** The ellipse inscribed in @p rect. */
    static void applyEllipse(QSciImage& item, const QRect& rect, Mode mode);
    /** Points inside the closed @p polygon (odd-even rule, pixel centres). */
    static void applyPolygon(QSciImage& item, const QPolygon& polygon, Mode mode);
    /**
     * Points whose z lies within @p tolerance of the z at @p seed: the 4-connected region around the seed
     * when @p contiguous, else every such point of the item. A seed outside the item selects nothing.
     */
    static void applyMagicWand(QSciImage& item, const QPoint& seed, double tolerance, bool contiguous, Mode mode);
    /**
     * Moves the selection by @p offset (display terms: positive y moves down); points pushed off the item are
     * lost. New: the moved selection replaces the old one; Add: both; Subtract: the old one minus the moved one.
     */
    static void applyShift(QSciImage& item, const QPoint& offset, Mode mode);

private:
    /** Runs @p inside over the clipped @p bounds; every other point is cleared in New mode. */
    template <typename Inside> static void apply(QSciImage& item, const QRect& bounds, Mode mode, Inside inside);
    /** Merges @p region (W*H bytes, storage order) into the mask by @p mode. */
    static void combine(QSciImage& item, const QVector<uchar>& region, Mode mode);
};
