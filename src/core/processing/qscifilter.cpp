#include "qscifilter.h"

#include "progressiveloop.h"

#include "core/settings/options.h"

#include <QCoreApplication>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("QSciFilter", text);
}

constexpr int MaxKernelSide = 15;

Convolution::Kernel discMean(double radius)
{
    const int r = std::max(0, int(std::floor(radius)));
    Convolution::Kernel k { r, r, std::vector<double>(size_t(2 * r + 1) * (2 * r + 1), 0.0) };
    double count = 0;
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx)
            if (dx * dx + dy * dy <= radius * radius + 1e-9) {
                k.weights[size_t(dy + r) * (2 * r + 1) + dx + r] = 1;
                ++count;
            }
    for (double& v : k.weights)
        v /= count;
    return k;
}

} // namespace

Convolution::Kernel QSciFilter::discMeanKernel(double radius)
{
    return discMean(radius);
}

QString QSciFilter::kindName(Kind kind)
{
    switch (kind) {
    case Kind::Gaussian:
        return tr("Gaussian blur");
    case Kind::Sharpen:
        return tr("Sharpen");
    case Kind::Unsharp:
        return tr("Unsharp mask");
    case Kind::Convolution:
        return tr("Matrix convolution");
    case Kind::Sobel:
        return tr("Edge detection");
    case Kind::Smoothen:
        return tr("Smoothen");
    case Kind::Despike:
        return tr("Peak and surface correction");
    }
    return QString();
}

QString QSciFilter::name() const
{
    return kindName(m_options.kind);
}

void QSciFilter::readSettings()
{
    Options& o = m_options;
    o.kind = Kind(std::clamp(::Options::getInt(QStringLiteral("Filter.kind"), 0), 0, int(Kind::Despike)));
    o.sigma = ::Options::getDouble(QStringLiteral("Filter.sigma"), o.sigma);
    o.amount = ::Options::getDouble(QStringLiteral("Filter.amount"), o.amount);
    Convolution::Kernel kernel;
    if (parseKernel(::Options::getString(QStringLiteral("Filter.kernel"), kernelText(o.kernel)), &kernel))
        o.kernel = kernel;
    o.normalise = ::Options::getBool(QStringLiteral("Filter.normalise"), o.normalise);
    o.direction = Direction(std::clamp(::Options::getInt(QStringLiteral("Filter.direction"), 0), 0, 2));
    o.radius = ::Options::getDouble(QStringLiteral("Filter.radius"), o.radius);
    o.despikeSigma = ::Options::getDouble(QStringLiteral("Filter.despikeSigma"), o.despikeSigma);
}

void QSciFilter::writeSettings() const
{
    const Options& o = m_options;
    ::Options::setInt(QStringLiteral("Filter.kind"), int(o.kind));
    ::Options::setDouble(QStringLiteral("Filter.sigma"), o.sigma);
    ::Options::setDouble(QStringLiteral("Filter.amount"), o.amount);
    ::Options::setString(QStringLiteral("Filter.kernel"), kernelText(o.kernel));
    ::Options::setBool(QStringLiteral("Filter.normalise"), o.normalise);
    ::Options::setInt(QStringLiteral("Filter.direction"), int(o.direction));
    ::Options::setDouble(QStringLiteral("Filter.radius"), o.radius);
    ::Options::setDouble(QStringLiteral("Filter.despikeSigma"), o.despikeSigma);
}

bool QSciFilter::check(int width, int height, bool anySelected, QString* message) const
{
    const Options& o = m_options;
    const bool sane = std::isfinite(o.sigma) && o.sigma >= 0 && o.sigma <= 1000 && std::isfinite(o.amount)
        && std::isfinite(o.radius) && o.radius >= 0 && o.radius <= 1000 && std::isfinite(o.despikeSigma)
        && o.despikeSigma > 0;
    if (!sane) {
        if (message)
            *message = tr("The filter's settings are out of range.");
        return false;
    }
    return QSciEffect::check(width, height, anySelected, message);
}

