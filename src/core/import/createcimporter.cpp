#include "createcimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <cmath>
#include <zlib.h>

namespace {

constexpr int HeaderSize = 16384;

/** Keys by the part before " / " and by the whole text; the first occurrence wins. */
class CreatecHeader {
public:
    explicit CreatecHeader(const QByteArray& text)
    {
        const QList<QByteArray> lines = text.split('\n');
        for (QByteArray line : lines) {
            line = line.trimmed();
            const int eq = line.indexOf('=');
            if (eq <= 0)
                continue;
            const QString key = QString::fromLatin1(line.left(eq)).trimmed();
            const QString value = QString::fromLatin1(line.mid(eq + 1)).trimmed();
            const QString shortKey = key.section(QStringLiteral(" / "), 0, 0).trimmed();
            if (shortKey.isEmpty())
                continue;
            if (!m_values.contains(shortKey)) {
                m_values.insert(shortKey, value);
                m_order.append({ key, value });
            }
            if (!m_values.contains(key))
                m_values.insert(key, value);
        }
    }
    QString text(const QString& key) const { return m_values.value(key); }
    double number(const QString& key, double fallback) const
    {
        bool ok = false;
        const double value = ImportSupport::number(m_values.value(key), &ok);
        return ok && std::isfinite(value) ? value : fallback;
    }
    const QList<QPair<QString, QString>>& entries() const { return m_order; }

private:
    QHash<QString, QString> m_values;
    QList<QPair<QString, QString>> m_order;
};

/**
 * Inflates at most @p limit bytes; the padding after the images is not needed. The buffer grows with what the
 * stream really yields, so a header that claims huge images costs nothing before the data run out.
 */
bool inflateLimited(const char* data, qint64 size, qint64 limit, QByteArray* out)
{
    z_stream stream {};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    stream.avail_in = uInt(size);
    out->clear();
    qint64 produced = 0;
    int status = Z_OK;
    while (status == Z_OK && produced < limit) {
        const qint64 step = qMin<qint64>(limit - produced, qMax<qint64>(qint64(1) << 20, produced));
        out->resize(int(produced + step));
        stream.next_out = reinterpret_cast<Bytef*>(out->data() + produced);
        stream.avail_out = uInt(step);
        status = inflate(&stream, Z_NO_FLUSH);
        produced += step - stream.avail_out;
    }
    inflateEnd(&stream);
    out->resize(int(produced));
    return produced == limit;
}

QString signalName(int bit)
{
    switch (bit) {
    case 0:
        return QStringLiteral("Topography");
    case 1:
        return QStringLiteral("Current");
    default:
        return QStringLiteral("ADC%1").arg(bit);
    }
}

} // namespace

bool CreatecImporter::recognises(const QByteArray& head, const QString&) const
{
    return head.startsWith("[Parameter]") || head.startsWith("[Paramet32]") || head.startsWith("[Paramco32]");
}

