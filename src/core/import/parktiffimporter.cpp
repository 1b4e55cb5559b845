#include "parktiffimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QMap>
#include <cmath>

namespace {

constexpr quint16 TagMagic = 50432, TagVersion = 50433, TagData = 50434, TagHeader = 50435, TagComment = 50436;
constexpr quint32 ParkMagic = 0x0E031301;

struct TiffEntry {
    quint16 type = 0;
    quint32 count = 0;
    quint64 valueOffset = 0; ///< where the value is: inside the entry when it fits in 4 bytes
};

quint64 typeSize(quint16 type)
{
    switch (type) {
    case 1:
    case 2:
    case 6:
    case 7:
        return 1;
    case 3:
    case 8:
        return 2;
    case 4:
    case 9:
    case 11:
        return 4;
    case 5:
    case 10:
    case 12:
        return 8;
    default:
        return 0;
    }
}

/** The entries of the first directory, each value checked to lie in the file. */
bool readFirstDirectory(const ByteReader& r, QMap<quint16, TiffEntry>* entries)
{
    quint32 ifd = 0;
    quint16 count = 0;
    if (!r.read(4, &ifd) || !r.read(ifd, &count) || !r.fits(quint64(ifd) + 2, count, 12))
        return false;
    for (quint16 i = 0; i < count; ++i) {
        const quint64 e = quint64(ifd) + 2 + 12 * quint64(i);
        TiffEntry entry { r.at<quint16>(e + 2), r.at<quint32>(e + 4), e + 8 };
        const quint64 size = typeSize(entry.type);
        if (size == 0)
            continue;
        if (quint64(entry.count) * size > 4)
            entry.valueOffset = r.at<quint32>(e + 8);
        if (!r.fits(entry.valueOffset, entry.count, size))
            return false;
        entries->insert(r.at<quint16>(e), entry);
    }
    return true;
}

} // namespace

bool ParkTiffImporter::recognises(const QByteArray& head, const QString&) const
{
    if (!head.startsWith(QByteArray("II\x2a\x00", 4)))
        return false;
    // The directory may lie beyond the head; recognising by the magic tag needs it, so look when it is inside.
    const ByteReader r(head);
    QMap<quint16, TiffEntry> entries;
    if (!readFirstDirectory(r, &entries) || !entries.contains(TagMagic))
        return false;
    const TiffEntry& magic = entries.value(TagMagic);
    return magic.type == 4 && r.at<quint32>(magic.valueOffset) == ParkMagic;
}

