#include "filepreview.h"

#include "core/base/messages.h"
#include "core/display/colorgradient.h"
#include "core/display/colorrange.h"
#include "core/display/siscale.h"
#include "core/import/instrumentimporter.h"
#include "core/import/instrumentimporters.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFileInfo>
#include <QCoreApplication>
#include <cmath>
#include <vector>

namespace {

QString nativeFormat()
{
    return QCoreApplication::translate("FilePreview", "Native item");
}

/** The least-squares plane a + b*x + c*y through the finite points; flat 0 when they do not fix one. */
void fitPlane(const double* z, int width, int height, double* a, double* b, double* c)
{
    // Sums about the centre keep the normal equations well conditioned on large scans.
    const double cx = (width - 1) / 2.0, cy = (height - 1) / 2.0;
    double n = 0, sx = 0, sy = 0, sz = 0, sxx = 0, syy = 0, sxy = 0, sxz = 0, syz = 0;
    for (int x = 0; x < width; ++x) {
        const double* column = z + qsizetype(x) * height;
        const double dx = x - cx;
        for (int y = 0; y < height; ++y) {
            const double v = column[y];
            if (!std::isfinite(v))
                continue;
            const double dy = y - cy;
            n += 1;
            sx += dx;
            sy += dy;
            sz += v;
            sxx += dx * dx;
            syy += dy * dy;
            sxy += dx * dy;
            sxz += dx * v;
            syz += dy * v;
        }
    }
    *a = *b = *c = 0;
    if (n < 1)
        return;
    // Cramer's rule on the 3x3 normal equations.
    const double det = n * (sxx * syy - sxy * sxy) - sx * (sx * syy - sxy * sy) + sy * (sx * sxy - sxx * sy);
    if (std::abs(det) < 1e-12 * std::max(1.0, n * sxx * syy)) {
        *a = sz / n;
        return;
    }
    const double a0
        = (sz * (sxx * syy - sxy * sxy) - sx * (sxz * syy - sxy * syz) + sy * (sxz * sxy - sxx * syz)) / det;
    *b = (n * (sxz * syy - sxy * syz) - sz * (sx * syy - sxy * sy) + sy * (sx * syz - sxz * sy)) / det;
    *c = (n * (sxx * syz - sxz * sxy) - sx * (sx * syz - sxz * sy) + sz * (sx * sxy - sxx * sy)) / det;
    *a = a0 - *b * cx - *c * cy;
}

/**
 * The z-matrix (column by column, rows from the bottom) levelled by a plane, shrunk to fit ThumbnailSize by
 * averaging boxes of points, and coloured. The plane is taken off before averaging: boxes of uneven width
 * would otherwise turn a steep tilt into stripes.
 */
QImage thumbnailFromZ(const double* z, int width, int height)
{
    double pa, pb, pc;
    fitPlane(z, width, height, &pa, &pb, &pc);
    const int side = FilePreview::ThumbnailSize;
    const double scale = std::max(1.0, double(std::max(width, height)) / side);
    const int tw = std::max(1, int(std::lround(width / scale)));
    const int th = std::max(1, int(std::lround(height / scale)));
    std::vector<double> sum(size_t(tw) * th, 0.0);
    std::vector<int> count(size_t(tw) * th, 0);
    for (int x = 0; x < width; ++x) {
        const int tx = std::min(tw - 1, int(x / scale));
        const double* column = z + qsizetype(x) * height;
        const double base = pa + pb * x;
        for (int y = 0; y < height; ++y) {
            if (!std::isfinite(column[y]))
                continue;
            const size_t t = size_t(tx) * th + size_t(std::min(th - 1, int(y / scale)));
            sum[t] += column[y] - base - pc * y;
            ++count[t];
        }
    }
    double mean = 0;
    qsizetype finite = 0;
    for (size_t i = 0; i < sum.size(); ++i) {
        if (count[i]) {
            sum[i] /= count[i];
            mean += sum[i];
            ++finite;
        }
    }
    mean = finite ? mean / double(finite) : 0;
    // Unmeasured boxes take the mean, so the colours are not thrown off by them.
    for (size_t i = 0; i < sum.size(); ++i)
        if (!count[i])
            sum[i] = mean;
    double low = 0, high = 0;
    ColorRange::cutLimits(sum.data(), qsizetype(sum.size()), 0.5, &low, &high);
    const ColorGradient gradient;
    QImage image(tw, th, QImage::Format_ARGB32);
    for (int y = 0; y < th; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(th - 1 - y));
        for (int x = 0; x < tw; ++x)
            line[x] = gradient.colorAt(sum[size_t(x) * th + y], low, high);
    }
    return image;
}

