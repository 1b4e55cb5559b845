#include "matriximporter.h"

#include "core/base/messages.h"
#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QVariant>
#include <algorithm>
#include <cmath>

namespace {

/** A block id as it reads, from the reversed bytes on disk. */
QByteArray blockId(const ByteReader& r, quint64 pos)
{
    QByteArray id = r.bytes(pos, 4);
    std::reverse(id.begin(), id.end());
    return id;
}

bool readString(const ByteReader& r, quint64* pos, QString* text)
{
    quint32 chars = 0;
    if (!r.read(*pos, &chars) || !r.utf16(*pos + 4, chars, text))
        return false;
    *pos += 4 + 2 * quint64(chars);
    return true;
}

/** A typed value: reversed type id, then the payload. */
bool readValue(const ByteReader& r, quint64* pos, QVariant* value)
{
    const QByteArray type = blockId(r, *pos);
    *pos += 4;
    if (type == "LONG" || type == "BOOL") {
        quint32 v = 0;
        if (!r.read(*pos, &v))
            return false;
        *value = type == "BOOL" ? QVariant(v != 0) : QVariant(qint64(qint32(v)));
        *pos += 4;
    } else if (type == "DOUB") {
        double v = 0;
        if (!r.read(*pos, &v))
            return false;
        *value = v;
        *pos += 8;
    } else if (type == "STRG") {
        QString text;
        if (!readString(r, pos, &text))
            return false;
        *value = text;
    } else {
        return false;
    }
    return true;
}

struct Transfer {
    QString function;
    QString unit;
    QHash<QString, double> parameters;
};

/** The parameters in force for one data file: EEPA, PMODs up to its BREF, the latest channel tables. */
struct Parameters {
    QHash<QString, QVariant> values; ///< "Instance.Property"
    QHash<QString, QString> units;
    QHash<QString, quint32> channelIds; ///< DICT: channel name to id
    QHash<quint32, Transfer> transfers;
    QString version;
    bool foundReference = false;

