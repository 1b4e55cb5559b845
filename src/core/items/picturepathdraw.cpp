#include "picturepathdraw.h"

#include "qsciimage.h"

#include <QCoreApplication>
#include <QPainter>
#include <algorithm>

namespace {

QPointF centre(const QPoint& p)
{
    return QPointF(p.x() + 0.5, p.y() + 0.5);
}

} // namespace

QString PicturePathDraw::freehandShapeText()
{
    return QCoreApplication::translate("PicturePathDraw", "Draw freehand shape");
}

QString PicturePathDraw::freehandLinesText()
{
    return QCoreApplication::translate("PicturePathDraw", "Draw freehand lines");
}

QString PicturePathDraw::curveText()
{
    return QCoreApplication::translate("PicturePathDraw", "Draw curve");
}

QPainterPath PicturePathDraw::polygonPath(const QPolygon& points, bool closed)
{
    QPainterPath path;
    if (points.isEmpty())
        return path;
    path.moveTo(centre(points.first()));
    for (int i = 1; i < points.size(); ++i)
        path.lineTo(centre(points.at(i)));
    if (closed && points.size() > 2)
        path.closeSubpath();
    return path;
}

QPainterPath PicturePathDraw::curvePath(const QPolygon& points)
{
    QPainterPath path;
    if (points.isEmpty())
        return path;
    const int n = points.size();
    path.moveTo(centre(points.first()));
    for (int i = 0; i + 1 < n; ++i) {
        // The end points stand in for their missing outer neighbours, so the curve starts and ends straight.
        const QPointF p0 = centre(points.at(std::max(0, i - 1)));
        const QPointF p1 = centre(points.at(i));
        const QPointF p2 = centre(points.at(i + 1));
        const QPointF p3 = centre(points.at(std::min(n - 1, i + 2)));
        path.cubicTo(p1 + (p2 - p0) / 6.0, p2 - (p3 - p1) / 6.0, p2);
    }
    return path;
}

void PicturePathDraw::paintPath(
    QPainter& painter, const QPainterPath& path, const QColor& color, bool filled, int lineWidth)
{
    if (path.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    const int lw = std::max(1, lineWidth);
    if (path.elementCount() == 1) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(path.currentPosition(), lw / 2.0, lw / 2.0);
    } else if (filled) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawPath(path);
    } else {
        painter.setPen(QPen(color, lw, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
    }
    painter.restore();
}

void PicturePathDraw::drawPath(
    QSciImage& item, const QPainterPath& path, const QColor& color, bool filled, int lineWidth)
{
    {
        QPainter painter(&item.pictureRef());
        paintPath(painter, path, color, filled, lineWidth);
    }
    item.notifyChanged(QSciImage::PicturePart);
}
