#include "gwyimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QMap>
#include <QRegularExpression>

namespace {

/** One serialised object: its type name and components by name (values as their byte range). */
struct GwyObject {
    QString type;
    struct Component {
        char kind = 0;
        quint64 offset = 0; ///< first byte of the value
        quint64 size = 0;
    };
    QList<QPair<QString, Component>> components;

    const Component* find(const QString& name) const
    {
        for (const auto& c : components) {
            if (c.first == name)
                return &c.second;
        }
        return nullptr;
    }
};

class GwyParser {
public:
    explicit GwyParser(const ByteReader& r)
        : m_r(r)
    {
    }

    /** Reads the object at @p pos (type name, size, components) without descending into nested objects. */
    bool object(quint64 pos, GwyObject* out, quint64* end) const
    {
        QByteArray name;
        if (!cstring(pos, &name))
            return false;
        pos += quint64(name.size()) + 1;
        quint32 size = 0;
        if (!m_r.read(pos, &size) || !m_r.fits(pos + 4, size))
            return false;
        pos += 4;
        const quint64 stop = pos + size;
        out->type = QString::fromLatin1(name);
        while (pos < stop) {
            QByteArray key;
            if (!cstring(pos, &key))
                return false;
            pos += quint64(key.size()) + 1;
            quint8 kind = 0;
            if (!m_r.read(pos, &kind))
                return false;
            ++pos;
            quint64 valueSize = 0;
            if (!valueLength(char(kind), pos, &valueSize) || valueSize > stop - pos)
                return false;
            out->components.append({ QString::fromUtf8(key), { char(kind), pos, valueSize } });
            pos += valueSize;
        }
        *end = stop;
        return pos == stop;
    }

    bool cstring(quint64 pos, QByteArray* text) const
    {
        if (pos >= m_r.size())
            return false;
        const char* start = m_r.data() + pos;
        const void* nul = memchr(start, 0, size_t(m_r.size() - pos));
        if (!nul)
            return false;
        *text = QByteArray(start, int(static_cast<const char*>(nul) - start));
        return true;
    }

    int32_t intValue(const GwyObject& o, const QString& name, int32_t fallback) const
    {
        const GwyObject::Component* c = o.find(name);
        return c && c->kind == 'i' ? m_r.at<qint32>(c->offset) : fallback;
    }
    double doubleValue(const GwyObject& o, const QString& name, double fallback) const
    {
        const GwyObject::Component* c = o.find(name);
        return c && c->kind == 'd' ? m_r.at<double>(c->offset) : fallback;
    }
    QString stringValue(const GwyObject::Component* c) const
    {
        QByteArray text;
        return c && c->kind == 's' && cstring(c->offset, &text) ? QString::fromUtf8(text) : QString();
    }
    QString unit(const GwyObject& o, const QString& name) const
    {
        const GwyObject::Component* c = o.find(name);
        GwyObject unitObject;
        quint64 end = 0;
        if (!c || c->kind != 'o' || !object(c->offset, &unitObject, &end))
            return QString();
        return stringValue(unitObject.find(QStringLiteral("unitstr")));
    }

private:
    /** Byte length of a value of @p kind at @p pos; false when it runs past the end. */
    bool valueLength(char kind, quint64 pos, quint64* size) const
    {
        auto array = [&](quint64 item) {
            quint32 count = 0;
            if (!m_r.read(pos, &count) || !m_r.fits(pos + 4, count, item))
                return false;
            *size = 4 + quint64(count) * item;
            return true;
        };
        switch (kind) {
        case 'b':
        case 'c':
            *size = 1;
            return m_r.fits(pos, 1);
        case 'i':
            *size = 4;
            return m_r.fits(pos, 4);
        case 'q':
        case 'd':
            *size = 8;
            return m_r.fits(pos, 8);
        case 's': {
            QByteArray text;
            if (!cstring(pos, &text))
                return false;
            *size = quint64(text.size()) + 1;
            return true;
        }
        case 'o': {
            GwyObject nested;
            quint64 end = 0;
            QByteArray name;
            quint32 objectSize = 0;
            // Only the extent: nested objects are parsed when they are needed.
            if (!cstring(pos, &name) || !m_r.read(pos + quint64(name.size()) + 1, &objectSize))
                return false;
            end = pos + quint64(name.size()) + 1 + 4 + objectSize;
            if (end > m_r.size())
                return false;
            *size = end - pos;
            return true;
        }
        case 'C':
            return array(1);
        case 'I':
            return array(4);
        case 'Q':
        case 'D':
            return array(8);
        case 'S':
        case 'O': {
            quint32 count = 0;
            if (!m_r.read(pos, &count))
                return false;
            quint64 p = pos + 4;
            for (quint32 i = 0; i < count; ++i) {
                quint64 itemSize = 0;
                if (!valueLength(kind == 'S' ? 's' : 'o', p, &itemSize))
                    return false;
                p += itemSize;
            }
            *size = p - pos;
            return true;
        }
        default:
            return false;
        }
    }

