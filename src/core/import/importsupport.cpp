#include "importsupport.h"

#include "core/base/messages.h"

#include <QLocale>

QString ImportSupport::corrupted()
{
    return Messages::tr("File corrupted.");
}

QString ImportSupport::noImageData()
{
    return Messages::tr("no image data");
}

QString ImportSupport::baseUnit(const QString& unit, double* factor)
{
    const QString u = unit.trimmed();
    *factor = 1;
    if (u.isEmpty())
        return u;
    if (u == QStringLiteral("Å") || u == QStringLiteral("A°") || u == QStringLiteral("Angstrom")) {
        *factor = 1e-10;
        return QStringLiteral("m");
    }
    if (u == QStringLiteral("º") || u == QStringLiteral("°") || u == QStringLiteral("Degree"))
        return QStringLiteral("deg");
    static const QStringList bases { QStringLiteral("m"), QStringLiteral("A"), QStringLiteral("V"),
        QStringLiteral("Hz"), QStringLiteral("N"), QStringLiteral("s"), QStringLiteral("W"), QStringLiteral("A/V"),
        QStringLiteral("N/m") };
    if (u.size() >= 2 && bases.contains(u.mid(1))) {
        static const QString prefixes = QStringLiteral("fpnuµμ~mkMG");
        static const double factors[] = { 1e-15, 1e-12, 1e-9, 1e-6, 1e-6, 1e-6, 1e-6, 1e-3, 1e3, 1e6, 1e9 };
        const int p = prefixes.indexOf(u.at(0));
        if (p >= 0) {
            *factor = factors[p];
            return u.mid(1);
        }
    }
    return u;
}

double ImportSupport::number(const QString& text, bool* ok)
{
    return QLocale::c().toDouble(text.trimmed(), ok);
}

QString ImportSupport::withUnit(double value, const QString& unit)
{
    const QString number = QString::number(value, 'g', 6);
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

void ImportSupport::setGeometry(
    ImportedChannel& channel, double sizeX, double sizeY, const QString& xyUnit, double offsetX, double offsetY)
{
    QSciImage::SciValues& v = channel.sciValues;
    v.sizeX = std::isfinite(sizeX) && sizeX > 0 ? sizeX : channel.width;
    v.sizeY = std::isfinite(sizeY) && sizeY > 0 ? sizeY : channel.height;
    v.xUnit = xyUnit;
    v.yUnit = xyUnit;
    v.offsetX = std::isfinite(offsetX) ? offsetX : 0;
    v.offsetY = std::isfinite(offsetY) ? offsetY : 0;
    v.xUnitPerPixel = channel.width > 0 ? v.sizeX / channel.width : 1;
    v.yUnitPerPixel = channel.height > 0 ? v.sizeY / channel.height : 1;
}

void ImportSupport::fillMissing(ImportedChannel& channel)
{
    double sum = 0;
    qsizetype valid = 0;
    for (double value : qAsConst(channel.z)) {
        if (std::isfinite(value)) {
            sum += value;
            ++valid;
        }
    }
    const qsizetype missing = channel.z.size() - valid;
    if (missing == 0)
        return;
    const double mean = valid ? sum / double(valid) : 0;
    for (double& value : channel.z) {
        if (!std::isfinite(value))
            value = mean;
    }
    channel.header.append({ QStringLiteral("Missing points"), QString::number(missing) });
}

bool ImportSupport::rasterFits(qint64 width, qint64 height, quint64 bytesPerValue, quint64 available, QString* message)
{
    if (!QSciImage::sizeFits(width, height)) {
        *message = corrupted();
        return false;
    }
    if (quint64(width) * quint64(height) > available / bytesPerValue) {
        *message = corrupted();
        return false;
    }
    return true;
}