bool CreatecImporter::read(const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const
{
    const bool compressed = data.startsWith("[Paramco32]");
    const bool int16 = data.startsWith("[Parameter]");
    if (data.size() < 64) {
        *message = ImportSupport::corrupted();
        return false;
    }
    // Genuine files put "DATA" right before byte 16384; anonymised ones end the header earlier.
    qint64 dataStart = -1;
    if (data.size() >= HeaderSize && data.mid(HeaderSize - 4, 4) == "DATA")
        dataStart = HeaderSize;
    else {
        const int marker = data.indexOf("\nDATA");
        if (marker >= 0 && marker < HeaderSize + 64)
            dataStart = marker + 5;
    }
    if (dataStart < 0) {
        if (!compressed && data.size() >= HeaderSize)
            dataStart = HeaderSize;
        else {
            *message = ImportSupport::corrupted();
            return false;
        }
    }
    const CreatecHeader header(data.left(int(qMin<qint64>(dataStart, HeaderSize))));
    const int nx = int(header.number(QStringLiteral("Num.X"), 0));
    const int ny = int(header.number(QStringLiteral("Num.Y"), 0));
    const int count = int(header.number(QStringLiteral("Channels"), 1));
    if (nx < 1 || ny < 1 || count < 1 || count > 1024 || !QSciImage::sizeFits(nx, ny)) {
        *message = ImportSupport::corrupted();
        return false;
    }
    const quint64 valueSize = int16 ? 2 : 4;
    const quint64 imageBytes = quint64(nx) * quint64(ny) * valueSize;
    const quint64 needed = 4 + imageBytes * quint64(count);

    QByteArray payload;
    if (compressed) {
        // Deflate cannot expand more than ~1032:1; a header that claims more than that is lying.
        if (needed / 1032 > quint64(data.size()) || needed > quint64(0x7FFFFFF0)
            || !inflateLimited(data.constData() + dataStart, data.size() - dataStart, qint64(needed), &payload)) {
            *message = ImportSupport::corrupted();
            return false;
        }
    } else {
        // Raw variants keep 2 or 4 unused bytes before the first value, as the compressed payload does.
        payload = data.mid(int(dataStart));
        if (int16)
            payload.prepend(QByteArray(2, '\0'));
    }
    const ByteReader reader(payload);
    if (!reader.fits(4, quint64(count), imageBytes)) {
        *message = ImportSupport::corrupted();
        return false;
    }

    const QString dacType = header.text(QStringLiteral("DAC-Type"));
    int bits = QRegularExpression(QStringLiteral("^(\\d+)")).match(dacType).captured(1).toInt();
    if (bits < 8 || bits > 32)
        bits = 20;
    const double volts = 20.0 / std::pow(2.0, bits);
    const double gainX = header.number(QStringLiteral("GainX"), 10);
    const double gainY = header.number(QStringLiteral("GainY"), 10);
    const double gainZ = header.number(QStringLiteral("GainZ"), 10);
    const double piezoX = header.number(QStringLiteral("Xpiezoconst"), header.number(QStringLiteral("XPiezoconst"), 1));
    const double piezoY = header.number(QStringLiteral("YPiezoconst"), header.number(QStringLiteral("Ypiezoconst"), 1));
    const double piezoZ = header.number(QStringLiteral("ZPiezoconst"), header.number(QStringLiteral("Zpiezoconst"), 1));
    const double sizeX = nx * header.number(QStringLiteral("Delta X"), 1) * volts * gainX * piezoX * 1e-10;
    const double sizeY = ny * header.number(QStringLiteral("Delta Y"), 1) * volts * gainY * piezoY * 1e-10;
    const double centreX = header.number(QStringLiteral("Scanrotoffx"), 0) * volts * gainX * piezoX * 1e-10;
    const double centreY = header.number(QStringLiteral("Scanrotoffy"), 0) * volts * gainY * piezoY * 1e-10;
    const double zPerUnit = volts * gainZ * piezoZ * 1e-10 / (int16 ? 65536.0 : 1.0);
    const double amperePerUnit = volts / std::pow(10.0, header.number(QStringLiteral("Gainpreamp"), 9));

    QList<int> signalBits;
    const quint32 selected = quint32(header.number(QStringLiteral("Channelselectval"), 1));
    for (int bit = 0; bit < 32; ++bit) {
        if (selected & (1u << bit))
            signalBits.append(bit);
    }
    if (signalBits.isEmpty())
        signalBits.append(0);

    QList<QPair<QString, QString>> common;
    const QString bias = header.text(QStringLiteral("BiasVoltage"));
    common.append({ QStringLiteral("Bias"),
        (bias.isEmpty() ? header.text(QStringLiteral("Biasvolt[mV]")) : bias) + QStringLiteral(" mV") });
    common.append({ QStringLiteral("Setpoint"), header.text(QStringLiteral("SetPoint")) });
    // Createc keeps the date only in the file name: A yymmdd.hhmmss.dat
    const QRegularExpressionMatch date
        = QRegularExpression(QStringLiteral("^A(\\d\\d)(\\d\\d)(\\d\\d)\\.(\\d\\d)(\\d\\d)(\\d\\d)"))
              .match(QFileInfo(path).fileName());
    if (date.hasMatch()) {
        common.append({ QStringLiteral("Date"),
            QStringLiteral("20%1-%2-%3 %4:%5:%6")
                .arg(date.captured(1), date.captured(2), date.captured(3), date.captured(4), date.captured(5),
                    date.captured(6)) });
    }
    common.append(
        { QStringLiteral("Temperature"), header.text(QStringLiteral("T_AUXADC6[K]")) + QStringLiteral(" K") });
    common.append({ QStringLiteral("Scan size"),
        ImportSupport::withUnit(sizeX, QStringLiteral("m")) + QStringLiteral(" x ")
            + ImportSupport::withUnit(sizeY, QStringLiteral("m")) });
    common.append({ QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(nx).arg(ny) });
    common.append({ QStringLiteral("Scan angle"), header.text(QStringLiteral("Rotation")) + QStringLiteral(" deg") });
    if (!header.text(QStringLiteral("Titel")).isEmpty())
        common.append({ QStringLiteral("Comment"), header.text(QStringLiteral("Titel")) });
    common += header.entries();

    const int signalCount = signalBits.size();
    for (int k = 0; k < count; ++k) {
        ImportedChannel channel;
        channel.width = nx;
        channel.height = ny;
        const int pass = k / signalCount;
        const int bit = signalBits.at(k % signalCount);
        double factor = 1;
        QString unit;
        if (bit == 0) {
            factor = zPerUnit;
            unit = QStringLiteral("m");
        } else if (bit == 1) {
            factor = amperePerUnit;
            unit = QStringLiteral("A");
        }
        const QString direction = pass == 0 ? QStringLiteral("forward") : QStringLiteral("backward");
        channel.title = pass < 2 ? signalName(bit) + QLatin1Char(' ') + direction : QStringLiteral("channel %1").arg(k);
        const quint64 base = 4 + quint64(k) * imageBytes;
        if (int16)
            ImportSupport::placeRaster(
                channel, true, false, [&](qsizetype i) { return reader.at<qint16>(base + 2 * quint64(i)) * factor; });
        else
            ImportSupport::placeRaster(channel, true, false,
                [&](qsizetype i) { return double(reader.at<float>(base + 4 * quint64(i))) * factor; });
        // Rows the scan never reached hold exactly 0; leave them out of min/max like missing points.
        int scannedRows = ny;
        while (scannedRows > 0) {
            const int y = ny - scannedRows; // item row of the last stored row
            bool allZero = true;
            for (int x = 0; x < nx && allZero; ++x)
                allZero = channel.z[qsizetype(x) * ny + y] == 0.0;
            if (!allZero)
                break;
            --scannedRows;
        }
        if (scannedRows > 0 && scannedRows < ny) {
            for (int y = 0; y < ny - scannedRows; ++y) {
                for (int x = 0; x < nx; ++x)
                    channel.z[qsizetype(x) * ny + y] = std::nan("");
            }
            channel.header.append(
                { QStringLiteral("Incomplete scan"), QStringLiteral("%1 of %2 rows").arg(scannedRows).arg(ny) });
        }
        channel.sciValues.zUnit = unit;
        ImportSupport::setGeometry(
            channel, sizeX, sizeY, QStringLiteral("m"), centreX - sizeX / 2, centreY - sizeY / 2);
        channel.header.prepend({ QStringLiteral("Direction"), direction });
        channel.header.prepend({ QStringLiteral("Channel"), signalName(bit) });
        channel.header += common;
        file->channels.append(channel);
    }
    return true;
}
