#include "cziimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QMap>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <cmath>

namespace {

struct Dimension {
    QByteArray name;
    qint32 start = 0;
    qint32 size = 0;
    qint32 storedSize = 0;
};

struct Subblock {
    qint32 pixelType = 0;
    qint32 compression = 0;
    quint8 pyramid = 0;
    quint64 dataOffset = 0;
    quint64 dataSize = 0;
    QList<Dimension> dims;

    const Dimension* dim(const char* name) const
    {
        for (const Dimension& d : dims) {
            if (d.name == name)
                return &d;
        }
        return nullptr;
    }
    QString planeName() const
    {
        QStringList parts;
        for (const Dimension& d : dims) {
            if (d.name != "X" && d.name != "Y" && d.size == 1)
                parts << QString::fromLatin1(d.name) + QString::number(d.start);
        }
        return parts.join(QLatin1Char(' '));
    }
};

bool readEntry(const ByteReader& r, quint64 pos, Subblock* entry, quint64* length)
{
    qint32 count = 0;
    if (r.bytes(pos, 2) != "DV" || !r.read(pos + 28, &count) || count < 0 || count > 64
        || !r.fits(pos + 32, quint64(count), 20))
        return false;
    entry->pixelType = r.at<qint32>(pos + 2);
    entry->compression = r.at<qint32>(pos + 18);
    entry->pyramid = r.at<quint8>(pos + 22);
    for (qint32 i = 0; i < count; ++i) {
        const quint64 d = pos + 32 + 20 * quint64(i);
        entry->dims.append({ r.bytes(d, 4).replace('\0', QByteArray()).trimmed(), r.at<qint32>(d + 4),
            r.at<qint32>(d + 8), r.at<qint32>(d + 16) });
    }
    *length = 32 + 20 * quint64(count);
    return true;
}

int bytesPerPixel(qint32 pixelType)
{
    switch (pixelType) {
    case 0:
        return 1;
    case 1:
        return 2;
    case 2:
    case 12:
        return 4;
    case 3:
        return 3;
    case 13:
        return 8;
    case 9:
        return 4;
    default:
        return 0;
    }
}

/** Values of interest from the XML metadata. */
struct Metadata {
    double pixelX = 0, pixelY = 0;
    QList<QPair<QString, QString>> entries;
};

Metadata parseMetadata(const QByteArray& xml)
{
    Metadata m;
    QXmlStreamReader reader(xml);
    QString distanceId;
    QStringList path;
    static const QStringList kept { QStringLiteral("AcquisitionDateAndTime"), QStringLiteral("ObjectiveName"),
        QStringLiteral("NominalMagnification"), QStringLiteral("ExposureTime"), QStringLiteral("PixelType"),
        QStringLiteral("CameraName") };
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            path << reader.name().toString();
            if (reader.name() == QLatin1String("Distance"))
                distanceId = reader.attributes().value(QStringLiteral("Id")).toString();
            if (reader.name() == QLatin1String("Channel") && reader.attributes().hasAttribute(QStringLiteral("Name"))
                && path.contains(QStringLiteral("Dimensions")))
                m.entries.append(
                    { QStringLiteral("Channel name"), reader.attributes().value(QStringLiteral("Name")).toString() });
        } else if (reader.isEndElement()) {
            if (!path.isEmpty())
                path.removeLast();
        } else if (reader.isCharacters() && !reader.isWhitespace() && !path.isEmpty()) {
            const QString& element = path.last();
            if (element == QStringLiteral("Value") && path.size() >= 2
                && path.at(path.size() - 2) == QStringLiteral("Distance")) {
                if (distanceId == QStringLiteral("X"))
                    m.pixelX = ImportSupport::number(reader.text().toString());
                else if (distanceId == QStringLiteral("Y"))
                    m.pixelY = ImportSupport::number(reader.text().toString());
            } else if (kept.contains(element) && m.entries.size() < 64) {
                bool seen = false;
                for (const auto& e : qAsConst(m.entries))
                    seen = seen || e.first == element;
                if (!seen)
                    m.entries.append({ element, reader.text().toString().trimmed() });
            }
        }
    }
    return m;
}

} // namespace

bool CziImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("ZISRAWFILE");
}