bool QSciFilter::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    if (!m_options.selectionOnly)
        return compute(input, out, progress);
    if (!input.mask)
        return true;
    const size_t n = size_t(input.width) * input.height;
    std::vector<double> all(n);
    if (!compute(input, all.data(), progress))
        return false;
    for (size_t i = 0; i < n; ++i)
        if (input.mask[i])
            out[i] = all[i];
    return true;
}

bool QSciFilter::compute(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const Options& o = m_options;
    const int w = input.width, h = input.height;
    const size_t n = size_t(w) * h;
    const double* z = input.z;
    switch (o.kind) {
    case Kind::Gaussian: {
        const std::vector<double> g = Convolution::gaussian(o.sigma);
        return Convolution::separable(z, out, w, h, g, g, progress);
    }
    case Kind::Unsharp: {
        const std::vector<double> g = Convolution::gaussian(o.sigma);
        if (!Convolution::separable(z, out, w, h, g, g, progress))
            return false;
        for (size_t i = 0; i < n; ++i)
            out[i] = z[i] + o.amount * (z[i] - out[i]);
        return true;
    }
    case Kind::Sharpen:
        return Convolution::apply(z, out, w, h, { 1, 1, { 0, -1, 0, -1, 5, -1, 0, -1, 0 } }, progress);
    case Kind::Convolution: {
        Convolution::Kernel k = o.kernel;
        double sum = 0;
        for (double v : k.weights)
            sum += v;
        if (o.normalise && sum != 0)
            for (double& v : k.weights)
                v /= sum;
        return Convolution::apply(z, out, w, h, k, progress);
    }
    case Kind::Smoothen:
        return Convolution::apply(z, out, w, h, discMean(o.radius), progress);
    case Kind::Sobel:
        return sobel(input, out, progress);
    case Kind::Despike:
        return ProgressiveLoop::run(w, progress, name(), [&](int x) {
            double around[8];
            for (int y = 0; y < h; ++y) {
                int k = 0;
                for (int dx = -1; dx <= 1; ++dx)
                    for (int dy = -1; dy <= 1; ++dy)
                        if (dx || dy)
                            around[k++]
                                = z[size_t(Convolution::mirror(x + dx, w)) * h + Convolution::mirror(y + dy, h)];
                double mean = 0, square = 0;
                for (double v : around)
                    mean += v;
                mean /= 8;
                for (double v : around)
                    square += (v - mean) * (v - mean);
                const double sd = std::sqrt(square / 8), here = z[size_t(x) * h + y];
                if (std::abs(here - mean) > o.despikeSigma * sd) {
                    std::nth_element(around, around + 4, around + 8);
                    out[size_t(x) * h + y] = around[4];
                } else {
                    out[size_t(x) * h + y] = here;
                }
            }
        });
    }
    return true;
}

