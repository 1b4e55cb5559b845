#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPolygon>
#include <QString>

class QPainter;
class QSciImage;

/**
 * Paths drawn on an item's picture: freehand outlines, polygons of straight edges and smooth curves through
 * clicked points. Points are display coordinates of the item (row 0 on top); a path runs through the points'
 * centres. As with PictureDraw, a tool's preview and the result come from the same paint code, and callers
 * record the picture in the running history transaction before drawing.
 */
class PicturePathDraw final {
public:
    static QString freehandShapeText();
    static QString freehandLinesText();
    static QString curveText();

    /** Straight edges through the points' centres, closed back to the first one when @p closed. */
    static QPainterPath polygonPath(const QPolygon& points, bool closed);
    /**
     * A smooth curve through every point (a Catmull-Rom spline in cubic pieces), so a click puts a point on
     * it; two points make a line.
     */
    static QPainterPath curvePath(const QPolygon& points);

    /** The path filled, or its outline @p lineWidth points wide; a single point makes a dot. */
    static void paintPath(QPainter& painter, const QPainterPath& path, const QColor& color, bool filled, int lineWidth);
    static void drawPath(QSciImage& item, const QPainterPath& path, const QColor& color, bool filled, int lineWidth);
};
