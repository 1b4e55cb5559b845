#include "rhkimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

namespace {

enum ObjectType : quint32 { PageIndexHeader = 1, PageIndexArray = 2, PageHeader = 3, PageData = 4, StringData = 10 };

struct ObjectRef {
    quint32 type = 0;
    quint32 offset = 0;
    quint32 size = 0;
};

/** Reads @p count references at @p offset, each checked to lie inside the file. */
bool readRefs(const ByteReader& r, quint64 offset, quint32 count, QList<ObjectRef>* refs)
{
    if (!r.fits(offset, count, 12))
        return false;
    for (quint32 i = 0; i < count; ++i) {
        ObjectRef ref { r.at<quint32>(offset + 12 * i), r.at<quint32>(offset + 12 * i + 4),
            r.at<quint32>(offset + 12 * i + 8) };
        if (ref.type == 0 || ref.size == 0)
            continue;
        if (!r.fits(ref.offset, ref.size))
            return false;
        refs->append(ref);
    }
    return true;
}

const ObjectRef* findRef(const QList<ObjectRef>& refs, quint32 type)
{
    for (const ObjectRef& ref : refs) {
        if (ref.type == type)
            return &ref;
    }
    return nullptr;
}

QString directionName(quint32 scanDirection)
{
    switch (scanDirection) {
    case 0:
        return QStringLiteral("forward");
    case 1:
        return QStringLiteral("backward");
    case 2:
        return QStringLiteral("up");
    case 3:
        return QStringLiteral("down");
    default:
        return QString();
    }
}

} // namespace

bool RhkImporter::recognises(const QByteArray& head, const QString&) const
{
    static const QByteArray signature = [] {
        QByteArray s;
        for (char c : QByteArray("STiMage 005.")) {
            s.append(c);
            s.append('\0');
        }
        return s;
    }();
    return head.size() >= 2 + signature.size() && head.mid(2, signature.size()) == signature;
}

