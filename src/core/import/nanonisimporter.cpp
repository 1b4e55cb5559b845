#include "nanonisimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QMap>
#include <QRegularExpression>
#include <cmath>

namespace {

struct Tag {
    QString name;
    QStringList lines;
};

QList<Tag> parseTags(const QByteArray& header)
{
    QList<Tag> tags;
    const QList<QByteArray> lines = header.split('\n');
    for (const QByteArray& raw : lines) {
        const QString line = QString::fromLatin1(raw).trimmed();
        if (line.size() >= 2 && line.startsWith(QLatin1Char(':')) && line.endsWith(QLatin1Char(':'))) {
            tags.append({ line.mid(1, line.size() - 2), {} });
        } else if (!tags.isEmpty() && !line.isEmpty()) {
            tags.last().lines.append(line);
        }
    }
    return tags;
}

QStringList numbers(const QString& text)
{
    return text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

} // namespace

bool NanonisImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith(":NANONIS_VERSION:");
}

bool NanonisImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const int end = data.indexOf(":SCANIT_END:");
    const int marker = end < 0 ? -1 : data.indexOf("\x1a\x04", end);
    if (marker < 0) {
        *message = ImportSupport::corrupted();
        return false;
    }
    const QList<Tag> tags = parseTags(data.left(end));
    QMap<QString, QString> values;
    QStringList dataInfo;
    QStringList zController;
    for (const Tag& tag : tags) {
        values.insert(tag.name, tag.lines.join(QLatin1Char(' ')));
        if (tag.name == QStringLiteral("DATA_INFO"))
            dataInfo = tag.lines;
        else if (tag.name == QStringLiteral("Z-CONTROLLER"))
            zController = tag.lines;
    }
    QStringList pixels = numbers(values.value(QStringLiteral("SCAN_PIXELS")));
    if (values.value(QStringLiteral("NANONIS_VERSION")).trimmed() == QStringLiteral("1") && pixels.size() == 2)
        pixels.swapItemsAt(0, 1);
    const QStringList range = numbers(values.value(QStringLiteral("SCAN_RANGE")));
    const QStringList offset = numbers(values.value(QStringLiteral("SCAN_OFFSET")));
    if (pixels.size() != 2 || dataInfo.size() < 2) {
        *message = ImportSupport::corrupted();
        return false;
    }
    const int nx = pixels.at(0).toInt();
    const int ny = pixels.at(1).toInt();
    const quint64 dataStart = quint64(marker) + 2;
    const ByteReader reader(data, true);
    if (!ImportSupport::rasterFits(nx, ny, 4, reader.size() - dataStart, message))
        return false;

    struct Image {
        QString name, unit;
        bool backward;
    };
    QList<Image> images;
    int bothRows = 0;
    for (int row = 1; row < dataInfo.size(); ++row) {
        const QStringList cells = dataInfo.at(row).split(QLatin1Char('\t'));
        const QStringList parts = cells.size() >= 4 ? cells : numbers(dataInfo.at(row));
        if (parts.size() < 4)
            continue;
        const QString direction = parts.at(3).trimmed();
        const Image forward { parts.at(1).trimmed(), parts.at(2).trimmed(), false };
        if (direction == QStringLiteral("both")) {
            images << forward << Image { forward.name, forward.unit, true };
            ++bothRows;
        } else {
            images << Image { forward.name, forward.unit, direction == QStringLiteral("backward") };
        }
    }
    const quint64 imageBytes = quint64(nx) * quint64(ny) * 4;
    const quint64 available = (reader.size() - dataStart) / imageBytes;
    // Slices of grid files claim "both" but hold one direction.
    if (bothRows > 0 && reader.size() - dataStart == quint64(images.size() - bothRows) * imageBytes) {
        QList<Image> forwardOnly;
        for (const Image& image : qAsConst(images)) {
            if (!image.backward || forwardOnly.isEmpty() || forwardOnly.last().name != image.name)
                forwardOnly << image;
        }
        images = forwardOnly;
    }
    if (images.isEmpty() || available < quint64(images.size())) {
        *message = ImportSupport::corrupted();
        return false;
    }

    const bool topFirst = values.value(QStringLiteral("SCAN_DIR")).trimmed() != QStringLiteral("up");
    const double sizeX = range.value(0).isEmpty() ? 0 : ImportSupport::number(range.at(0));
    const double sizeY = range.value(1).isEmpty() ? 0 : ImportSupport::number(range.at(1));
    const double centreX = offset.size() > 0 ? ImportSupport::number(offset.at(0)) : 0;
    const double centreY = offset.size() > 1 ? ImportSupport::number(offset.at(1)) : 0;

    QList<QPair<QString, QString>> common;
    common.append({ QStringLiteral("Scan direction"), topFirst ? QStringLiteral("down") : QStringLiteral("up") });
    common.append({ QStringLiteral("Date"),
        values.value(QStringLiteral("REC_DATE")).trimmed() + QLatin1Char(' ')
            + values.value(QStringLiteral("REC_TIME")).trimmed() });
    common.append({ QStringLiteral("Bias"), values.value(QStringLiteral("BIAS")).trimmed() + QStringLiteral(" V") });
    if (zController.size() >= 2) {
        const QStringList keys = zController.at(0).split(QLatin1Char('\t'));
        const QStringList cells = zController.at(1).split(QLatin1Char('\t'));
        const int index = keys.indexOf(QStringLiteral("Setpoint"));
        if (index >= 0 && index < cells.size())
            common.append({ QStringLiteral("Setpoint"), cells.at(index).trimmed() });
        for (int i = 0; i < keys.size() && i < cells.size(); ++i)
            common.append({ QStringLiteral("Z-Controller>") + keys.at(i).trimmed(), cells.at(i).trimmed() });
    }
    common.append(
        { QStringLiteral("Temperature"), values.value(QStringLiteral("REC_TEMP")).trimmed() + QStringLiteral(" K") });
    common.append({ QStringLiteral("Scan size"),
        ImportSupport::withUnit(sizeX, QStringLiteral("m")) + QStringLiteral(" x ")
            + ImportSupport::withUnit(sizeY, QStringLiteral("m")) });
    common.append({ QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(nx).arg(ny) });
    common.append({ QStringLiteral("Scan angle"),
        values.value(QStringLiteral("SCAN_ANGLE")).trimmed() + QStringLiteral(" deg") });
    common.append({ QStringLiteral("Comment"), values.value(QStringLiteral("COMMENT")).trimmed() });
    for (const Tag& tag : tags) {
        if (tag.name != QStringLiteral("DATA_INFO") && tag.name != QStringLiteral("Z-CONTROLLER"))
            common.append({ tag.name, tag.lines.join(QLatin1Char(' ')) });
    }

    for (int k = 0; k < images.size(); ++k) {
        const Image& image = images.at(k);
        ImportedChannel channel;
        channel.width = nx;
        channel.height = ny;
        const QString direction = image.backward ? QStringLiteral("backward") : QStringLiteral("forward");
        channel.title = image.name + QLatin1Char(' ') + direction;
        double factor = 1;
        channel.sciValues.zUnit = ImportSupport::baseUnit(image.unit, &factor);
        const quint64 base = dataStart + quint64(k) * imageBytes;
        ImportSupport::placeRaster(channel, topFirst, image.backward,
            [&](qsizetype i) { return double(reader.at<float>(base + 4 * quint64(i))) * factor; });
        ImportSupport::setGeometry(
            channel, sizeX, sizeY, QStringLiteral("m"), centreX - sizeX / 2, centreY - sizeY / 2);
        channel.header = { { QStringLiteral("Channel"), image.name }, { QStringLiteral("Direction"), direction } };
        channel.header += common;
        file->channels.append(channel);
    }
    return true;
}
