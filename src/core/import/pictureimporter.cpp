#include "pictureimporter.h"

#include "core/import/importsupport.h"

#include <QBuffer>
#include <QImageReader>

QStringList PictureImporter::suffixes() const
{
    return { QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("tif"),
        QStringLiteral("tiff"), QStringLiteral("bmp") };
}

bool PictureImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("\x89PNG") || head.startsWith("\xff\xd8\xff") || head.startsWith("BM")
        || head.startsWith(QByteArray("II\x2a\x00", 4)) || head.startsWith(QByteArray("MM\x00\x2a", 4));
}

bool PictureImporter::read(const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const
{
    QByteArray bytes = data;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    // A forged header can claim a picture of gigapixels; check before decoding.
    const QSize size = reader.size();
    if (size.isValid() && !ImportSupport::rasterFits(size.width(), size.height(), 1, quint64(1) << 31, message))
        return false;
    QImage image;
    if (!reader.read(&image) || image.isNull()) {
        *message = reader.errorString();
        return false;
    }
    ImportedChannel channel;
    channel.width = image.width();
    channel.height = image.height();
    channel.picture = image.convertToFormat(QImage::Format_ARGB32);
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    channel.z.resize(qsizetype(channel.width) * channel.height);
    for (int row = 0; row < channel.height; ++row) {
        const uchar* line = grey.constScanLine(row);
        const int y = channel.height - 1 - row;
        for (int x = 0; x < channel.width; ++x)
            channel.z[qsizetype(x) * channel.height + y] = line[x];
    }
    channel.title = QStringLiteral("picture");
    ImportSupport::setGeometry(channel, channel.width, channel.height, QString());
    channel.header = { { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(channel.width).arg(channel.height) } };
    Q_UNUSED(path)
    file->channels.append(channel);
    return true;
}