    const ByteReader& m_r;
};

} // namespace

bool GwyImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("GWYP");
}

bool GwyImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    const GwyParser parser(r);
    GwyObject root;
    quint64 end = 0;
    if (!data.startsWith("GWYP") || !parser.object(4, &root, &end) || root.type != QStringLiteral("GwyContainer")) {
        *message = ImportSupport::corrupted();
        return false;
    }
    static const QRegularExpression channelKey(QStringLiteral("^/(\\d+)/data$"));
    QMap<int, const GwyObject::Component*> fields;
    int skipped = 0;
    for (const auto& c : root.components) {
        const QRegularExpressionMatch m = channelKey.match(c.first);
        if (m.hasMatch() && c.second.kind == 'o')
            fields.insert(m.captured(1).toInt(), &c.second);
        else if (c.first.contains(QStringLiteral("/graph/graph/")) || c.first.startsWith(QStringLiteral("/sps/"))
            || c.first.startsWith(QStringLiteral("/brick/")))
            ++skipped;
    }
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        GwyObject field;
        if (!parser.object(it.value()->offset, &field, &end) || field.type != QStringLiteral("GwyDataField")) {
            *message = ImportSupport::corrupted();
            return false;
        }
        const int xres = parser.intValue(field, QStringLiteral("xres"), 0);
        const int yres = parser.intValue(field, QStringLiteral("yres"), 0);
        const GwyObject::Component* values = field.find(QStringLiteral("data"));
        if (!values || values->kind != 'D' || !ImportSupport::rasterFits(xres, yres, 8, values->size - 4, message)
            || r.at<quint32>(values->offset) != quint32(xres) * quint32(yres)) {
            *message = ImportSupport::corrupted();
            return false;
        }
        ImportedChannel channel;
        channel.width = xres;
        channel.height = yres;
        const QString prefix = QStringLiteral("/%1/").arg(it.key());
        QString title = parser.stringValue(root.find(prefix + QStringLiteral("data/title")));
        if (title.isEmpty())
            title = QStringLiteral("Channel %1").arg(it.key());
        channel.title = title;
        const quint64 base = values->offset + 4;
        ImportSupport::placeRaster(
            channel, true, false, [&](qsizetype i) { return r.at<double>(base + 8 * quint64(i)); });
        channel.sciValues.zUnit = parser.unit(field, QStringLiteral("si_unit_z"));
        // Offsets are Gwyddion's top-left corner; kept as they are, for information.
        ImportSupport::setGeometry(channel, parser.doubleValue(field, QStringLiteral("xreal"), xres),
            parser.doubleValue(field, QStringLiteral("yreal"), yres), parser.unit(field, QStringLiteral("si_unit_xy")),
            parser.doubleValue(field, QStringLiteral("xoff"), 0), parser.doubleValue(field, QStringLiteral("yoff"), 0));
        channel.header = { { QStringLiteral("Channel"), title } };
        GwyObject meta;
        const GwyObject::Component* metaRef = root.find(prefix + QStringLiteral("meta"));
        if (metaRef && metaRef->kind == 'o' && parser.object(metaRef->offset, &meta, &end)) {
            for (const auto& entry : meta.components) {
                if (entry.second.kind == 's')
                    channel.header.append({ entry.first, parser.stringValue(&entry.second) });
            }
        }
        file->channels.append(channel);
    }
    if (skipped > 0)
        file->skipped.append(QStringLiteral("%1 graphs, spectra or volumes").arg(skipped));
    return true;
}