bool CziImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    *message = ImportSupport::corrupted();
    qint64 directoryPos = 0, metadataPos = 0;
    qint32 filePart = 0;
    if (!data.startsWith("ZISRAWFILE") || !r.read(80, &filePart) || !r.read(84, &directoryPos)
        || !r.read(92, &metadataPos))
        return false;
    if (filePart > 0) {
        *message = QStringLiteral("multi-file sets are not supported");
        return false;
    }
    if (directoryPos < 0 || r.bytes(quint64(directoryPos), 15) != "ZISRAWDIRECTORY")
        return false;

    Metadata meta;
    qint32 xmlSize = 0;
    if (metadataPos > 0 && r.bytes(quint64(metadataPos), 14) == "ZISRAWMETADATA"
        && r.read(quint64(metadataPos) + 32, &xmlSize) && xmlSize > 0
        && r.fits(quint64(metadataPos) + 288, quint64(xmlSize)))
        meta = parseMetadata(r.bytes(quint64(metadataPos) + 288, quint64(xmlSize)));

    qint32 entryCount = 0;
    const quint64 dirData = quint64(directoryPos) + 32;
    if (!r.read(dirData, &entryCount) || entryCount < 0 || !r.fits(dirData + 128, quint64(entryCount), 32))
        return false;
    QList<Subblock> planes;
    int skipped = 0;
    quint64 pos = dirData + 128;
    for (qint32 i = 0; i < entryCount; ++i) {
        Subblock entry;
        quint64 length = 0;
        qint64 segment = 0;
        if (!readEntry(r, pos, &entry, &length) || !r.read(pos + 6, &segment))
            return false;
        pos += length;
        const Dimension* x = entry.dim("X");
        const Dimension* y = entry.dim("Y");
        if (entry.pyramid != 0 || !x || !y || x->size != x->storedSize || y->size != y->storedSize)
            continue;
        const int bpp = bytesPerPixel(entry.pixelType);
        if (entry.compression != 0 || bpp == 0) {
            ++skipped;
            continue;
        }
        // The subblock's own header: metadata size, attachment size, data size, then a copy of the entry.
        qint32 metaSize = 0;
        qint64 dataSize = 0;
        Subblock copy;
        quint64 copyLength = 0;
        const quint64 s = quint64(segment) + 32;
        if (segment < 0 || r.bytes(quint64(segment), 14) != "ZISRAWSUBBLOCK" || !r.read(s, &metaSize)
            || !r.read(s + 8, &dataSize) || !readEntry(r, s + 16, &copy, &copyLength) || metaSize < 0 || dataSize < 0)
            return false;
        entry.dataOffset = s + qMax<quint64>(256, 16 + copyLength) + quint64(metaSize);
        entry.dataSize = quint64(dataSize);
        if (!r.fits(entry.dataOffset, entry.dataSize)
            || !ImportSupport::rasterFits(x->size, y->size, quint64(bpp), entry.dataSize, message))
            return false;
        planes.append(entry);
    }
    if (skipped > 0)
        file->skipped.append(QStringLiteral("%1 compressed planes").arg(skipped));

    for (const Subblock& plane : qAsConst(planes)) {
        const Dimension* x = plane.dim("X");
        const Dimension* y = plane.dim("Y");
        ImportedChannel channel;
        channel.width = x->size;
        channel.height = y->size;
        const int bpp = bytesPerPixel(plane.pixelType);
        const quint64 base = plane.dataOffset;
        const bool colour = plane.pixelType == 3 || plane.pixelType == 9;
        if (colour) {
            QImage picture(channel.width, channel.height, QImage::Format_ARGB32);
            for (int row = 0; row < channel.height; ++row) {
                QRgb* line = reinterpret_cast<QRgb*>(picture.scanLine(row));
                const quint64 rowStart = base + quint64(row) * quint64(channel.width) * quint64(bpp);
                for (int col = 0; col < channel.width; ++col) {
                    const quint64 p = rowStart + quint64(col) * quint64(bpp);
                    line[col] = qRgb(r.at<quint8>(p + 2), r.at<quint8>(p + 1), r.at<quint8>(p));
                }
            }
            channel.picture = picture;
            ImportSupport::placeRaster(channel, true, false, [&](qsizetype i) {
                const quint64 p = base + quint64(i) * quint64(bpp);
                return 0.299 * r.at<quint8>(p + 2) + 0.587 * r.at<quint8>(p + 1) + 0.114 * r.at<quint8>(p);
            });
        } else {
            ImportSupport::placeRaster(channel, true, false, [&](qsizetype i) -> double {
                const quint64 p = base + quint64(i) * quint64(bpp);
                switch (plane.pixelType) {
                case 0:
                    return r.at<quint8>(p);
                case 1:
                    return r.at<quint16>(p);
                case 2:
                    return r.at<float>(p);
                case 12:
                    return r.at<qint32>(p);
                default:
                    return r.at<double>(p);
                }
            });
        }
        const double px = meta.pixelX > 0 ? meta.pixelX : 0;
        const double py = meta.pixelY > 0 ? meta.pixelY : px;
        const bool calibrated = px > 0 && std::isfinite(px) && std::isfinite(py);
        ImportSupport::setGeometry(channel, calibrated ? px * channel.width : 0, calibrated ? py * channel.height : 0,
            calibrated ? QStringLiteral("m") : QString(), calibrated ? px * x->start : 0,
            calibrated ? py * y->start : 0);
        const QString planeName = plane.planeName();
        channel.title = (colour ? QStringLiteral("Colour") : QStringLiteral("Intensity"))
            + (planeName.isEmpty() ? QString() : QLatin1Char(' ') + planeName);
        channel.header = { { QStringLiteral("Channel"), channel.title },
            { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(channel.width).arg(channel.height) },
            { QStringLiteral("Pixel size"), ImportSupport::withUnit(px, QStringLiteral("m")) } };
        channel.header += meta.entries;
        file->channels.append(channel);
    }
    message->clear();
    return true;
}
