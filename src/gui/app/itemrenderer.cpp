#include "itemrenderer.h"

#include <QPainter>

#include "core/items/qsciimage.h"

QImage ItemRenderer::base(const QSciImage& item)
{
    if (item.drawZInSciPaint())
        return item.zPicture();
    if (item.drawImageInSciPaint())
        return item.picture();
    QImage empty(item.width(), item.height(), QImage::Format_ARGB32);
    empty.fill(Qt::transparent);
    return empty;
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
