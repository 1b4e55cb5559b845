#include "decoratedpicturewriter.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

#include "core/items/itemdecoration.h"
#include "core/items/qsciimage.h"
#include "itemrenderer.h"
#include "postscriptwriter.h"

QString DecoratedPictureWriter::suffix(Format format)
{
    switch (format) {
    case Pdf:
        return QStringLiteral(".pdf");
    case PostScript:
        return QStringLiteral(".ps");
    case Png:
        break;
    }
    return QStringLiteral(".png");
}

QByteArray DecoratedPictureWriter::write(const QSciImage& item, Format format)
{
    const DisplayDecoration decoration = ItemDecoration::of(item, ItemDecoration::figureElements(item));
    const QImage picture = ItemRenderer::base(item);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (format == Pdf) {
        // One point of the page per picture point; text and lines stay vectors. The document is complete only
        // once painter and writer are gone.
        const QRect outer = decoration.outerRect();
        {
            QPdfWriter writer(&buffer);
            writer.setCreator(QStringLiteral("Velmora"));
            writer.setTitle(item.name());
            writer.setResolution(72);
            writer.setPageSize(QPageSize(QSizeF(outer.size()), QPageSize::Point, QString(), QPageSize::ExactMatch));
            writer.setPageMargins(QMarginsF());
            QPainter painter(&writer);
            painter.translate(-outer.topLeft());
            painter.fillRect(outer, Qt::white);
            painter.drawImage(QPoint(0, 0), picture);
            decoration.paint(&painter);
        }
        return bytes;
    }
    const QImage image = decoration.render(picture);
    if (format == PostScript)
        return PostScriptWriter::fromImage(image, item.name());
    image.save(&buffer, "PNG");
    return bytes;
}
