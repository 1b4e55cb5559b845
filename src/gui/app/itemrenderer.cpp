#include "itemrenderer.h"

#include <QPainter>

#include "core/items/qsciimage.h"

QImage ItemRenderer::base(const QSciImage& item)
{
    if (item.drawZInSciPaint())
        return zThroughGradient(item);
    if (item.drawImageInSciPaint())
        return item.picture();
    QImage empty(item.width(), item.height(), QImage::Format_ARGB32);
    empty.fill(Qt::transparent);
    return empty;
}

QImage ItemRenderer::zThroughGradient(const QSciImage& item)
{
    const int w = item.width(), h = item.height();
    QImage image(w, h, QImage::Format_ARGB32);
    double low = 0, high = 0;
    item.zRange(&low, &high);
    const ColorGradient& gradient = item.colorGradient();
    const double* z = item.zData();
    uchar* bits = image.bits();
    const qsizetype bpl = image.bytesPerLine();
    // z runs down columns, the image along rows: square tiles keep both in the cache on large items.
    constexpr int tile = 64;
    for (int x0 = 0; x0 < w; x0 += tile) {
        const int x1 = qMin(w, x0 + tile);
        for (int y0 = 0; y0 < h; y0 += tile) {
            const int y1 = qMin(h, y0 + tile);
            for (int x = x0; x < x1; ++x) {
                const double* column = z + qsizetype(x) * h;
                for (int y = y0; y < y1; ++y)
                    reinterpret_cast<QRgb*>(bits + (h - 1 - y) * bpl)[x] = gradient.colorAt(column[y], low, high);
            }
        }
    }
    return image;
}

QImage ItemRenderer::maskOverlay(const QSciImage& item, QRgb color)
{
    if (item.maskSelectedCount() == 0)
        return QImage();
    const int w = item.width(), h = item.height();
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const uchar* mask = item.maskData();
    for (int x = 0; x < w; ++x) {
        const uchar* column = mask + qsizetype(x) * h;
        for (int y = 0; y < h; ++y) {
            if (column[y])
                reinterpret_cast<QRgb*>(image.scanLine(h - 1 - y))[x] = color;
        }
    }
    return image;
}

QImage ItemRenderer::objectOutlines(const QSciImage& item)
{
    QImage image;
    const int w = item.width(), h = item.height();
    for (const QSciSingleObject& object : item.objects()) {
        if (!object.visible || object.borderPixels.isEmpty())
            continue;
        if (image.isNull()) {
            image = QImage(w, h, QImage::Format_ARGB32);
            image.fill(Qt::transparent);
        }
        const QRgb color = object.borderColor.rgba();
        // Object points are item points: rows count from the bottom.
        for (const QPoint& p : object.borderPixels) {
            if (p.x() >= 0 && p.x() < w && p.y() >= 0 && p.y() < h)
                reinterpret_cast<QRgb*>(image.scanLine(h - 1 - p.y()))[p.x()] = color;
        }
    }
    return image;
}

QImage ItemRenderer::thumbnail(const QSciImage& item, int edge)
{
    QImage icon(edge, edge, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    const QImage scaled = base(item).scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&icon);
    painter.drawImage((edge - scaled.width()) / 2, (edge - scaled.height()) / 2, scaled);
    return icon;
}