    double number(const QString& key, double fallback) const
    {
        const QVariant v = values.value(key);
        bool ok = false;
        const double d = v.toDouble(&ok);
        return ok && std::isfinite(d) ? d : fallback;
    }
};

bool parseNested(const ByteReader& r, quint64 pos, quint64 end, Parameters* p)
{
    while (pos + 8 <= end) {
        const QByteArray id = blockId(r, pos);
        quint32 length = 0;
        if (!r.read(pos + 4, &length) || length > end - pos - 8)
            return false;
        const quint64 c = pos + 8;
        const quint64 stop = c + length;
        if (id == "DICT") {
            quint64 q = c + 8;
            quint32 n = 0;
            if (!r.read(q, &n) || n > length)
                return false;
            q += 4;
            for (quint32 i = 0; i < n; ++i) {
                QString a, b;
                q += 16;
                if (!readString(r, &q, &a) || !readString(r, &q, &b) || q > stop)
                    return false;
            }
            quint32 m = 0;
            if (!r.read(q, &m) || m > length)
                return false;
            q += 4;
            QHash<QString, quint32> ids;
            for (quint32 i = 0; i < m; ++i) {
                quint32 channelId = 0;
                QString name, unit;
                if (!r.read(q + 4, &channelId))
                    return false;
                q += 16;
                if (!readString(r, &q, &name) || !readString(r, &q, &unit) || q > stop)
                    return false;
                ids.insert(name, channelId);
            }
            p->channelIds = ids;
        } else if (id == "XFER") {
            QHash<quint32, Transfer> transfers;
            quint64 q = c;
            while (q + 8 <= stop) {
                quint32 channelId = 0;
                if (!r.read(q + 4, &channelId))
                    return false;
                q += 8;
                Transfer t;
                quint32 k = 0;
                if (!readString(r, &q, &t.function) || !readString(r, &q, &t.unit) || !r.read(q, &k) || k > length)
                    return false;
                q += 4;
                for (quint32 i = 0; i < k; ++i) {
                    QString name;
                    QVariant value;
                    if (!readString(r, &q, &name) || !readValue(r, &q, &value) || q > stop)
                        return false;
                    t.parameters.insert(name, value.toDouble());
                }
                transfers.insert(channelId, t);
            }
            p->transfers = transfers;
        }
        pos = stop;
    }
    return true;
}

bool parseParameters(const QByteArray& data, const QString& dataFileName, Parameters* p)
{
    const ByteReader r(data);
    if (!data.startsWith("ONTMATRX0101ATEM"))
        return false;
    static const QList<QByteArray> withoutTime { "XFER", "SCAN", "DICT", "CHCS", "INST", "CNXS", "GENL" };
    quint64 pos = 12;
    while (pos + 8 <= r.size()) {
        const QByteArray id = blockId(r, pos);
        quint32 length = 0;
        (void)r.read(pos + 4, &length);
        const quint64 c = pos + 8 + (withoutTime.contains(id) ? 0 : 8);
        if (!r.fits(c, length))
            return false;
        const quint64 stop = c + length;
        if (id == "EOED")
            break;
        quint64 q = c + 4;
        if (id == "META") {
            QString program, version;
            if (readString(r, &q, &program) && readString(r, &q, &version))
                p->version = program + QLatin1Char(' ') + version;
        } else if (id == "EEPA") {
            quint32 groups = 0;
            if (!r.read(q, &groups) || groups > length)
                return false;
            q += 4;
            for (quint32 g = 0; g < groups; ++g) {
                QString instance;
                quint32 count = 0;
                if (!readString(r, &q, &instance) || !r.read(q, &count) || count > length)
                    return false;
                q += 4;
                for (quint32 i = 0; i < count; ++i) {
                    QString name, unit;
                    QVariant value;
                    if (!readString(r, &q, &name) || !readString(r, &q, &unit))
                        return false;
                    q += 4; // a zero word before the typed value
                    if (!readValue(r, &q, &value) || q > stop)
                        return false;
                    p->values.insert(instance + QLatin1Char('.') + name, value);
                    p->units.insert(instance + QLatin1Char('.') + name, unit);
                }
            }
        } else if (id == "PMOD") {
            QString instance, name, unit;
            QVariant value;
            if (readString(r, &q, &instance) && readString(r, &q, &name) && readString(r, &q, &unit)) {
                q += 4;
                if (readValue(r, &q, &value) && q <= stop)
                    p->values.insert(instance + QLatin1Char('.') + name, value);
            }
        } else if (id == "CCSY") {
            if (!parseNested(r, q, stop, p))
                return false;
        } else if (id == "BREF") {
            QString name;
            if (readString(r, &q, &name) && !name.isEmpty() && dataFileName.endsWith(name)) {
                // Later changes belong to later images.
                p->foundReference = true;
                return true;
            }
        }
        pos = stop;
    }
    return true;
}

} // namespace

bool MatrixImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("ONTMATRX0101TLKB");
}

QString MatrixImporter::parameterPath(const QString& path)
{
    const QFileInfo info(path);
    const QString name = info.fileName();
    const int cut = name.lastIndexOf(QStringLiteral("--"));
    if (cut <= 0)
        return QString();
    return info.dir().filePath(name.left(cut) + QStringLiteral("_0001.mtrx"));
}

