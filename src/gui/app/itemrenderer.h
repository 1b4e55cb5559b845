#pragma once

#include <QImage>

class QPainter;
class QSciImage;

/**
 * Turns an item into the pictures a view shows: the base picture (the item's picture, or its z-matrix
 * through its own gradient when it draws z), the mask as a translucent overlay and the outlines of its
 * visible objects. Pure functions of the item; callers cache the results and re-render on contentChanged.
 */
class ItemRenderer final {
public:
    /** What the view draws underneath everything else; a transparent image when the item draws neither. */
    static QImage base(const QSciImage& item);
    /** Selected mask points in @p color, everything else transparent; a null image when nothing is selected. */
    static QImage maskOverlay(const QSciImage& item, QRgb color);
    /**
     * The visible display elements of the visible objects (fill, skeleton, largest branch, border, in that order
     * upwards) in their colours; a null image when nothing is drawn.
     */
    static QImage objectOutlines(const QSciImage& item);
    /** The numbers of the visible objects with visible labels, in item display coordinates. */
    static void paintObjectLabels(QPainter* painter, const QSciImage& item);
    /** A square icon-sized copy of base(), kept in proportion, on a transparent square. */
    static QImage thumbnail(const QSciImage& item, int edge);
};
