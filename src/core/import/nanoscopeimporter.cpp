#include "nanoscopeimporter.h"

#include "core/base/messages.h"
#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QRegularExpression>
#include <cmath>

namespace {

struct Section {
    QString name;
    QList<QPair<QString, QString>> entries;

    QString value(const QString& key) const
    {
        for (const auto& entry : entries) {
            if (entry.first.compare(key, Qt::CaseInsensitive) == 0)
                return entry.second;
        }
        return QString();
    }
    double number(const QString& key, double fallback) const
    {
        bool ok = false;
        const double v
            = ImportSupport::number(value(key).section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty), &ok);
        return ok && std::isfinite(v) ? v : fallback;
    }
};

/** "V [Sens. Zsens] (0.0050354 V/LSB) 2.910461 V": soft scale name, hard value and its unit. */
struct ScaleValue {
    QString softScale;
    double value = 0;
    QString unit;
    bool ok = false;
};

ScaleValue parseScale(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(?:[VSC]\\s+)?(?:\\[([^\\]]*)\\])?\\s*(?:\\(([^)]*)\\))?\\s*([-+0-9.eE]+)\\s*(.*)$"));
    const QRegularExpressionMatch m = pattern.match(text);
    ScaleValue result;
    if (!m.hasMatch())
        return result;
    result.softScale = m.captured(1).trimmed();
    result.value = ImportSupport::number(m.captured(3), &result.ok);
    result.unit = m.captured(4).trimmed();
    return result;
}

/** "10 10 ~m" or "500 nm": x and y in metres (or the unit as given). */
void parseScanSize(const QString& text, double* x, double* y, QString* unit)
{
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return;
    const QString unitText = parts.size() >= 2 ? parts.last() : QString();
    double factor = 1;
    *unit = ImportSupport::baseUnit(unitText, &factor);
    *x = ImportSupport::number(parts.at(0)) * factor;
    *y = parts.size() >= 3 ? ImportSupport::number(parts.at(1)) * factor : *x;
}

bool isImageSection(const QString& name)
{
    return name.compare(QStringLiteral("Ciao image list"), Qt::CaseInsensitive) == 0
        || (name.endsWith(QStringLiteral("image list"), Qt::CaseInsensitive)
            && !name.contains(QStringLiteral("force"), Qt::CaseInsensitive))
        || name.compare(QStringLiteral("Image list"), Qt::CaseInsensitive) == 0;
}

} // namespace

bool NanoscopeImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("\\*File list") || head.startsWith("\\*EC File list");
}

