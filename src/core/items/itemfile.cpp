#include "itemfile.h"

#include "core/base/atomicfile.h"
#include "core/base/compressedblock.h"
#include "core/base/largepages.h"
#include "core/base/messages.h"
#include "core/base/pixelrows.h"
#include "core/base/tokencodec.h"
#include "core/items/itemimporterregistry.h"
#include "core/items/matrixspare.h"
#include "core/items/processinglog.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QtConcurrent/QtConcurrentRun>
#include <QtEndian>
#include <cstring>
#include <memory>

namespace {

/** The header holds text and object records only; anything larger is not a header. */
constexpr qint64 MaxHeaderBytes = qint64(512) << 20;
/** A block length has at most this many digits (enough for any file size). */
constexpr int MaxLengthDigits = 18;

enum BlockIndex { HeaderBlock, MaskBlock, PictureBlock, ZBlock };

QString realText(double value)
{
    return QString::number(value, 'g', 17);
}
QString boolText(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

// ---- writing -----------------------------------------------------------------------------------------

QString headerText(const QSciImage& item, const ItemFile::PartFlags& flags)
{
    QString text;
    TokenCodec::append(text, QString::number(ItemFile::FormatNumber));
    TokenCodec::append(text, flags.toString());
    TokenCodec::append(text, QString::number(item.width()));
    TokenCodec::append(text, QString::number(item.height()));
    if (flags.header) {
        QString properties;
        auto add = [&properties](const char* key, const QString& value) {
            TokenCodec::append(properties, QString::fromLatin1(key));
            TokenCodec::append(properties, value);
        };
        const QSciImage::SciValues& sci = item.sciValues();
        add("sciValues.offset.x", realText(sci.offsetX));
        add("sciValues.offset.y", realText(sci.offsetY));
        add("sciValues.size.x", realText(sci.sizeX));
        add("sciValues.size.y", realText(sci.sizeY));
        add("sciValues.xUnit", sci.xUnit);
        add("sciValues.yUnit", sci.yUnit);
        add("sciValues.zUnit", sci.zUnit);
        add("sciValues.xUnitPerPixel", realText(sci.xUnitPerPixel));
        add("sciValues.yUnitPerPixel", realText(sci.yUnitPerPixel));
        add("zCalibrateMultiply", realText(item.zCalibrateMultiply()));
        add("zCalibrateAdd", realText(item.zCalibrateAdd()));
        const QRect maskRect = item.maskBorderRect();
        add("maskBorderRect.left", QString::number(maskRect.left()));
        add("maskBorderRect.top", QString::number(maskRect.top()));
        add("maskBorderRect.width", QString::number(maskRect.width()));
        add("maskBorderRect.height", QString::number(maskRect.height()));
        add("maskWidth", QString::number(item.width()));
        add("maskHeight", QString::number(item.height()));
        add("name", item.name());
        add("tabText", item.tabText());
        add("zPosInImageList", QString::number(item.zPosInImageList()));
        add("isSelected", boolText(item.isSelected()));
        add("visible", boolText(item.isVisible()));
        add("left", QString::number(item.left()));
        add("top", QString::number(item.top()));
        add("abstract", item.abstractText());
        add("drawImageInSciPaint", boolText(item.drawImageInSciPaint()));
        add("drawMaskInSciPaint", boolText(item.drawMaskInSciPaint()));
        add("drawObjectsInSciPaint", boolText(item.drawObjectsInSciPaint()));
        add("drawZInSciPaint", boolText(item.drawZInSciPaint()));
        add("opacity", QString::number(item.opacity(), 'g', 6));
        add("colorGradient", item.colorGradient().toString());
        add("colorRange", item.colorRange().toString());
        add("processingLog", ProcessingLog::encode(item.processingLog()));
        const QMap<QString, QString>& elements = item.displayElements();
        for (const auto& element : QSciImage::displayElementDefaults()) {
            TokenCodec::append(properties, element.first);
            TokenCodec::append(properties, elements.value(element.first, element.second));
        }
        TokenCodec::append(text, properties);

        TokenCodec::append(text, QString::number(item.instrumentHeader().size()));
        for (const auto& entry : item.instrumentHeader()) {
            TokenCodec::append(text, entry.first);
            TokenCodec::append(text, entry.second);
        }
        TokenCodec::append(text, QString::number(item.textLines().size()));
        for (const QString& line : item.textLines())
            TokenCodec::append(text, line);
    }
    if (flags.objects) {
        TokenCodec::append(text, QString::number(item.objects().size()));
        for (const QSciSingleObject& object : item.objects())
            TokenCodec::append(text, object.toString());
    }
    return text;
}

/** A pixel of the picture as the file holds it: bytes R, G, B, A. */
inline void putFilePixel(uchar* p, QRgb c)
{
    const quint32 v = qToLittleEndian((c & 0xFF00FF00u) | ((c & 0xFFu) << 16) | ((c >> 16) & 0xFFu));
    std::memcpy(p, &v, 4);
}

/** Columns and rows of the tiles through which the picture block is turned between file and picture order. */
constexpr int TileColumns = 16;
constexpr int TileRows = 64;

/**
 * Walks points [first, end) of the picture block, which holds the picture column by column: points of a column
 * the range cuts go to @p point(i) one by one, whole columns to @p tile(x, columns, y0, rows) a tile at a time.
 */
template <typename Point, typename Tile>
void forPictureTiles(qsizetype first, qsizetype end, int h, Point point, Tile tile)
{
    const int x0 = int((first + h - 1) / h); // the first whole column
    const int x1 = int(end / h); // behind the last whole column
    if (x0 >= x1) {
        for (qsizetype i = first; i < end; ++i)
            point(i);
        return;
    }
    for (qsizetype i = first; i < qsizetype(x0) * h; ++i)
        point(i);
    for (int tx = x0; tx < x1; tx += TileColumns) {
        const int columns = qMin(TileColumns, x1 - tx);
        for (int y0 = 0; y0 < h; y0 += TileRows)
            tile(tx, columns, y0, qMin(TileRows, h - y0));
    }
    for (qsizetype i = qsizetype(x1) * h; i < end; ++i)
        point(i);
}

/**
 * Lays out picture bytes [offset, offset + length) in file order: column by column, rows from the bottom. Whole
 * columns go through a small tile, filled a picture row run at a time and emptied down the columns.
 */
void pictureBytes(const QImage& picture, qsizetype offset, qsizetype length, char* out)
{
    const int h = picture.height();
    const uchar* bits = picture.constBits();
    const qsizetype bpl = picture.bytesPerLine();
    const qsizetype first = offset / 4;
    uchar* o = reinterpret_cast<uchar*>(out) - first * 4;
    alignas(64) QRgb tile[TileColumns * TileRows];
    forPictureTiles(
        first, (offset + length) / 4, h,
        [=](qsizetype i) {
            const int x = int(i / h), y = int(i % h);
            putFilePixel(o + i * 4, reinterpret_cast<const QRgb*>(bits + (h - 1 - y) * bpl)[x]);
        },
        [&](int tx, int columns, int y0, int rows) {
            for (int r = 0; r < rows; ++r)
                std::memcpy(
                    tile + r * TileColumns, bits + (h - 1 - y0 - r) * bpl + qsizetype(tx) * 4, size_t(columns) * 4);
            for (int c = 0; c < columns; ++c) {
                uchar* column = o + (qsizetype(tx + c) * h + y0) * 4;
                for (int r = 0; r < rows; ++r)
                    putFilePixel(column + r * 4, tile[r * TileColumns + c]);
            }
        });
}

/** A pixel of the file (bytes R, G, B, A) as the picture holds it. */
inline QRgb filePixel(const uchar* p)
{
    quint32 v;
    std::memcpy(&v, p, 4);
    v = qFromLittleEndian(v);
    return (v & 0xFF00FF00u) | ((v & 0xFFu) << 16) | ((v >> 16) & 0xFFu);
}

/**
 * Puts the file's picture bytes [offset, offset + length), given at @p data, into the picture. Chunks of an intact
 * block hold whole points; a point cut by a chunk boundary can only come from a broken block, whose picture is
 * dropped, and is left out. Whole columns go through a small tile that stays in the L1 cache: the columns are read
 * straight down and the picture is written a row run at a time, as colouring does.
 */
void picturePoints(const uchar* data, qsizetype offset, qsizetype length, uchar* bits, qsizetype bpl, int h)
{
    const uchar* base = data - offset; // byte i of the block, for i within the range
    alignas(64) QRgb tile[TileColumns * TileRows];
    forPictureTiles((offset + 3) / 4, (offset + length) / 4, h,
        [=](qsizetype i) {
            const int x = int(i / h), y = int(i % h);
            reinterpret_cast<QRgb*>(bits + (h - 1 - y) * bpl)[x] = filePixel(base + i * 4);
        },
        [&](int tx, int columns, int y0, int rows) {
            for (int c = 0; c < columns; ++c) {
                const uchar* column = base + (qsizetype(tx + c) * h + y0) * 4;
                for (int r = 0; r < rows; ++r)
                    tile[r * TileColumns + c] = filePixel(column + r * 4);
            }
            for (int r = 0; r < rows; ++r)
                PixelRows::store(bits + (h - 1 - y0 - r) * bpl + qsizetype(tx) * 4, tile + r * TileColumns, columns);
        });
    PixelRows::finish();
}

// ---- reading -----------------------------------------------------------------------------------------

struct Block {
    const char* data = nullptr;
    qsizetype size = 0;
    qint64 stated = -1;
};

/** Walks the blocks of a file held in memory, checking every length against what is left. */
class BlockCursor {
public:
    BlockCursor(const char* data, qsizetype size)
        : m_data(data)
        , m_size(size)
    {
    }

    /** The next block, named @p what in the reason given when it cannot be read. */
    bool next(Block* block, const QString& what, QString* reason)
    {
        qsizetype p = m_pos;
        qint64 length = 0;
        while (p < m_size && m_data[p] != '|') {
            const char c = m_data[p];
            if (c < '0' || c > '9' || p - m_pos >= MaxLengthDigits) {
                *reason = Messages::tr("the length of the %1 at byte %2 is no number").arg(what).arg(m_pos);
                return false;
            }
            length = length * 10 + (c - '0');
            ++p;
        }
        if (p >= m_size || p == m_pos) {
            *reason = Messages::tr("file ends at byte %1, before the %2").arg(m_size).arg(what);
            return false;
        }
        if (length < 4) {
            *reason = Messages::tr("the %1 at byte %2 is too short to be a compressed block").arg(what).arg(m_pos);
            return false;
        }
        if (length > m_size - (p + 1)) {
            *reason = Messages::tr("file ends at byte %1, the %2 needs %3").arg(m_size).arg(what).arg(p + 1 + length);
            return false;
        }
        block->data = m_data + p + 1;
        block->size = qsizetype(length);
        block->stated = CompressedBlock::statedSize(block->data, block->size);
        m_pos = p + 1 + qsizetype(length);
        return true;
    }

private:
    const char* m_data;
    qsizetype m_size;
    qsizetype m_pos = 0;
};

/** Everything a file holds, read and checked, before it goes into an item. */
struct ParsedFile {
    ItemFile::Info info;
    QHash<QString, QString> properties;
    QList<QString> objectTexts;
    Block blocks[4];
};

bool readPartFlags(const QString& text, ItemFile::PartFlags* flags)
{
    if (text.size() != 5)
        return false;
    bool bits[5];
    for (int i = 0; i < 5; ++i) {
        if (text.at(i) != QLatin1Char('0') && text.at(i) != QLatin1Char('1'))
            return false;
        bits[i] = text.at(i) == QLatin1Char('1');
    }
    *flags = ItemFile::PartFlags(bits[0], bits[1], bits[2], bits[3], bits[4]);
    return true;
}

/** Reads a count token; each of the @p count items that follow needs at least @p minChars characters. */
bool readCount(TokenReader& reader, const QString& text, int minChars, int* count)
{
    bool ok = false;
    const int n = reader.next().toInt(&ok);
    const qint64 left = text.size() - reader.position();
    if (!ok || n < 0 || qint64(n) * minChars > left)
        return false;
    *count = n;
    return true;
}

bool parseHeaderText(const QString& text, ParsedFile* file)
{
    ItemFile::Info& info = file->info;
    TokenReader reader(text);
    info.formatNumber = reader.next();
    if (!readPartFlags(reader.next(), &info.flags))
        return false;
    bool okW = false, okH = false;
    info.width = reader.next().toInt(&okW);
    info.height = reader.next().toInt(&okH);
    if (!okW || !okH || info.width <= 0 || info.height <= 0 || qint64(info.width) * info.height > ItemFile::MaxPoints)
        return false;
    if (info.flags.header) {
        const QString properties = reader.next();
        TokenReader pairs(properties);
        while (!pairs.atEnd()) {
            const QString key = pairs.next();
            if (pairs.atEnd())
                break;
            const QString value = pairs.next();
            info.properties.append({ key, value });
            if (!file->properties.contains(key))
                file->properties.insert(key, value);
        }
        int count = 0;
        if (!readCount(reader, text, 4, &count))
            return false;
        for (int i = 0; i < count; ++i) {
            const QString key = reader.next();
            info.instrumentHeader.append({ key, reader.next() });
        }
        if (!readCount(reader, text, 2, &count))
            return false;
        for (int i = 0; i < count; ++i)
            info.textLines.append(reader.next());
    }
    if (info.flags.objects) {
        if (!readCount(reader, text, 2, &info.objectCount))
            return false;
        for (int i = 0; i < info.objectCount; ++i)
            file->objectTexts.append(reader.next());
    }
    return true;
}

/** Holds a file's bytes, mapped when possible. */
class FileBytes {
public:
    bool open(const QString& path, QString* message)
    {
        m_file.setFileName(path);
        if (QFileInfo(path).isDir()) {
            *message = Messages::unableToReadFromFile(path) + QLatin1Char('\n') + Messages::tr("is a directory");
            return false;
        }
        if (!m_file.open(QIODevice::ReadOnly)) {
            const QString reason = m_file.error() == QFileDevice::PermissionsError ? Messages::tr("permission denied")
                                                                                   : m_file.errorString();
            *message = Messages::unableToOpenFile(path) + QLatin1Char('\n') + reason;
            return false;
        }
        const qint64 size = m_file.size();
        if (size > 0) {
            m_data = reinterpret_cast<const char*>(m_file.map(0, size));
            if (!m_data) {
                m_copy = m_file.read(size);
                m_data = m_copy.constData();
            }
            m_size = m_data == m_copy.constData() ? m_copy.size() : size;
        }
        return true;
    }
    const char* data() const { return m_data; }
    qsizetype size() const { return m_size; }

private:
    QFile m_file;
    QByteArray m_copy;
    const char* m_data = nullptr;
    qsizetype m_size = 0;
};

/** Reads the framing and the header of the whole file; the matrix blocks are located but not inflated. */
bool parseFile(const FileBytes& bytes, ParsedFile* file, QString* reason)
{
    if (bytes.size() == 0) {
        *reason = Messages::tr("the file is empty");
        return false;
    }
    BlockCursor cursor(bytes.data(), bytes.size());
    Block& header = file->blocks[HeaderBlock];
    if (!cursor.next(&header, Messages::tr("header"), reason))
        return false;
    if (header.size > MaxHeaderBytes) {
        *reason = Messages::tr("the header is larger than %1 bytes").arg(MaxHeaderBytes);
        return false;
    }
    QByteArray raw;
    if (!CompressedBlock::uncompress(
            QByteArray::fromRawData(header.data, int(header.size)), &raw, MaxHeaderBytes, nullptr)) {
        *reason = Messages::tr("a compressed block is damaged (the header)");
        return false;
    }
    const int end = raw.indexOf('\0');
    if (!parseHeaderText(QString::fromUtf8(raw.constData(), end < 0 ? raw.size() : end), file)) {
        *reason = Messages::tr("the header is not that of an item file");
        return false;
    }
    ItemFile::Info& info = file->info;
    info.blockSizes[HeaderBlock] = header.size;
    info.statedSizes[HeaderBlock] = header.stated;
    const bool present[4] = { true, info.flags.mask, info.flags.picture, info.flags.z };
    for (int b = MaskBlock; b <= ZBlock; ++b) {
        if (!present[b])
            continue;
        const QString names[] = { QString(), Messages::tr("mask"), Messages::tr("picture"), Messages::tr("z-matrix") };
        if (!cursor.next(&file->blocks[b], names[b], reason))
            return false;
        info.blockSizes[b] = file->blocks[b].size;
        info.statedSizes[b] = file->blocks[b].stated;
    }
    return true;
}

double realValue(const QHash<QString, QString>& map, const char* key, double fallback)
{
    const auto it = map.constFind(QString::fromLatin1(key));
    if (it == map.constEnd())
        return fallback;
    bool ok = false;
    const double value = it->toDouble(&ok);
    return ok ? value : fallback;
}

int intValue(const QHash<QString, QString>& map, const char* key, int fallback)
{
    const auto it = map.constFind(QString::fromLatin1(key));
    if (it == map.constEnd())
        return fallback;
    bool ok = false;
    const int value = it->toInt(&ok);
    return ok ? value : fallback;
}

bool boolValue(const QHash<QString, QString>& map, const char* key, bool fallback)
{
    const auto it = map.constFind(QString::fromLatin1(key));
    return it == map.constEnd() ? fallback : *it == QLatin1String("1");
}

QString textValue(const QHash<QString, QString>& map, const char* key)
{
    return map.value(QString::fromLatin1(key));
}

/** Puts the header properties into @p item; a missing key gives the field's default. */
void applyProperties(const ParsedFile& file, QSciImage& item)
{
    const QHash<QString, QString>& map = file.properties;
    QSciImage::SciValues sci;
    sci.offsetX = realValue(map, "sciValues.offset.x", 0);
    sci.offsetY = realValue(map, "sciValues.offset.y", 0);
    sci.sizeX = realValue(map, "sciValues.size.x", file.info.width);
    sci.sizeY = realValue(map, "sciValues.size.y", file.info.height);
    sci.xUnit = textValue(map, "sciValues.xUnit");
    sci.yUnit = textValue(map, "sciValues.yUnit");
    sci.zUnit = textValue(map, "sciValues.zUnit");
    sci.xUnitPerPixel = realValue(map, "sciValues.xUnitPerPixel", 1);
    sci.yUnitPerPixel = realValue(map, "sciValues.yUnitPerPixel", 1);
    item.setSciValues(sci);
    item.setZCalibration(realValue(map, "zCalibrateMultiply", 1), realValue(map, "zCalibrateAdd", 0));
    item.setName(textValue(map, "name"));
    item.setTabText(textValue(map, "tabText"));
    item.setZPosInImageList(intValue(map, "zPosInImageList", 0));
    item.setSelected(boolValue(map, "isSelected", false));
    item.setVisible(boolValue(map, "visible", true));
    item.setPosition(intValue(map, "left", 0), intValue(map, "top", 0));
    item.setAbstractText(textValue(map, "abstract"));
    item.setDrawSwitches(boolValue(map, "drawImageInSciPaint", true), boolValue(map, "drawMaskInSciPaint", true),
        boolValue(map, "drawObjectsInSciPaint", true), boolValue(map, "drawZInSciPaint", false));
    item.setOpacity(realValue(map, "opacity", 1));
    ColorGradient gradient;
    gradient.fromString(textValue(map, "colorGradient"));
    item.setColorGradient(gradient);
    item.setColorRange(ColorRange::fromString(textValue(map, "colorRange")));
    item.setProcessingLog(ProcessingLog::decode(textValue(map, "processingLog")));
    QMap<QString, QString> elements;
    for (const auto& element : QSciImage::displayElementDefaults())
        elements.insert(element.first, map.value(element.first, element.second));
    item.setDisplayElements(elements);
    item.setInstrumentHeader(file.info.instrumentHeader);
    item.setTextLines(file.info.textLines);
}

/** Matrices inflated from a file; a part that is null was absent or skipped. */
struct Content {
    QVector<uchar> mask;
    QImage picture;
    QVector<double> z;
};

/** Inflates the matrix blocks whose stated size fits W x H; false when a block is broken. */
bool inflateContent(const ParsedFile& file, Content* content)
{
    const int w = file.info.width, h = file.info.height;
    const qint64 points = qint64(w) * h;
    const qint64 expected[4] = { 0, points, points * 4, points * 8 };
    QVector<CompressedBlock::Inflation> jobs;
    for (int b = MaskBlock; b <= ZBlock; ++b) {
        const Block& block = file.blocks[b];
        if (!block.data || block.stated != expected[b])
            continue; // absent, or of the wrong size: skipped
        if (!CompressedBlock::isPlausible(block.stated, block.size))
            return false; // the right size, but more than the data can hold: broken
        CompressedBlock::Inflation job;
        job.data = block.data;
        job.size = block.size;
        job.destinationSize = block.stated;
        // The matrices are allocated (and zeroed, by QVector) on worker threads, alongside the other blocks.
        if (b == MaskBlock) {
            job.allocate = [content, points]() {
                content->mask.reserve(int(points));
                LargePages::advise(content->mask.data(), size_t(points));
                content->mask.resize(int(points));
                return reinterpret_cast<char*>(content->mask.data());
            };
            job.sink = [](qsizetype, char* data, qsizetype length) {
                for (char *p = data, *end = data + length; p < end; ++p)
                    *p = *p ? 1 : 0;
            };
        } else if (b == PictureBlock) {
            // No buffer for the file's bytes: each inflated chunk goes straight into the picture's rows.
            content->picture = QImage(w, h, QImage::Format_ARGB32);
            if (content->picture.isNull())
                return false;
            uchar* bits = content->picture.bits();
            LargePages::advise(bits, size_t(content->picture.sizeInBytes()));
            const qsizetype bpl = content->picture.bytesPerLine();
            job.sink = [bits, bpl, h](qsizetype offset, char* data, qsizetype length) {
                picturePoints(reinterpret_cast<const uchar*>(data), offset, length, bits, bpl, h);
            };
        } else {
            job.allocate = [content, points]() {
                content->z = MatrixSpare::take(points);
                if (!content->z.isEmpty())
                    return reinterpret_cast<char*>(content->z.data());
                content->z.reserve(int(points));
                LargePages::advise(content->z.data(), size_t(points) * 8);
                content->z.resize(int(points));
                return reinterpret_cast<char*>(content->z.data());
            };
            if (QSysInfo::ByteOrder == QSysInfo::BigEndian) {
                job.sink = [](qsizetype, char* data, qsizetype length) {
                    double* z = reinterpret_cast<double*>(data);
                    for (qsizetype i = 0; i < length / 8; ++i)
                        z[i] = qFromLittleEndian(z[i]);
                };
            }
        }
        jobs.append(job);
    }
    CompressedBlock::uncompressAll(jobs);
    return std::all_of(jobs.cbegin(), jobs.cend(), [](const CompressedBlock::Inflation& job) { return job.ok; });
}

} // namespace

// ---- PartFlags ---------------------------------------------------------------------------------------

ItemFile::PartFlags ItemFile::PartFlags::fromParts(QSciImage::Parts parts)
{
    PartFlags flags;
    flags.header = parts & (QSciImage::PositionPart | QSciImage::DisplayPart | QSciImage::HeaderPart);
    flags.picture = parts & QSciImage::PicturePart;
    flags.z = parts & QSciImage::ZPart;
    flags.mask = parts & QSciImage::MaskPart;
    flags.objects = parts & QSciImage::ObjectsPart;
    return flags;
}

QSciImage::Parts ItemFile::PartFlags::toParts() const
{
    QSciImage::Parts parts;
    if (header)
        parts |= QSciImage::PositionPart | QSciImage::DisplayPart | QSciImage::HeaderPart;
    if (picture)
        parts |= QSciImage::PicturePart;
    if (z)
        parts |= QSciImage::ZPart;
    if (mask)
        parts |= QSciImage::MaskPart;
    if (objects)
        parts |= QSciImage::ObjectsPart;
    return parts;
}

QString ItemFile::PartFlags::toString() const
{
    QString text;
    for (bool flag : { header, picture, z, mask, objects })
        text += flag ? QLatin1Char('1') : QLatin1Char('0');
    return text;
}

bool ItemFile::PartFlags::operator==(const PartFlags& o) const
{
    return header == o.header && picture == o.picture && z == o.z && mask == o.mask && objects == o.objects;
}

// ---- ItemFile ----------------------------------------------------------------------------------------

bool ItemFile::isNativeFileName(const QString& path)
{
    return path.endsWith(suffix(), Qt::CaseInsensitive);
}

bool ItemFile::write(const QSciImage& item, const QString& path, const PartFlags& flags, bool quick, QString* message)
{
    const QByteArray header = headerText(item, flags).toUtf8();
    const qsizetype points = qsizetype(item.width()) * item.height();
    const int smallLevel = quick ? QuickHeaderLevel : NormalLevel;
    const int matrixLevel = quick ? QuickMatrixLevel : NormalLevel;

    QVector<CompressedBlock::Request> requests;
    requests.append({ header.constData(), header.size(), smallLevel, {} });
    if (flags.mask)
        requests.append({ reinterpret_cast<const char*>(item.maskData()), points, smallLevel, {} });
    // The item's picture is shared, not copied; the source lays out each piece as it is compressed.
    const QImage picture = item.picture();
    if (flags.picture) {
        requests.append({ nullptr, points * 4, matrixLevel, [&picture](qsizetype offset, qsizetype length, char* out) {
                             pictureBytes(picture, offset, length, out);
                         } });
    }
    if (flags.z) {
        const double* z = item.zData();
        if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
            requests.append({ reinterpret_cast<const char*>(z), points * 8, matrixLevel, {} });
        } else {
            requests.append({ nullptr, points * 8, matrixLevel, [z](qsizetype offset, qsizetype length, char* out) {
                                 qToLittleEndian<double>(z + offset / 8, length / 8, out);
                             } });
        }
    }
    const QVector<CompressedBlock> blocks = CompressedBlock::compressAll(requests);