bool MatrixImporter::read(const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const
{
    const QString parameterFile = parameterPath(path);
    QFile input(parameterFile);
    if (parameterFile.isEmpty() || !input.open(QIODevice::ReadOnly)) {
        *message = Messages::tr("the parameter file is missing") + QStringLiteral(": ")
            + (parameterFile.isEmpty() ? QStringLiteral("*_0001.mtrx") : parameterFile);
        return false;
    }
    return read(data, input.readAll(), path, file, message);
}

bool MatrixImporter::read(const QByteArray& data, const QByteArray& parameterData, const QString& path,
    InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    *message = ImportSupport::corrupted();
    if (!data.startsWith("ONTMATRX0101TLKB"))
        return false;
    const QString fileName = QFileInfo(path).fileName();
    const QString channelName = fileName.section(QLatin1Char('.'), -1).section(QStringLiteral("_mtrx"), 0, 0);
    if (channelName.contains(QLatin1Char('('))) {
        *message = ImportSupport::noImageData();
        return false;
    }
    quint64 timeStamp = 0;
    (void)r.read(20, &timeStamp);
    quint32 intended = 0, captured = 0;
    quint64 valuesOffset = 0, valuesLength = 0;
    quint64 pos = 32;
    while (pos + 8 <= r.size()) {
        const QByteArray id = blockId(r, pos);
        quint32 length = 0;
        (void)r.read(pos + 4, &length);
        if (id == QByteArray(4, '\0'))
            break;
        if (!r.fits(pos + 8, length))
            return false;
        if (id == "DESC") {
            (void)r.read(pos + 8 + 20, &intended);
            (void)r.read(pos + 8 + 24, &captured);
        } else if (id == "DATA") {
            valuesOffset = pos + 8;
            valuesLength = length;
            break;
        }
        pos += 8 + quint64(length);
    }
    if (valuesOffset == 0)
        return false;

    Parameters p;
    if (!parseParameters(parameterData, fileName, &p)) {
        *message = Messages::tr("the parameter file is damaged");
        return false;
    }
    const int points = int(p.number(QStringLiteral("XYScanner.Points"), 0));
    const int lines = int(p.number(QStringLiteral("XYScanner.Lines"), 0));
    const bool xRetrace = p.values.value(QStringLiteral("XYScanner.X_Retrace")).toBool();
    const bool yRetrace = p.values.value(QStringLiteral("XYScanner.Y_Retrace")).toBool();
    if (!QSciImage::sizeFits(points, lines))
        return false;
    const quint64 stored = valuesLength / 4;
    const quint64 available = qMin<quint64>(stored, captured ? captured : stored);
    // A parameter file that promises far more than the data file holds would only make a giant empty item.
    const quint64 expected = quint64(points) * quint64(lines) * (xRetrace ? 2 : 1) * (yRetrace ? 2 : 1);
    if (expected > 16 * stored + (1u << 20))
        return false;

    Transfer transfer;
    if (p.channelIds.contains(channelName))
        transfer = p.transfers.value(p.channelIds.value(channelName));
    const auto param = [&](const QString& key, double fallback) {
        const double v = transfer.parameters.value(key, fallback);
        return std::isfinite(v) ? v : fallback;
    };
    double scale = 1, add = 0;
    if (transfer.function == QStringLiteral("TFF_Linear1D")) {
        const double factor = param(QStringLiteral("Factor"), 1);
        scale = factor != 0 ? 1 / factor : 1;
        add = -param(QStringLiteral("Offset"), 0) * scale;
    } else if (transfer.function == QStringLiteral("TFF_MultiLinear1D")) {
        const double denominator = param(QStringLiteral("NeutralFactor"), 1) * param(QStringLiteral("PreFactor"), 1);
        scale = denominator != 0
            ? (param(QStringLiteral("Raw_1"), 0) - param(QStringLiteral("PreOffset"), 0)) / denominator
            : 1;
        add = -param(QStringLiteral("Offset"), 0) * scale;
    }
    const double zoom
        = p.number(QStringLiteral("XYScanner.Zoom"), 1) > 0 ? p.number(QStringLiteral("XYScanner.Zoom"), 1) : 1;
    const double sizeX = p.number(QStringLiteral("XYScanner.Width"), points) / zoom;
    const double sizeY = p.number(QStringLiteral("XYScanner.Height"), lines) / zoom;
    const double offsetX = p.number(QStringLiteral("XYScanner.X_Offset"), 0);
    const double offsetY = p.number(QStringLiteral("XYScanner.Y_Offset"), 0);

    QList<QPair<QString, QString>> common;
    common.append({ QStringLiteral("Date"),
        QDateTime::fromSecsSinceEpoch(qint64(qMin<quint64>(timeStamp, 1ull << 40)), Qt::UTC).toString(Qt::ISODate) });
    common.append({ QStringLiteral("Bias"),
        ImportSupport::withUnit(p.number(QStringLiteral("GapVoltageControl.Voltage"), 0), QStringLiteral("V")) });
    common.append({ QStringLiteral("Setpoint"),
        ImportSupport::withUnit(p.number(QStringLiteral("Regulator.Setpoint_1"), 0), QStringLiteral("A")) });
    common.append({ QStringLiteral("Scan size"),
        ImportSupport::withUnit(sizeX, QStringLiteral("m")) + QStringLiteral(" x ")
            + ImportSupport::withUnit(sizeY, QStringLiteral("m")) });
    common.append({ QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(points).arg(lines) });
    common.append({ QStringLiteral("Scan angle"),
        ImportSupport::withUnit(p.number(QStringLiteral("XYScanner.Angle"), 0), QStringLiteral("deg")) });
    common.append({ QStringLiteral("Software"), p.version });
    common.append(
        { QStringLiteral("Preamp range"), p.values.value(QStringLiteral("Regulator.Preamp_Range_1")).toString() });
    common.append({ QStringLiteral("Raster time"),
        ImportSupport::withUnit(p.number(QStringLiteral("XYScanner.Raster_Time"), 0), QStringLiteral("s")) });
    common.append({ QStringLiteral("X offset"), ImportSupport::withUnit(offsetX, QStringLiteral("m")) });
    common.append({ QStringLiteral("Y offset"), ImportSupport::withUnit(offsetY, QStringLiteral("m")) });
    common.append({ QStringLiteral("Captured values"), QStringLiteral("%1 of %2").arg(captured).arg(intended) });

    const int xPasses = xRetrace ? 2 : 1;
    const quint64 lineValues = quint64(points) * quint64(xPasses);
    for (int pass = 0; pass < (yRetrace ? 2 : 1); ++pass) {
        for (int trace = 0; trace < xPasses; ++trace) {
            const quint64 passStart = quint64(pass) * lineValues * quint64(lines);
            // An aborted scan: nothing of this image was captured.
            if (passStart >= available)
                continue;
            ImportedChannel channel;
            channel.width = points;
            channel.height = lines;
            const bool retrace = trace == 1;
            const bool up = pass == 0;
            const QString direction = retrace ? QStringLiteral("backward") : QStringLiteral("forward");
            channel.title = QStringLiteral("%1 %2 %3")
                                .arg(channelName, retrace ? QStringLiteral("retrace") : QStringLiteral("trace"),
                                    up ? QStringLiteral("up") : QStringLiteral("down"));
            channel.sciValues.zUnit = transfer.unit;
            ImportSupport::placeRaster(channel, !up, retrace, [&](qsizetype i) {
                const quint64 row = quint64(i) / quint64(points);
                const quint64 column = quint64(i) % quint64(points);
                const quint64 index = passStart + row * lineValues + quint64(trace) * quint64(points) + column;
                return index < available ? r.at<qint32>(valuesOffset + 4 * index) * scale + add : std::nan("");
            });
            ImportSupport::setGeometry(
                channel, sizeX, sizeY, QStringLiteral("m"), offsetX - sizeX / 2, offsetY - sizeY / 2);
            channel.header = { { QStringLiteral("Channel"), channelName }, { QStringLiteral("Direction"), direction },
                { QStringLiteral("Scan direction"), up ? QStringLiteral("up") : QStringLiteral("down") } };
            channel.header += common;
            file->channels.append(channel);
        }
    }
    message->clear();
    return true;
}
