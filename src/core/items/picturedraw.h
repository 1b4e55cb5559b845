#pragma once

#include <QColor>
#include <QPolygon>
#include <QRect>
#include <QString>

class QPainter;
class QSciImage;

/**
 * Drawing on an item's picture, shared by the drawing tools and scripts. Coordinates are display
 * coordinates of the item (row 0 on top), one unit per data point. The paint functions take any painter,
 * so a tool's preview is drawn by the same code as the result. The draw functions change the picture and
 * notify; callers record the picture in the running history transaction first.
 */
class PictureDraw final {
public:
    enum class Stroke { Pencil, Paintbrush, Eraser };
    enum class Shape { Rectangle, Ellipse, RoundedRectangle };

    static QString strokeText(Stroke stroke);
    static QString shapeText(Shape shape);
    static QString fillBucketText();

    /**
     * A line through @p points: the pencil is aliased and one point wide whatever @p width says, the eraser
     * aliased and square, the paintbrush round and antialiased. A single point draws a dot.
     */
    static void paintStroke(QPainter& painter, Stroke stroke, const QPolygon& points, const QColor& color, int width);
    /** The shape in @p rect, whose corner points both belong to it; an outline lies inside the rectangle. */
    static void paintShape(
        QPainter& painter, Shape shape, const QRect& rect, const QColor& color, bool filled, int lineWidth);

    static void drawStroke(QSciImage& item, Stroke stroke, const QPolygon& points, const QColor& color, int width);
    static void drawShape(
        QSciImage& item, Shape shape, const QRect& rect, const QColor& color, bool filled, int lineWidth);
    /**
     * Paints @p color over the 4-connected region around @p seed whose colours differ from the seed's by at
     * most @p tolerance in every channel (alpha included, 0 to 255). A seed outside the picture does nothing.
     */
    static void fillBucket(QSciImage& item, const QPoint& seed, const QColor& color, int tolerance);
};
