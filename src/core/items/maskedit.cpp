#include "maskedit.h"

#include "qsciimage.h"

#include <QCoreApplication>
#include <QPainterPath>
#include <QVector>
#include <algorithm>
#include <cmath>

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

QString MaskEdit::polygonLinesText()
{
    return QCoreApplication::translate("MaskEdit", "Select freehand lines");
}

QString MaskEdit::magicWandText()
{
    return QCoreApplication::translate("MaskEdit", "Select by magic wand");
}

QString MaskEdit::shiftText()
{
    return QCoreApplication::translate("MaskEdit", "Move selection");
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

void MaskEdit::combine(QSciImage& item, const QVector<uchar>& region, Mode mode)
{
    uchar* mask = item.maskData();
    const uchar* in = region.constData();
    const qsizetype n = region.size();
    switch (mode) {
    case Mode::New:
        std::copy(in, in + n, mask);
        break;
    case Mode::Add:
        for (qsizetype i = 0; i < n; ++i)
            mask[i] |= in[i];
        break;
    case Mode::Subtract:
        for (qsizetype i = 0; i < n; ++i)
            mask[i] &= uchar(in[i] ^ 1);
        break;
    }
    item.notifyChanged(QSciImage::MaskPart);
}

void MaskEdit::applyMagicWand(QSciImage& item, const QPoint& seed, double tolerance, bool contiguous, Mode mode)
{
    const int w = item.width(), h = item.height();
    QVector<uchar> region(qsizetype(w) * h, 0);
    if (seed.x() >= 0 && seed.x() < w && seed.y() >= 0 && seed.y() < h) {
        const double* z = item.zData();
        const double z0 = item.z(seed.x(), h - 1 - seed.y());
        // NaN compares false, so points without a value never join.
        const auto near = [&](qsizetype i) { return std::abs(z[i] - z0) <= tolerance; };
        uchar* out = region.data();
        if (!contiguous) {
            for (qsizetype i = 0; i < region.size(); ++i)
                out[i] = near(i) ? 1 : 0;
        } else {
            QVector<qsizetype> stack;
            const qsizetype start = qsizetype(seed.x()) * h + (h - 1 - seed.y());
            if (near(start)) {
                out[start] = 1;
                stack.append(start);
            }
            const auto visit = [&](qsizetype i) {
                if (!out[i] && near(i)) {
                    out[i] = 1;
                    stack.append(i);
                }
            };
            while (!stack.isEmpty()) {
                const qsizetype i = stack.takeLast();
                const qsizetype x = i / h, y = i % h;
                if (y > 0)
                    visit(i - 1);
                if (y + 1 < h)
                    visit(i + 1);
                if (x > 0)
                    visit(i - h);
                if (x + 1 < w)
                    visit(i + h);
            }
        }
    }
    combine(item, region, mode);
}

void MaskEdit::applyShift(QSciImage& item, const QPoint& offset, Mode mode)
{
    const int w = item.width(), h = item.height();
    // Storage rows count from the bottom, so a display move down is a move to lower rows.
    const int dx = offset.x(), dy = -offset.y();
    QVector<uchar> moved(qsizetype(w) * h, 0);
    const uchar* mask = item.maskData();
    const int yFrom = std::max(0, -dy), yTo = std::min(h, h - dy);
    for (int x = std::max(0, -dx); x < std::min(w, w - dx) && yFrom < yTo; ++x) {
        const uchar* source = mask + qsizetype(x) * h;
        std::copy(source + yFrom, source + yTo, moved.data() + qsizetype(x + dx) * h + yFrom + dy);
    }
    combine(item, moved, mode);
}