    AtomicFile file(path);
    if (!file.open(message))
        return false;
    for (const CompressedBlock& block : blocks) {
        const QByteArray length = QByteArray::number(qint64(block.size())) + '|';
        if (file.device()->write(length) != length.size() || !block.writeTo(*file.device())) {
            const QString reason = file.device()->errorString();
            file.cancel();
            if (message)
                *message = Messages::unableToWriteFile(path) + QLatin1Char('\n') + reason;
            return false;
        }
    }
    return file.commit(message);
}

bool ItemFile::write(const QSciImage& item, const QString& path, QSciImage::Parts parts, bool quick, QString* message)
{
    return write(item, path, PartFlags::fromParts(parts), quick, message);
}

bool ItemFile::save(
    QSciImage& item, const QString& path, QSciImage::Parts parts, bool quick, bool markSaved, QString* message)
{
    return save(item, path, PartFlags::fromParts(parts), quick, markSaved, message);
}

bool ItemFile::save(
    QSciImage& item, const QString& path, const PartFlags& flags, bool quick, bool markSaved, QString* message)
{
    if (!write(item, path, flags, quick, message))
        return false;
    if (markSaved)
        item.setSaved(true);
    return true;
}

bool ItemFile::load(QSciImage& item, const QString& path, bool setFileName, bool refresh, bool reset, QString* message)
{
    QString problem;
    auto fail = [&](const QString& text) {
        if (message)
            *message = text;
        return false;
    };
    if (!QFileInfo::exists(path))
        return fail(Messages::fileDoesNotExist(path));
    if (!isNativeFileName(path)) {
        if (!ItemImporterRegistry::read(item, path, &problem))
            return fail(problem);
        item.setName(QFileInfo(path).completeBaseName());
        if (setFileName)
            item.setFileName(path);
        if (refresh)
            item.notifyChanged(
                QSciImage::AllParts | QSciImage::PositionPart | QSciImage::DisplayPart | QSciImage::HeaderPart);
        return true;
    }

    const QString unreadable = Messages::unableToReadFromFile(path) + QLatin1Char('\n');
    FileBytes bytes;
    if (!bytes.open(path, &problem))
        return fail(problem);
    ParsedFile file;
    if (!parseFile(bytes, &file, &problem))
        return fail(unreadable + problem);
    QList<QSciSingleObject> objects;
    for (const QString& text : qAsConst(file.objectTexts)) {
        QSciSingleObject object;
        if (!object.fromString(text, &problem))
            return fail(problem);
        objects.append(object);
    }
    Content content;
    if (!inflateContent(file, &content))
        return fail(unreadable + Messages::tr("a compressed block is damaged"));

    const int w = file.info.width, h = file.info.height;
    const QSize oldSize = reset ? QSize(100, 100) : item.size();
    const bool sameSize = oldSize == QSize(w, h);
    const bool backed = !content.mask.isEmpty() || !content.picture.isNull() || !content.z.isEmpty();
    if (!sameSize && !backed && qint64(w) * h > UnbackedPointLimit)
        return fail(unreadable
            + Messages::tr("the header states %1 x %2 points, but no matrix block holds them").arg(w).arg(h));

    // Everything is read: from here on the item changes, and nothing can fail.
    const bool wasLoading = item.isLoading();
    item.setLoading(true);
    if (reset) {
        const QSciImage fresh;
        item.copyFrom(fresh);
    }
    if (file.info.flags.header)
        applyProperties(file, item);
    if (file.info.flags.objects)
        item.setObjects(objects);
    const bool maskSkipped = file.info.flags.mask && content.mask.isEmpty();
    if (!sameSize || backed || maskSkipped) {
        const qsizetype points = qsizetype(w) * h;
        QImage picture = content.picture;
        if (picture.isNull()) {
            picture = sameSize ? item.picture() : QImage(w, h, QImage::Format_ARGB32);
            if (!sameSize)
                picture.fill(Qt::white);
        }
        QVector<double> z = content.z;
        if (z.isEmpty())
            z = sameSize ? item.zMatrix() : QVector<double>(int(points), 0.0);
        QVector<uchar> mask = content.mask;
        if (mask.isEmpty()) {
            if (sameSize && !maskSkipped)
                mask = item.maskMatrix();
            else
                mask = QVector<uchar>(int(points), uchar(0));
        }
        // The old matrices are let go on a worker: unmapping tens of megabytes need not hold up the caller.
        auto old = std::make_shared<Content>(Content { item.maskMatrix(), item.picture(), item.zMatrix() });
        if (!item.setContent(picture, z, mask))
            qFatal("ItemFile: matrices of checked sizes refused");
        old->z = MatrixSpare::keep(std::move(old->z));
        if (qsizetype(old->z.size()) >= (qsizetype(1) << 20))
            QtConcurrent::run([old = std::move(old)]() mutable { old.reset(); });
    }
    if (setFileName) {
        item.setFileName(path);
        item.setSaved(true);
    }
    item.setLoading(wasLoading);
    if (refresh) {
        item.notifyChanged(file.info.flags.toParts());
        if (file.info.flags.header)
            emit item.placeChanged();
    }
    return true;
}

bool ItemFile::load(QSciImage& item, const QString& path, bool setFileName, bool refresh, QString* message)
{
    return load(item, path, setFileName, refresh, false, message);
}

bool ItemFile::readInfo(const QString& path, Info* info, QString* message)
{
    if (!QFileInfo::exists(path)) {
        if (message)
            *message = Messages::fileDoesNotExist(path);
        return false;
    }
    FileBytes bytes;
    QString problem;
    if (!bytes.open(path, &problem)) {
        if (message)
            *message = problem;
        return false;
    }
    ParsedFile file;
    if (!parseFile(bytes, &file, &problem)) {
        if (message)
            *message = Messages::unableToReadFromFile(path) + QLatin1Char('\n') + problem;
        return false;
    }
    *info = file.info;
    return true;
}