bool ParkTiffImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    *message = ImportSupport::corrupted();
    QMap<quint16, TiffEntry> entries;
    if (!data.startsWith(QByteArray("II\x2a\x00", 4)) || !readFirstDirectory(r, &entries))
        return false;
    if (!entries.contains(TagMagic) || r.at<quint32>(entries.value(TagMagic).valueOffset) != ParkMagic
        || !entries.contains(TagData) || !entries.contains(TagHeader))
        return false;
    const quint32 version = entries.contains(TagVersion) ? r.at<quint32>(entries.value(TagVersion).valueOffset) : 0;
    const TiffEntry header = entries.value(TagHeader);
    const TiffEntry values = entries.value(TagData);
    const bool v2 = version == 0x01000002;
    if (header.count < (v2 ? 580u : 356u))
        return false;
    const quint64 h = header.valueOffset;
    const quint32 imageType = r.at<quint32>(h);
    if (imageType != 0) {
        file->skipped.append(imageType == 1 ? QStringLiteral("line profile") : QStringLiteral("spectroscopy data"));
        message->clear();
        return true;
    }
    QString source, mode, setpointUnit, zUnitText;
    (void)r.utf16(h + 4, 32, &source);
    (void)r.utf16(h + 68, 8, &mode);
    (void)r.utf16(h + 188, 8, &setpointUnit);
    (void)r.utf16(h + 244, 8, &zUnitText);
    const qint32 xres = r.at<qint32>(h + 100), yres = r.at<qint32>(h + 104);
    const bool forward = r.at<quint32>(h + 128) != 0;
    const double sizeX = r.at<double>(h + 140) * 1e-6, sizeY = r.at<double>(h + 148) * 1e-6;
    const double offsetX = r.at<double>(h + 156) * 1e-6, offsetY = r.at<double>(h + 164) * 1e-6;
    const double gain = r.at<double>(h + 220);
    double zScale = r.at<double>(h + 228);
    if (zScale == 0)
        zScale = 1;
    const double zOffset = r.at<double>(h + 236);
    const quint32 dataType = v2 ? r.at<quint32>(h + 348) : 0;
    const quint64 valueSize = dataType == 2 || dataType == 1 ? 4 : 2;
    if (dataType > 2 || !ImportSupport::rasterFits(xres, yres, valueSize, values.count, message))
        return false;
    double unitFactor = 1;
    const QString zUnit = ImportSupport::baseUnit(zUnitText, &unitFactor);
    const double scale = gain * zScale * unitFactor;
    const double add = gain * zOffset * unitFactor;

    ImportedChannel channel;
    channel.width = xres;
    channel.height = yres;
    const QString direction = forward ? QStringLiteral("forward") : QStringLiteral("backward");
    channel.title = source + QLatin1Char(' ') + direction;
    channel.sciValues.zUnit = zUnit;
    const quint64 base = values.valueOffset;
    if (dataType == 2)
        ImportSupport::placeRaster(
            channel, false, false, [&](qsizetype i) { return r.at<float>(base + 4 * quint64(i)) * scale + add; });
    else if (dataType == 1)
        ImportSupport::placeRaster(
            channel, false, false, [&](qsizetype i) { return r.at<qint32>(base + 4 * quint64(i)) * scale + add; });
    else
        ImportSupport::placeRaster(
            channel, false, false, [&](qsizetype i) { return r.at<qint16>(base + 2 * quint64(i)) * scale + add; });
    ImportSupport::setGeometry(channel, sizeX, sizeY, QStringLiteral("m"), offsetX, offsetY);
    QString comment;
    if (entries.contains(TagComment))
        comment = QString::fromLatin1(r.bytes(entries.value(TagComment).valueOffset, entries.value(TagComment).count))
                      .section(QLatin1Char('\0'), 0, 0);
    channel.header = { { QStringLiteral("Channel"), source }, { QStringLiteral("Direction"), direction },
        { QStringLiteral("Scan direction"), r.at<quint32>(h + 132) ? QStringLiteral("up") : QStringLiteral("down") },
        { QStringLiteral("Bias"), ImportSupport::withUnit(r.at<double>(h + 212), QStringLiteral("V")) },
        { QStringLiteral("Setpoint"), ImportSupport::withUnit(r.at<double>(h + 180), setpointUnit) },
        { QStringLiteral("Scan size"),
            ImportSupport::withUnit(sizeX, QStringLiteral("m")) + QStringLiteral(" x ")
                + ImportSupport::withUnit(sizeY, QStringLiteral("m")) },
        { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(xres).arg(yres) },
        { QStringLiteral("Scan angle"), ImportSupport::withUnit(r.at<double>(h + 108), QStringLiteral("deg")) },
        { QStringLiteral("Comment"), comment }, { QStringLiteral("Image mode"), mode },
        { QStringLiteral("Scan rate"), ImportSupport::withUnit(r.at<double>(h + 172), QStringLiteral("Hz")) },
        { QStringLiteral("Tip bias"), ImportSupport::withUnit(r.at<double>(h + 204), QStringLiteral("V")) },
        { QStringLiteral("Data gain"), QString::number(gain) },
        { QStringLiteral("Overscan"), QString::number(r.at<double>(h + 120)) },
        { QStringLiteral("Version"), QStringLiteral("0x%1").arg(version, 8, 16, QLatin1Char('0')) } };
    if (v2) {
        QString cantilever;
        (void)r.utf16(h + 376, 16, &cantilever);
        channel.header += { { QStringLiteral("Z servo gain"), QString::number(r.at<double>(h + 284)) },
            { QStringLiteral("Z scanner range"), QString::number(r.at<double>(h + 292)) },
            { QStringLiteral("NCM amplitude"), QString::number(r.at<double>(h + 360)) },
            { QStringLiteral("NCM frequency"), ImportSupport::withUnit(r.at<double>(h + 368), QStringLiteral("Hz")) },
            { QStringLiteral("Cantilever"), cantilever } };
    }
    file->channels.append(channel);
    message->clear();
    return true;
}
