#include "omicronflatimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QDateTime>
#include <QHash>
#include <cmath>

namespace {

class FlatReader {
public:
    explicit FlatReader(const ByteReader& r)
        : m_r(r)
    {
    }
    quint64 pos = 8;
    bool ok = true;

    template <typename T> T number()
    {
        T value {};
        if (!m_r.read(pos, &value))
            ok = false;
        pos += sizeof(T);
        return value;
    }
    QString text()
    {
        const quint32 chars = number<quint32>();
        QString result;
        if (!ok || !m_r.utf16(pos, chars, &result))
            ok = false;
        pos += 2 * quint64(chars);
        return result;
    }

private:
    const ByteReader& m_r;
};

struct Axis {
    QString name, unit;
    quint32 clocks = 0;
    double start = 0, increment = 0;
    bool mirrored = false;
    quint32 tableSets = 0;
};

} // namespace

bool OmicronFlatImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("FLAT0100");
}

bool OmicronFlatImporter::read(const QByteArray& data, const QString&, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    FlatReader f(r);
    *message = ImportSupport::corrupted();
    if (!data.startsWith("FLAT0100"))
        return false;
    const quint32 axisCount = f.number<quint32>();
    if (!f.ok || axisCount > 16)
        return false;
    QList<Axis> axes;
    for (quint32 a = 0; a < axisCount && f.ok; ++a) {
        Axis axis;
        axis.name = f.text();
        f.text(); // parent axis
        axis.unit = f.text();
        axis.clocks = f.number<quint32>();
        f.number<qint32>(); // raw start
        f.number<qint32>(); // raw increment
        axis.start = f.number<double>();
        axis.increment = f.number<double>();
        axis.mirrored = f.number<qint32>() != 0;
        axis.tableSets = f.number<quint32>();
        if (axis.tableSets > 1024)
            return false;
        for (quint32 t = 0; t < axis.tableSets && f.ok; ++t) {
            f.text();
            const quint32 n = f.number<quint32>();
            if (!r.fits(f.pos, n, 12))
                return false;
            f.pos += 12 * quint64(n);
        }
        axes << axis;
    }
    const QString channelName = f.text();
    const QString function = f.text();
    const QString unit = f.text();
    const quint32 parameterCount = f.number<quint32>();
    if (!f.ok || parameterCount > 1024)
        return false;
    QHash<QString, double> parameters;
    for (quint32 i = 0; i < parameterCount && f.ok; ++i) {
        const QString key = f.text();
        parameters.insert(key, f.number<double>());
    }
    const quint32 viewCount = f.number<quint32>();
    if (!f.ok || !r.fits(f.pos, viewCount, 4))
        return false;
    f.pos += 4 * quint64(viewCount);
    const quint64 timeStamp = f.number<quint64>();
    f.text(); // creation info
    f.number<quint32>(); // full size
    const quint32 stored = f.number<quint32>();
    if (!f.ok || !r.fits(f.pos, stored, 4))
        return false;
    const quint64 values = f.pos;

    if (axes.size() < 2 || !axes.at(0).name.endsWith(QStringLiteral("X"))
        || !axes.at(1).name.endsWith(QStringLiteral("Y")) || axes.at(0).tableSets || axes.at(1).tableSets) {
        *message = ImportSupport::noImageData();
        return false;
    }
    const Axis& ax = axes.at(0);
    const Axis& ay = axes.at(1);
    const int w = int(ax.clocks / (ax.mirrored ? 2 : 1));
    const int h = int(ay.clocks / (ay.mirrored ? 2 : 1));
    // Missing values of an aborted scan are allowed, a raster far beyond the data is not.
    if (!QSciImage::sizeFits(w, h) || quint64(w) * quint64(h) > 16 * quint64(stored) + (1u << 20))
        return false;

    const auto param = [&](const char* key, double fallback) {
        const double v = parameters.value(QLatin1String(key), fallback);
        return std::isfinite(v) ? v : fallback;
    };
    double scale = 1, add = 0;
    if (function == QStringLiteral("TFF_Linear1D")) {
        const double factor = param("Factor", 1);
        scale = factor != 0 ? 1 / factor : 1;
        add = -param("Offset", 0) * scale;
    } else if (function == QStringLiteral("TFF_MultiLinear1D")) {
        const double denominator = param("NeutralFactor", 1) * param("PreFactor", 1);
        scale = denominator != 0 ? (param("Raw_1", 0) - param("PreOffset", 0)) / denominator : 1;
        add = -param("Offset", 0) * scale;
    }
    double xyFactor = 1;
    const QString xyUnit = ImportSupport::baseUnit(ax.unit, &xyFactor);
    const double sizeX = w * std::abs(ax.increment) * xyFactor;
    const double sizeY = h * std::abs(ay.increment) * xyFactor;
    const quint64 lineValues = quint64(w) * (ax.mirrored ? 2 : 1);
    const QString date
        = QDateTime::fromSecsSinceEpoch(qint64(qMin<quint64>(timeStamp, 1ull << 40)), Qt::UTC).toString(Qt::ISODate);

    for (int pass = 0; pass < (ay.mirrored ? 2 : 1); ++pass) {
        for (int trace = 0; trace < (ax.mirrored ? 2 : 1); ++trace) {
            const quint64 passStart = quint64(pass) * lineValues * quint64(h);
            if (passStart >= stored)
                continue;
            ImportedChannel channel;
            channel.width = w;
            channel.height = h;
            const bool retrace = trace == 1;
            const bool up = pass == 0;
            channel.title = QStringLiteral("%1 %2 %3")
                                .arg(channelName, retrace ? QStringLiteral("retrace") : QStringLiteral("trace"),
                                    up ? QStringLiteral("up") : QStringLiteral("down"));
            channel.sciValues.zUnit = unit;
            ImportSupport::placeRaster(channel, !up, retrace, [&](qsizetype i) {
                const quint64 index = passStart + quint64(i) / quint64(w) * lineValues + quint64(trace) * quint64(w)
                    + quint64(i) % quint64(w);
                return index < stored ? r.at<qint32>(values + 4 * index) * scale + add : std::nan("");
            });
            ImportSupport::setGeometry(channel, sizeX, sizeY, xyUnit, ax.start * xyFactor, ay.start * xyFactor);
            channel.header = { { QStringLiteral("Channel"), channelName },
                { QStringLiteral("Direction"), retrace ? QStringLiteral("backward") : QStringLiteral("forward") },
                { QStringLiteral("Scan direction"), up ? QStringLiteral("up") : QStringLiteral("down") },
                { QStringLiteral("Date"), date },
                { QStringLiteral("Scan size"),
                    ImportSupport::withUnit(sizeX, xyUnit) + QStringLiteral(" x ")
                        + ImportSupport::withUnit(sizeY, xyUnit) },
                { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(w).arg(h) },
                { QStringLiteral("Transfer function"), function },
                { QStringLiteral("Stored values"), QString::number(stored) } };
            file->channels.append(channel);
        }
    }
    message->clear();
    return true;
}