bool NanoscopeImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const int firstEnd = data.indexOf('\n');
    if (firstEnd < 1 || data.at(firstEnd - 1) != '\r') {
        // Line ends rewritten in transit shift every binary offset.
        *message = firstEnd < 0 ? ImportSupport::corrupted()
                                : Messages::tr("line endings were converted, the data are damaged");
        return false;
    }
    const int headerEnd = data.indexOf("\\*File list end");
    if (headerEnd < 0) {
        *message = ImportSupport::corrupted();
        return false;
    }
    QList<Section> sections;
    const QList<QByteArray> lines = data.left(headerEnd).split('\n');
    for (const QByteArray& raw : lines) {
        QString line = QString::fromLatin1(raw).trimmed();
        if (line.startsWith(QStringLiteral("\\*"))) {
            sections.append({ line.mid(2).trimmed(), {} });
            continue;
        }
        if (!line.startsWith(QLatin1Char('\\')) || sections.isEmpty())
            continue;
        line.remove(0, 1);
        if (line.startsWith(QLatin1Char('@')))
            line.remove(0, 1);
        // The key ends at the first ": " (keys such as "@2:Z scale" hold a colon of their own).
        const int colon = line.indexOf(QStringLiteral(": "));
        const QString key = colon < 0 ? line.section(QLatin1Char(':'), 0, 0) : line.left(colon);
        const QString value = colon < 0 ? QString() : line.mid(colon + 2).trimmed();
        sections.last().entries.append({ key.trimmed(), value });
    }
    if (sections.isEmpty() || sections.first().name.contains(QStringLiteral("Force"), Qt::CaseInsensitive)) {
        *message = ImportSupport::noImageData();
        return false;
    }
    const Section* scanList = nullptr;
    const Section* scannerList = nullptr;
    const Section* equipment = nullptr;
    for (const Section& s : qAsConst(sections)) {
        if (!scanList && s.name.endsWith(QStringLiteral("scan list"), Qt::CaseInsensitive))
            scanList = &s;
        if (!scannerList && s.name.compare(QStringLiteral("Scanner list"), Qt::CaseInsensitive) == 0)
            scannerList = &s;
        if (!equipment && s.name.compare(QStringLiteral("Equipment list"), Qt::CaseInsensitive) == 0)
            equipment = &s;
    }
    const Section& fileList = sections.first();
    auto sensitivity = [&](const QString& name, ScaleValue* out) {
        for (const Section* s : { scannerList, scanList }) {
            if (!s)
                continue;
            const QString text = s->value(name);
            if (!text.isEmpty()) {
                *out = parseScale(text);
                return out->ok;
            }
        }
        return false;
    };

    const ByteReader r(data);
    int skipped = 0;
    for (const Section& s : qAsConst(sections)) {
        if (!isImageSection(s.name)) {
            if (s.name.contains(QStringLiteral("force"), Qt::CaseInsensitive))
                ++skipped;
            continue;
        }
        const qint64 offset = qint64(s.number(QStringLiteral("Data offset"), -1));
        const qint64 length = qint64(s.number(QStringLiteral("Data length"), -1));
        const int w = int(s.number(QStringLiteral("Samps/line"), 0));
        const int h = int(s.number(QStringLiteral("Number of lines"), 0));
        if (offset < 0 || length < 0 || !r.fits(quint64(offset), quint64(length))
            || !ImportSupport::rasterFits(w, h, 1, quint64(length), message)) {
            *message = ImportSupport::corrupted();
            return false;
        }
        int bpp = int(s.number(QStringLiteral("Bytes/pixel"), 0));
        if (bpp != 2 && bpp != 4)
            bpp = int(length / (qint64(w) * h)) >= 4 ? 4 : 2;
        if (quint64(w) * quint64(h) * quint64(bpp) > quint64(length)) {
            *message = ImportSupport::corrupted();
            return false;
        }
        QString title = s.value(QStringLiteral("2:Image Data"));
        if (title.isEmpty())
            title = s.value(QStringLiteral("Image data"));
        const int quote = title.indexOf(QLatin1Char('"'));
        title = quote >= 0 ? title.mid(quote + 1).section(QLatin1Char('"'), 0, 0)
                           : title.section(QLatin1Char(']'), -1).trimmed();
        if (title.isEmpty())
            title = QStringLiteral("Image");

        QString zScaleText = s.value(QStringLiteral("2:Z scale"));
        if (zScaleText.isEmpty())
            zScaleText = s.value(QStringLiteral("Z scale"));
        const ScaleValue hard = parseScale(zScaleText);
        double factor = hard.ok ? hard.value : 1.0;
        QString unitText = hard.ok ? hard.unit : QString();
        ScaleValue soft;
        if (hard.ok && !hard.softScale.isEmpty() && sensitivity(hard.softScale, &soft)) {
            factor *= soft.value;
            const QString softUnit = soft.unit.section(QLatin1Char('/'), 0, 0);
            const QString softPer = soft.unit.section(QLatin1Char('/'), 1);
            // "nm/V" times "V" is "nm"; a sensitivity without a per-unit leaves the hard unit.
            if (!softPer.isEmpty() && softPer == unitText)
                unitText = softUnit;
            else if (!soft.unit.isEmpty())
                unitText = soft.unit;
        }
        double unitFactor = 1;
        QString zUnit
            = ImportSupport::baseUnit(unitText == QString(QChar(0xBA)) ? QStringLiteral("deg") : unitText, &unitFactor);
        const double scale = factor * unitFactor / std::pow(2.0, 8.0 * bpp);

        double sizeX = 0, sizeY = 0;
        QString xyUnit = QStringLiteral("m");
        parseScanSize(s.value(QStringLiteral("Scan Size")).isEmpty() && scanList
                ? scanList->value(QStringLiteral("Scan Size"))
                : s.value(QStringLiteral("Scan Size")),
            &sizeX, &sizeY, &xyUnit);
        if (scanList) {
            const int scanLines = int(scanList->number(QStringLiteral("Lines"), h));
            const QString aspect = s.value(QStringLiteral("Aspect Ratio"));
            if (!aspect.isEmpty() && aspect != QStringLiteral("1:1") && scanLines > h && scanLines > 0)
                sizeY = sizeY * h / scanLines;
        }
        double offsetFactor = 1;
        const QString offsetUnit
            = scanList ? scanList->value(QStringLiteral("X Offset")).section(QLatin1Char(' '), 1, 1) : QString();
        ImportSupport::baseUnit(offsetUnit, &offsetFactor);
        const double offsetX = scanList ? scanList->number(QStringLiteral("X Offset"), 0) * offsetFactor : 0;
        const double offsetY = scanList ? scanList->number(QStringLiteral("Y Offset"), 0) * offsetFactor : 0;

        ImportedChannel channel;
        channel.width = w;
        channel.height = h;
        const QString lineDirection = s.value(QStringLiteral("Line Direction"));
        const QString direction = lineDirection.compare(QStringLiteral("Retrace"), Qt::CaseInsensitive) == 0
            ? QStringLiteral("backward")
            : QStringLiteral("forward");
        channel.title = title + QLatin1Char(' ') + direction;
        channel.sciValues.zUnit = zUnit;
        const quint64 base = quint64(offset);
        if (bpp == 4)
            ImportSupport::placeRaster(
                channel, false, false, [&](qsizetype i) { return r.at<qint32>(base + 4 * quint64(i)) * scale; });
        else
            ImportSupport::placeRaster(
                channel, false, false, [&](qsizetype i) { return r.at<qint16>(base + 2 * quint64(i)) * scale; });
        ImportSupport::setGeometry(channel, sizeX, sizeY, xyUnit, offsetX, offsetY);
        channel.header = { { QStringLiteral("Channel"), title }, { QStringLiteral("Direction"), direction },
            { QStringLiteral("Scan direction"), s.value(QStringLiteral("Frame direction")) },
            { QStringLiteral("Date"), fileList.value(QStringLiteral("Date")) },
            { QStringLiteral("Scan size"),
                ImportSupport::withUnit(sizeX, xyUnit) + QStringLiteral(" x ")
                    + ImportSupport::withUnit(sizeY, xyUnit) },
            { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(w).arg(h) },
            { QStringLiteral("Version"), fileList.value(QStringLiteral("Version")) },
            { QStringLiteral("Microscope"),
                equipment ? (equipment->value(QStringLiteral("Description")).isEmpty()
                        ? equipment->value(QStringLiteral("Microscope"))
                        : equipment->value(QStringLiteral("Description")))
                          : QString() },
            { QStringLiteral("Z scale"), zScaleText } };
        if (scanList) {
            for (const QString& key : { QStringLiteral("Operating mode"), QStringLiteral("Scan Rate"),
                     QStringLiteral("X Offset"), QStringLiteral("Y Offset"), QStringLiteral("Scan Size") })
                channel.header.append({ key, scanList->value(key) });
        }
        for (const auto& entry : s.entries)
            channel.header.append(entry);
        file->channels.append(channel);
    }
    if (skipped > 0)
        file->skipped.append(QStringLiteral("%1 force sections").arg(skipped));
    return true;
}