QImage shrink(const QImage& picture)
{
    const int side = FilePreview::ThumbnailSize;
    if (picture.width() <= side && picture.height() <= side)
        return picture.convertToFormat(QImage::Format_ARGB32);
    return picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

void fillFromItem(FilePreview& preview, const QSciImage& item)
{
    preview.width = item.width();
    preview.height = item.height();
    preview.xSize = item.sciValues().sizeX;
    preview.ySize = item.sciValues().sizeY;
    preview.xUnit = item.sciValues().xUnit;
    preview.yUnit = item.sciValues().yUnit;
    double low = 0, high = 0;
    item.zRange(&low, &high);
    // A blank or drawn item has nothing in z: its picture is what the user knows it by.
    if (!(high > low))
        preview.thumbnail = shrink(item.picture());
    else
        preview.thumbnail = thumbnailFromZ(item.zData(), item.width(), item.height());
}

} // namespace

bool FilePreview::isBrowsable(const QString& path)
{
    return !formatOf(path).isEmpty();
}

QStringList FilePreview::formatNames()
{
    QStringList names { nativeFormat() };
    for (const InstrumentImporter* importer : InstrumentImporters::all())
        if (!names.contains(importer->name()))
            names.append(importer->name());
    return names;
}

QString FilePreview::formatOf(const QString& path)
{
    if (ItemFile::isNativeFileName(path))
        return nativeFormat();
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix.isEmpty())
        return QString();
    for (const InstrumentImporter* importer : InstrumentImporters::all())
        if (importer->suffixes().contains(suffix))
            return importer->name();
    return QString();
}

FilePreview FilePreview::make(const QString& path)
{
    FilePreview preview;
    preview.path = path;
    const QFileInfo info(path);
    preview.modified = info.lastModified();
    preview.format = formatOf(path);
    if (!info.isFile()) {
        preview.message = Messages::fileDoesNotExist(path);
        return preview;
    }
    if (ItemFile::isNativeFileName(path)) {
        QSciImage item;
        if (!ItemFile::load(item, path, false, false, &preview.message))
            return preview;
        preview.channels = QStringList { item.name() };
        fillFromItem(preview, item);
        preview.ok = true;
        return preview;
    }
    InstrumentFile file;
    if (!InstrumentImporters::readFile(path, &file, &preview.message))
        return preview;
    preview.format = file.format.isEmpty() ? preview.format : file.format;
    for (const ImportedChannel& channel : qAsConst(file.channels))
        preview.channels.append(channel.title);
    const ImportedChannel& first = file.channels.first();
    preview.width = first.width;
    preview.height = first.height;
    preview.xSize = first.sciValues.sizeX;
    preview.ySize = first.sciValues.sizeY;
    preview.xUnit = first.sciValues.xUnit;
    preview.yUnit = first.sciValues.yUnit;
    if (!first.picture.isNull())
        preview.thumbnail = shrink(first.picture);
    else if (first.z.size() == qsizetype(first.width) * first.height)
        preview.thumbnail = thumbnailFromZ(first.z.constData(), first.width, first.height);
    preview.ok = true;
    return preview;
}

QString FilePreview::sizeText() const
{
    if (!ok)
        return QString();
    QString text = QStringLiteral("%1 x %2").arg(width).arg(height);
    if (xSize > 0 && ySize > 0) {
        const SiScale::Scaled scaled = SiScale::forMagnitude(std::max(xSize, ySize), xUnit);
        text += QStringLiteral(", %1 x %2 %3")
                    .arg(xSize * scaled.factor, 0, 'g', 4)
                    .arg(ySize * scaled.factor, 0, 'g', 4)
                    .arg(scaled.unit)
                    .trimmed();
    }
    return text;
}