bool QSciFilter::sobel(const EffectInput& input, double* out, ProgressSink* progress) const
{
    // One pass over three neighbouring columns: their difference smoothed down the column gives the x response,
    // their weighted sum differenced down the column the y response.
    const int w = input.width, h = input.height;
    const Direction direction = m_options.direction;
    constexpr int band = 16;
    return ProgressiveLoop::run((w + band - 1) / band, progress, name(), [&](int unit) {
        std::vector<double> difference(size_t(h) + 2), sum(size_t(h) + 2);
        for (int x = unit * band; x < std::min(w, (unit + 1) * band); ++x) {
            const double* left = input.z + size_t(Convolution::mirror(x - 1, w)) * h;
            const double* middle = input.z + size_t(x) * h;
            const double* right = input.z + size_t(Convolution::mirror(x + 1, w)) * h;
            double* d = difference.data() + 1;
            double* s = sum.data() + 1;
            for (int y = 0; y < h; ++y) {
                d[y] = right[y] - left[y];
                s[y] = left[y] + 2 * middle[y] + right[y];
            }
            d[-1] = d[Convolution::mirror(-1, h)];
            d[h] = d[Convolution::mirror(h, h)];
            s[-1] = s[Convolution::mirror(-1, h)];
            s[h] = s[Convolution::mirror(h, h)];
            double* o = out + size_t(x) * h;
            if (direction == Direction::X) {
                for (int y = 0; y < h; ++y)
                    o[y] = d[y - 1] + 2 * d[y] + d[y + 1];
            } else if (direction == Direction::Y) {
                for (int y = 0; y < h; ++y)
                    o[y] = s[y + 1] - s[y - 1];
            } else {
                for (int y = 0; y < h; ++y) {
                    const double gx = d[y - 1] + 2 * d[y] + d[y + 1], gy = s[y + 1] - s[y - 1];
                    o[y] = std::sqrt(gx * gx + gy * gy);
                }
            }
        }
    });
}

bool QSciFilter::parseKernel(const QString& text, Convolution::Kernel* kernel)
{
    const QStringList rows = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const int side = rows.size();
    if (side % 2 == 0 || side > MaxKernelSide)
        return false;
    std::vector<std::vector<double>> values;
    for (const QString& row : rows) {
        const QStringList cells = row.split(QLatin1Char(','));
        std::vector<double> line;
        for (const QString& cell : cells) {
            bool ok = false;
            const double v = cell.trimmed().toDouble(&ok);
            if (!ok || !std::isfinite(v))
                return false;
            line.push_back(v);
        }
        values.push_back(line);
    }
    const int across = int(values.front().size());
    if (across % 2 == 0 || across > MaxKernelSide)
        return false;
    Convolution::Kernel k { across / 2, side / 2, std::vector<double>(size_t(across) * side) };
    for (int r = 0; r < side; ++r) {
        if (int(values[r].size()) != across)
            return false;
        // The first row written is the top one: the neighbour furthest up the rows.
        const int dy = k.ry - r;
        for (int c = 0; c < across; ++c)
            k.weights[size_t(dy + k.ry) * across + c] = values[r][c];
    }
    *kernel = k;
    return true;
}

QString QSciFilter::kernelText(const Convolution::Kernel& kernel)
{
    QStringList rows;
    for (int dy = kernel.ry; dy >= -kernel.ry; --dy) {
        QStringList cells;
        for (int dx = -kernel.rx; dx <= kernel.rx; ++dx)
            cells.append(QString::number(kernel.at(dx, dy), 'g', 12));
        rows.append(cells.join(QLatin1Char(',')));
    }
    return rows.join(QLatin1Char(';'));
}

QString QSciFilter::logParameters() const
{
    const Options& o = m_options;
    QString text;
    switch (o.kind) {
    case Kind::Gaussian:
        text = QStringLiteral("sigma=%1").arg(o.sigma);
        break;
    case Kind::Unsharp:
        text = QStringLiteral("sigma=%1, amount=%2").arg(o.sigma).arg(o.amount);
        break;
    case Kind::Convolution:
        text = QStringLiteral("kernel=%1%2")
                   .arg(kernelText(o.kernel), o.normalise ? QStringLiteral(", normalised") : QString());
        break;
    case Kind::Sobel:
        text = o.direction == Direction::Both
            ? QStringLiteral("direction=both")
            : (o.direction == Direction::X ? QStringLiteral("direction=x") : QStringLiteral("direction=y"));
        break;
    case Kind::Smoothen:
        text = QStringLiteral("radius=%1").arg(o.radius);
        break;
    case Kind::Despike:
        text = QStringLiteral("sigma=%1").arg(o.despikeSigma);
        break;
    case Kind::Sharpen:
        break;
    }
    if (o.selectionOnly)
        text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + QStringLiteral("selection");
    return text;
}
