#include "maskedit.h"

#include "qsciimage.h"

#include <QCoreApplication>
#include <QPainterPath>
#include <algorithm>

QString MaskEdit::rectangleText()
{
    return QCoreApplication::translate("MaskEdit", "Select rectangle");
}

QString MaskEdit::ellipseText()
{
    return QCoreApplication::translate("MaskEdit", "Select ellipse");
}

QString MaskEdit::polygonText()
{
    return QCoreApplication::translate("MaskEdit", "Select freehand");
}

template <typename Inside> void MaskEdit::apply(QSciImage& item, const QRect& bounds, Mode mode, Inside inside)
{
    const int w = item.width(), h = item.height();
    uchar* mask = item.maskData();
    if (mode == Mode::New)
        std::fill(mask, mask + qsizetype(w) * h, uchar(0));
    const QRect clipped = bounds.intersected(QRect(0, 0, w, h));
    const uchar value = mode == Mode::Subtract ? 0 : 1;
    for (int x = clipped.left(); x <= clipped.right(); ++x) {
        uchar* column = mask + qsizetype(x) * h;
        for (int row = clipped.top(); row <= clipped.bottom(); ++row) {
            if (inside(x, row))
                column[h - 1 - row] = value;
        }
    }
    item.notifyChanged(QSciImage::MaskPart);
}

void MaskEdit::applyRect(QSciImage& item, const QRect& rect, Mode mode)
{
    apply(item, rect.normalized(), mode, [](int, int) { return true; });
}

void MaskEdit::applyEllipse(QSciImage& item, const QRect& rect, Mode mode)
{
    const QRect r = rect.normalized();
    const double cx = r.left() + r.width() / 2.0, cy = r.top() + r.height() / 2.0;
    const double rx = r.width() / 2.0, ry = r.height() / 2.0;
    apply(item, r, mode, [=](int x, int row) {
        const double dx = (x + 0.5 - cx) / rx, dy = (row + 0.5 - cy) / ry;
        return dx * dx + dy * dy <= 1.0;
    });
}

void MaskEdit::applyPolygon(QSciImage& item, const QPolygon& polygon, Mode mode)
{
    if (polygon.size() < 3) {
        if (mode == Mode::New)
            item.clearMask();
        return;
    }
    QPainterPath path;
    path.addPolygon(QPolygonF(polygon));
    path.closeSubpath();
    path.setFillRule(Qt::OddEvenFill);
    apply(item, polygon.boundingRect(), mode,
        [&path](int x, int row) { return path.contains(QPointF(x + 0.5, row + 0.5)); });
}
