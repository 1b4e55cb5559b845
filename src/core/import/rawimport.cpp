#include "rawimport.h"

#include "core/base/messages.h"
#include "core/import/bytereader.h"
#include "core/import/importsupport.h"
#include "core/items/textmatrix.h"

int RawImport::bytesPerValue(DataType type)
{
    switch (type) {
    case DataType::Int8:
    case DataType::UInt8:
        return 1;
    case DataType::Int16:
    case DataType::UInt16:
        return 2;
    case DataType::Int32:
    case DataType::UInt32:
    case DataType::Float32:
        return 4;
    case DataType::Float64:
        return 8;
    }
    return 1;
}

QStringList RawImport::typeNames()
{
    return { QStringLiteral("int8"), QStringLiteral("uint8"), QStringLiteral("int16"), QStringLiteral("uint16"),
        QStringLiteral("int32"), QStringLiteral("uint32"), QStringLiteral("float32"), QStringLiteral("float64") };
}

bool RawImport::readRaw(const QByteArray& data, const Options& o, ImportedChannel* channel, QString* message)
{
    const ByteReader r(data, !o.littleEndian);
    const quint64 size = quint64(bytesPerValue(o.type));
    if (!QSciImage::sizeFits(o.width, o.height)) {
        *message = QSciImage::tooLargeText(o.width, o.height);
        return false;
    }
    if (o.headerSize < 0 || !r.fits(quint64(o.headerSize), quint64(o.width) * quint64(o.height), size)) {
        *message = Messages::tr("The file holds fewer values than width x height after the header.");
        return false;
    }
    channel->width = o.width;
    channel->height = o.height;
    const quint64 base = quint64(o.headerSize);
    auto place = [&](auto sample) {
        using T = decltype(sample);
        ImportSupport::placeRaster(
            *channel, o.topFirst, false, [&](qsizetype i) { return double(r.at<T>(base + sizeof(T) * quint64(i))); });
    };
    switch (o.type) {
    case DataType::Int8:
        place(qint8());
        break;
    case DataType::UInt8:
        place(quint8());
        break;
    case DataType::Int16:
        place(qint16());
        break;
    case DataType::UInt16:
        place(quint16());
        break;
    case DataType::Int32:
        place(qint32());
        break;
    case DataType::UInt32:
        place(quint32());
        break;
    case DataType::Float32:
        place(float());
        break;
    case DataType::Float64:
        place(double());
        break;
    }
    channel->title = QStringLiteral("raw");
    ImportSupport::setGeometry(*channel, o.width, o.height, QString());
    channel->header = { { QStringLiteral("Data type"), typeNames().at(int(o.type)) },
        { QStringLiteral("Byte order"),
            o.littleEndian ? QStringLiteral("little endian") : QStringLiteral("big endian") },
        { QStringLiteral("Header size"), QString::number(o.headerSize) } };
    return true;
}

bool RawImport::readAscii(const QByteArray& text, ImportedChannel* channel, QString* message)
{
    QByteArray blanks = text;
    for (char& c : blanks) {
        if (c == ',' || c == ';')
            c = ' ';
    }
    if (!TextMatrix::read(blanks, &channel->z, &channel->width, &channel->height, message))
        return false;
    channel->title = QStringLiteral("ASCII");
    ImportSupport::setGeometry(*channel, channel->width, channel->height, QString());
    return true;
}