bool RhkImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    *message = ImportSupport::corrupted();
    quint16 headerSize = 0;
    quint32 objectCount = 0;
    if (!r.read(0, &headerSize) || !r.read(2 + 36 + 4, &objectCount) || objectCount > 4096)
        return false;
    QList<ObjectRef> top;
    if (!readRefs(r, 2 + quint64(headerSize), objectCount, &top))
        return false;
    const ObjectRef* indexHeader = findRef(top, PageIndexHeader);
    quint32 pageCount = 0, indexObjects = 0;
    if (!indexHeader || !r.read(indexHeader->offset, &pageCount) || !r.read(indexHeader->offset + 4, &indexObjects)
        || indexObjects > 4096)
        return false;
    QList<ObjectRef> indexRefs;
    if (!readRefs(r, quint64(indexHeader->offset) + 16, indexObjects, &indexRefs))
        return false;
    const ObjectRef* array = findRef(indexRefs, PageIndexArray);
    // The array's own size field covers one entry only; the file bounds each entry instead.
    if (!array || pageCount > r.size() / 32)
        return false;

    int skipped = 0;
    quint64 pos = array->offset;
    for (quint32 page = 0; page < pageCount; ++page) {
        quint32 dataType = 0, pageObjects = 0;
        if (!r.read(pos + 16, &dataType) || !r.read(pos + 24, &pageObjects) || pageObjects > 4096)
            return false;
        QList<ObjectRef> refs;
        if (!readRefs(r, pos + 32, pageObjects, &refs))
            return false;
        pos += 32 + 12 * quint64(pageObjects);
        if (dataType != 0) {
            ++skipped;
            continue;
        }
        const ObjectRef* headerRef = findRef(refs, PageHeader);
        const ObjectRef* dataRef = findRef(refs, PageData);
        if (!headerRef || !dataRef || headerRef->size < 116)
            return false;
        const quint64 h = headerRef->offset;
        const quint16 pageHeaderSize = r.at<quint16>(h);
        const quint16 stringCount = r.at<quint16>(h + 2);
        const quint32 pageType = r.at<quint32>(h + 4);
        const qint32 nx = r.at<qint32>(h + 24);
        const qint32 ny = r.at<qint32>(h + 28);
        const quint32 scanDirection = r.at<quint32>(h + 36);
        const float xScale = r.at<float>(h + 56), yScale = r.at<float>(h + 60);
        const float zScale = r.at<float>(h + 64);
        const float xOffset = r.at<float>(h + 72), yOffset = r.at<float>(h + 76), zOffset = r.at<float>(h + 80);
        const float period = r.at<float>(h + 84), bias = r.at<float>(h + 88), setpoint = r.at<float>(h + 92);
        const float angle = r.at<float>(h + 96);
        const quint32 headerObjects = r.at<quint32>(h + 112);
        if (!ImportSupport::rasterFits(nx, ny, 4, dataRef->size, message))
            return false;
        *message = ImportSupport::corrupted();

        QStringList strings;
        QList<ObjectRef> headerRefs;
        if (headerObjects <= 4096 && readRefs(r, h + pageHeaderSize, headerObjects, &headerRefs)) {
            if (const ObjectRef* stringRef = findRef(headerRefs, StringData)) {
                quint64 s = stringRef->offset;
                const quint64 end = quint64(stringRef->offset) + stringRef->size;
                for (int i = 0; i < stringCount; ++i) {
                    quint16 length = 0;
                    QString text;
                    if (s + 2 > end || !r.read(s, &length) || s + 2 + 2 * quint64(length) > end
                        || !r.utf16(s + 2, length, &text))
                        break;
                    strings.append(text);
                    s += 2 + 2 * quint64(length);
                }
            }
        }
        const QString label = strings.value(0, QStringLiteral("Page %1").arg(page));
        const QString direction = directionName(scanDirection);

        ImportedChannel channel;
        channel.width = nx;
        channel.height = ny;
        channel.title = direction.isEmpty() ? label : label + QLatin1Char(' ') + direction;
        double zFactor = 1;
        const QString zUnitText = strings.value(9);
        QString zUnit = ImportSupport::baseUnit(zUnitText, &zFactor);
        if (zUnit == QStringLiteral("Vrms") || zUnit == QStringLiteral("Vp"))
            zUnit = QStringLiteral("V");
        channel.sciValues.zUnit = zUnit;
        double xyFactor = 1;
        const QString xyUnit = ImportSupport::baseUnit(strings.value(7, QStringLiteral("m")), &xyFactor);
        const quint64 base = dataRef->offset;
        const double scale = double(zScale) * zFactor;
        const double add = double(zOffset) * zFactor;
        ImportSupport::placeRaster(channel, yScale < 0, xScale < 0,
            [&](qsizetype i) { return r.at<qint32>(base + 4 * quint64(i)) * scale + add; });
        const double sizeX = nx * std::abs(double(xScale)) * xyFactor;
        const double sizeY = ny * std::abs(double(yScale)) * xyFactor;
        ImportSupport::setGeometry(
            channel, sizeX, sizeY, xyUnit, xOffset * xyFactor - sizeX / 2, yOffset * xyFactor - sizeY / 2);
        channel.header = { { QStringLiteral("Channel"), label }, { QStringLiteral("Direction"), direction },
            { QStringLiteral("Date"), strings.value(5) + QLatin1Char(' ') + strings.value(6) },
            { QStringLiteral("Bias"), ImportSupport::withUnit(bias, QStringLiteral("V")) },
            { QStringLiteral("Setpoint"), ImportSupport::withUnit(setpoint, QStringLiteral("A")) },
            { QStringLiteral("Scan size"),
                ImportSupport::withUnit(sizeX, xyUnit) + QStringLiteral(" x ")
                    + ImportSupport::withUnit(sizeY, xyUnit) },
            { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(nx).arg(ny) },
            { QStringLiteral("Scan angle"), ImportSupport::withUnit(angle, QStringLiteral("deg")) },
            { QStringLiteral("Page type"), QString::number(pageType) },
            { QStringLiteral("Period"), ImportSupport::withUnit(period, QStringLiteral("s")) },
            { QStringLiteral("X offset"), ImportSupport::withUnit(xOffset, xyUnit) },
            { QStringLiteral("Y offset"), ImportSupport::withUnit(yOffset, xyUnit) },
            { QStringLiteral("Session text"), strings.value(2) }, { QStringLiteral("User text"), strings.value(3) },
            { QStringLiteral("File path"), strings.value(4) } };
        file->channels.append(channel);
    }
    if (skipped > 0)
        file->skipped.append(QStringLiteral("%1 spectrum or line pages").arg(skipped));
    message->clear();
    if (file->channels.isEmpty()) {
        *message = ImportSupport::noImageData();
        return false;
    }
    return true;
}
