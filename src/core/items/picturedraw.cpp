#include "picturedraw.h"

#include "qsciimage.h"

#include <QCoreApplication>
#include <QPainter>
#include <QVector>
#include <algorithm>
#include <cstdlib>

QString PictureDraw::strokeText(Stroke stroke)
{
    switch (stroke) {
    case Stroke::Pencil:
        return QCoreApplication::translate("PictureDraw", "Pencil");
    case Stroke::Paintbrush:
        return QCoreApplication::translate("PictureDraw", "Paintbrush");
    case Stroke::Eraser:
        break;
    }
    return QCoreApplication::translate("PictureDraw", "Eraser");
}

QString PictureDraw::shapeText(Shape shape)
{
    switch (shape) {
    case Shape::Rectangle:
        return QCoreApplication::translate("PictureDraw", "Draw rectangle");
    case Shape::Ellipse:
        return QCoreApplication::translate("PictureDraw", "Draw ellipse");
    case Shape::RoundedRectangle:
        break;
    }
    return QCoreApplication::translate("PictureDraw", "Draw rounded rectangle");
}

QString PictureDraw::fillBucketText()
{
    return QCoreApplication::translate("PictureDraw", "Fill bucket");
}

void PictureDraw::paintStroke(QPainter& painter, Stroke stroke, const QPolygon& points, const QColor& color, int width)
{
    if (points.isEmpty())
        return;
    painter.save();
    if (stroke == Stroke::Pencil) {
        // Integer coordinates with an aliased one-wide pen hit exactly the points' pixels.
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setPen(QPen(color, 1, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        if (points.size() == 1)
            painter.drawPoint(points.first());
        else
            painter.drawPolyline(points);
    } else {
        const bool brush = stroke == Stroke::Paintbrush;
        painter.setRenderHint(QPainter::Antialiasing, brush);
        painter.setCompositionMode(brush ? QPainter::CompositionMode_SourceOver : QPainter::CompositionMode_Source);
        painter.setPen(QPen(color, std::max(1, width), Qt::SolidLine, brush ? Qt::RoundCap : Qt::SquareCap,
            brush ? Qt::RoundJoin : Qt::MiterJoin));
        QPolygonF centres;
        centres.reserve(points.size());
        for (const QPoint& p : points)
            centres.append(QPointF(p.x() + 0.5, p.y() + 0.5));
        if (centres.size() == 1)
            painter.drawPoint(centres.first());
        else
            painter.drawPolyline(centres);
    }
    painter.restore();
}

void PictureDraw::paintShape(
    QPainter& painter, Shape shape, const QRect& rect, const QColor& color, bool filled, int lineWidth)
{
    const QRect r = rect.normalized();
    if (r.isEmpty())
        return;
    const int lw = std::max(1, lineWidth);
    painter.save();
    if (shape == Shape::Rectangle) {
        // Strips rather than a wide pen: the outline then covers whole points, exactly inside the rectangle.
        painter.setRenderHint(QPainter::Antialiasing, false);
        if (filled || 2 * lw >= r.width() || 2 * lw >= r.height()) {
            painter.fillRect(r, color);
        } else {
            painter.fillRect(QRect(r.left(), r.top(), r.width(), lw), color);
            painter.fillRect(QRect(r.left(), r.bottom() - lw + 1, r.width(), lw), color);
            painter.fillRect(QRect(r.left(), r.top() + lw, lw, r.height() - 2 * lw), color);
            painter.fillRect(QRect(r.right() - lw + 1, r.top() + lw, lw, r.height() - 2 * lw), color);
        }
    } else {
        painter.setRenderHint(QPainter::Antialiasing, true);
        QRectF area(r);
        if (filled) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(color);
        } else {
            const double half = std::min({ lw / 2.0, area.width() / 2.0, area.height() / 2.0 });
            area.adjust(half, half, -half, -half);
            painter.setPen(QPen(color, lw, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
            painter.setBrush(Qt::NoBrush);
        }
        if (shape == Shape::Ellipse)
            painter.drawEllipse(area);
        else
            painter.drawRoundedRect(area, 25, 25, Qt::RelativeSize);
    }
    painter.restore();
}

void PictureDraw::drawStroke(QSciImage& item, Stroke stroke, const QPolygon& points, const QColor& color, int width)
{
    {
        QPainter painter(&item.pictureRef());
        paintStroke(painter, stroke, points, color, width);
    }
    item.notifyChanged(QSciImage::PicturePart);
}

void PictureDraw::drawShape(
    QSciImage& item, Shape shape, const QRect& rect, const QColor& color, bool filled, int lineWidth)
{
    {
        QPainter painter(&item.pictureRef());
        paintShape(painter, shape, rect, color, filled, lineWidth);
    }
    item.notifyChanged(QSciImage::PicturePart);
}

void PictureDraw::fillBucket(QSciImage& item, const QPoint& seed, const QColor& color, int tolerance)
{
    QImage& picture = item.pictureRef();
    const int w = picture.width(), h = picture.height();
    if (seed.x() < 0 || seed.y() < 0 || seed.x() >= w || seed.y() >= h)
        return;
    const auto pixels = reinterpret_cast<QRgb*>(picture.bits());
    const qsizetype stride = picture.bytesPerLine() / 4;
    const QRgb origin = pixels[seed.y() * stride + seed.x()];
    const QRgb fill = color.rgba();
    const auto near = [&](QRgb c) {
        return std::abs(qRed(c) - qRed(origin)) <= tolerance && std::abs(qGreen(c) - qGreen(origin)) <= tolerance
            && std::abs(qBlue(c) - qBlue(origin)) <= tolerance && std::abs(qAlpha(c) - qAlpha(origin)) <= tolerance;
    };
    // A visited map, since the fill colour may itself lie within the tolerance.
    QVector<uchar> seen(qsizetype(w) * h, 0);
    QVector<QPoint> stack { seed };
    seen[qsizetype(seed.y()) * w + seed.x()] = 1;
    while (!stack.isEmpty()) {
        const QPoint p = stack.takeLast();
        pixels[p.y() * stride + p.x()] = fill;
        const QPoint next[]
            = { { p.x() - 1, p.y() }, { p.x() + 1, p.y() }, { p.x(), p.y() - 1 }, { p.x(), p.y() + 1 } };
        for (const QPoint& n : next) {
            if (n.x() < 0 || n.y() < 0 || n.x() >= w || n.y() >= h)
                continue;
            uchar& s = seen[qsizetype(n.y()) * w + n.x()];
            if (!s && near(pixels[n.y() * stride + n.x()])) {
                s = 1;
                stack.append(n);
            }
        }
    }
    item.notifyChanged(QSciImage::PicturePart);
}
