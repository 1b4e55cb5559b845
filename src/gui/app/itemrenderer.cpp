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
    // Object points are item points: rows count from the bottom.
    const auto paint = [&](const QVector<QPoint>& points, QRgb color) {
        if (image.isNull()) {
            image = QImage(w, h, QImage::Format_ARGB32);
            image.fill(Qt::transparent);
        }
        for (const QPoint& p : points) {
            if (p.x() < 0 || p.x() >= w || p.y() < 0 || p.y() >= h)
                continue;
            reinterpret_cast<QRgb*>(image.scanLine(h - 1 - p.y()))[p.x()] = color;
        }
    };
    for (const QSciSingleObject& object : item.objects()) {
        if (!object.visible)
            continue;
        if (object.fillVisible)
            paint(object.fillPixels, object.fillColor.rgba());
        if (object.skeletonVisible)
            paint(object.skeletonPixels, object.skeletonColor.rgba());
        if (object.skeletonLargestBranchVisible)
            paint(object.skeletonLargestBranch, object.skeletonLargestBranchColor.rgba());
        // A record that chose no element at all still shows where it is.
        const bool anyElement = object.fillVisible || object.skeletonVisible || object.skeletonLargestBranchVisible;
        if (object.borderVisible || !anyElement)
            paint(object.borderPixels, object.borderColor.rgba());
    }
    return image;
}

void ItemRenderer::paintObjectLabels(QPainter* painter, const QSciImage& item)
{
    const int h = item.height();
    for (int index = 0; index < item.objects().size(); ++index) {
        const QSciSingleObject& object = item.objects().at(index);
        if (!object.visible || !object.labelVisible || object.fillPixels.isEmpty())
            continue;
        const QRect box = object.boundingBox;
        // The middle of the bounding box, in display terms (row 0 on top).
        const QPointF centre((box.left() + box.right() + 1) / 2.0, h - (box.top() + box.bottom() + 1) / 2.0);
        QFont font = painter->font();
        font.setPixelSize(qMax(1, object.lableSize));
        painter->setFont(font);
        const QString text = QString::number(object.numberAt(index));
        const QRectF rect(centre.x() - 200, centre.y() - 100, 400, 200);
        // A dark halo keeps the number readable on any colour.
        painter->setPen(QColor(0, 0, 0, 160));
        for (const QPointF& d : { QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1) })
            painter->drawText(rect.translated(d * 0.06 * object.lableSize), Qt::AlignCenter, text);
        painter->setPen(object.labelColor);
        painter->drawText(rect, Qt::AlignCenter, text);
    }
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
