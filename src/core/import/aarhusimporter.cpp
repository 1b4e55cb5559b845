#include "aarhusimporter.h"

#include "core/import/bytereader.h"
#include "core/import/importsupport.h"

namespace {

constexpr quint64 Block = 128;

QString fixedText(const ByteReader& r, quint64 lengthOffset)
{
    const int length = qMin<int>(r.at<quint8>(lengthOffset), 20);
    return QString::fromLatin1(r.data() + lengthOffset + 1, length).trimmed();
}

} // namespace

bool AarhusImporter::recognises(const QByteArray& head, const QString& path) const
{
    // The .flm has no index, so only its name and a sane first record say what it is.
    if (head.startsWith(QByteArray("\x01\x00\x03\x00\x00\x00", 6)))
        return path.endsWith(QStringLiteral(".mul"), Qt::CaseInsensitive);
    return false;
}

bool AarhusImporter::read(const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const
{
    const ByteReader r(data);
    *message = ImportSupport::corrupted();
    if (r.size() < Block || r.size() % Block != 0)
        return false;
    const bool film = path.endsWith(QStringLiteral(".flm"), Qt::CaseInsensitive);
    const quint64 blocks = r.size() / Block;
    int skipped = 0;
    // Records follow one another from block 3 (after the .mul index) or 0 (.flm); walking them by their own
    // size reaches images the index may not list.
    quint64 block = film ? 0 : 3;
    while (block < blocks) {
        const quint64 o = block * Block;
        const qint16 number = r.at<qint16>(o);
        const qint16 size = r.at<qint16>(o + 2);
        const qint16 xres = r.at<qint16>(o + 4);
        const qint16 yres = r.at<qint16>(o + 6);
        if (size < 1 || quint64(size) > blocks - block)
            return false;
        if (xres < 1 || yres < 1 || Block + 2 * quint64(xres) * quint64(yres) > quint64(size) * Block)
            return false;
        const qint16 mode = r.at<qint16>(o + 86);
        block += quint64(size);
        if (mode >= 2 && mode <= 7) {
            ++skipped;
            continue;
        }
        auto field = [&](int offset) { return r.at<qint16>(o + quint64(offset)); };
        const double zscale = field(30);
        const double currfac = field(88);
        const double bias = -10.0 * field(36) / 32768.0;
        const double setpoint = field(38) * currfac * 0.01e-9;
        const double sizeX = field(22) * 1e-10, sizeY = field(24) * 1e-10;
        const QString date = QStringLiteral("%1-%2-%3 %4:%5:%6")
                                 .arg(field(10))
                                 .arg(field(12), 2, 10, QLatin1Char('0'))
                                 .arg(field(14), 2, 10, QLatin1Char('0'))
                                 .arg(field(16), 2, 10, QLatin1Char('0'))
                                 .arg(field(18), 2, 10, QLatin1Char('0'))
                                 .arg(field(20), 2, 10, QLatin1Char('0'));
        ImportedChannel channel;
        channel.width = xres;
        channel.height = yres;
        const quint64 base = o + Block;
        QString signal;
        if (mode == 1) {
            signal = QStringLiteral("Current");
            channel.sciValues.zUnit = QStringLiteral("A");
            const double f = currfac * 10e-9 / 32768.0;
            ImportSupport::placeRaster(
                channel, false, false, [&](qsizetype i) { return r.at<quint16>(base + 2 * quint64(i)) * f; });
        } else if (mode == 8) {
            signal = QStringLiteral("Voltage");
            channel.sciValues.zUnit = QStringLiteral("V");
            ImportSupport::placeRaster(channel, false, false,
                [&](qsizetype i) { return -10.0 * r.at<qint16>(base + 2 * quint64(i)) / 32768.0; });
        } else {
            signal = QStringLiteral("Topography");
            channel.sciValues.zUnit = QStringLiteral("m");
            // The minus sign belongs to the instrument's scale.
            const double f = -0.1 / 1.36 * zscale / 200.0 * 1e-10;
            ImportSupport::placeRaster(
                channel, false, false, [&](qsizetype i) { return r.at<qint16>(base + 2 * quint64(i)) * f; });
        }
        channel.title = film ? QStringLiteral("%1 frame %2").arg(signal).arg(number)
                             : QStringLiteral("%1 image %2").arg(signal).arg(number);
        ImportSupport::setGeometry(channel, sizeX, sizeY, QStringLiteral("m"), field(26) * 1e-10, field(28) * 1e-10);
        channel.header = { { QStringLiteral("Channel"), signal },
            { QStringLiteral("Direction"), QStringLiteral("forward") }, { QStringLiteral("Date"), date },
            { QStringLiteral("Bias"), ImportSupport::withUnit(bias, QStringLiteral("V")) },
            { QStringLiteral("Setpoint"), ImportSupport::withUnit(setpoint, QStringLiteral("A")) },
            { QStringLiteral("Scan size"),
                ImportSupport::withUnit(sizeX, QStringLiteral("m")) + QStringLiteral(" x ")
                    + ImportSupport::withUnit(sizeY, QStringLiteral("m")) },
            { QStringLiteral("Pixels"), QStringLiteral("%1 x %2").arg(xres).arg(yres) },
            { QStringLiteral("Scan angle"), ImportSupport::withUnit(field(32), QStringLiteral("deg")) },
            { QStringLiteral("Comment"), fixedText(r, o + 61) },
            { QStringLiteral("Image number"), QString::number(number) },
            { QStringLiteral("Sample"), fixedText(r, o + 40) },
            { QStringLiteral("Scan duration"), ImportSupport::withUnit(field(34) / 100.0, QStringLiteral("s")) },
            { QStringLiteral("Z scale"), ImportSupport::withUnit(zscale, QStringLiteral("V")) },
            { QStringLiteral("Current factor"), QString::number(currfac) },
            { QStringLiteral("Mode"), QString::number(mode) },
            { QStringLiteral("Gain"), QString::number(field(96 + 2 * 12)) },
            { QStringLiteral("Version"), QString::number(field(94)) } };
        file->channels.append(channel);
    }
    if (skipped > 0)
        file->skipped.append(QStringLiteral("%1 spectroscopic images").arg(skipped));
    message->clear();
    return true;
}
