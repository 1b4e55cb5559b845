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

    static void applyRect(QSciImage& item, const QRect& rect, Mode mode);
    /** The ellipse inscribed in @p rect. */
    static void applyEllipse(QSciImage& item, const QRect& rect, Mode mode);
    /** Points inside the closed @p polygon (odd-even rule, pixel centres). */
    static void applyPolygon(QSciImage& item, const QPolygon& polygon, Mode mode);

private:
    /** Runs @p inside over the clipped @p bounds; every other point is cleared in New mode. */
    template <typename Inside> static void apply(QSciImage& item, const QRect& bounds, Mode mode, Inside inside);
};
