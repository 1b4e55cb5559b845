#include "fouriertransform.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QMutex>
#include <algorithm>
#include <cmath>
#include <complex>
#include <fftw3.h>
#include <limits>
#include <vector>

QMutex& FourierTransform::plannerLock()
{
    static QMutex lock;
    return lock;
}

namespace {

QMutex& plannerLock()
{
    return FourierTransform::plannerLock();
}

/** The half spectrum of a W x H matrix laid out column by column: W x (H / 2 + 1) complex values. */
std::vector<std::complex<double>> forward(const double* z, int w, int h)
{
    std::vector<double> in(z, z + size_t(w) * h);
    std::vector<std::complex<double>> out(size_t(w) * (h / 2 + 1));
    fftw_plan plan;
    {
        QMutexLocker locked(&plannerLock());
        plan = fftw_plan_dft_r2c_2d(
            w, h, in.data(), reinterpret_cast<fftw_complex*>(out.data()), FFTW_ESTIMATE | FFTW_PRESERVE_INPUT);
    }
    fftw_execute(plan);
    QMutexLocker locked(&plannerLock());
    fftw_destroy_plan(plan);
    return out;
}

/** The unnormalised inverse of a half spectrum (which it overwrites): W x H values, column by column. */
std::vector<double> backward(std::vector<std::complex<double>>& half, int w, int h)
{
    std::vector<double> result(size_t(w) * h);
    fftw_plan plan;
    {
        QMutexLocker locked(&plannerLock());
        plan = fftw_plan_dft_c2r_2d(w, h, reinterpret_cast<fftw_complex*>(half.data()), result.data(), FFTW_ESTIMATE);
    }
    fftw_execute(plan);
    QMutexLocker locked(&plannerLock());
    fftw_destroy_plan(plan);
    return result;
}

/** The coefficient of frequency (i, j), from the half spectrum and its Hermitian symmetry. */
std::complex<double> coefficient(const std::vector<std::complex<double>>& half, int w, int h, int i, int j)
{
    const int columns = h / 2 + 1;
    if (j < columns)
        return half[size_t(i) * columns + j];
    return std::conj(half[size_t((w - i) % w) * columns + (h - j)]);
}

QString inverse(const QString& unit)
{
    return unit.isEmpty() ? QStringLiteral("1/px") : QStringLiteral("1/") + unit;
}

} // namespace

QString FourierTransform::modeName(Mode mode)
{
    switch (mode) {
    case Mode::Magnitude:
        return QCoreApplication::translate("FourierTransform", "magnitude");
    case Mode::Phase:
        return QCoreApplication::translate("FourierTransform", "phase");
    case Mode::LogPower:
        return QCoreApplication::translate("FourierTransform", "log power");
    }
    return QString();
}

std::unique_ptr<QSciImage> FourierTransform::spectrum(const QSciImage& item, Mode mode)
{
    const int w = item.width(), h = item.height();
    const std::vector<std::complex<double>> half = forward(item.zData(), w, h);
    const double n = double(w) * h;
    QVector<double> z(qsizetype(w) * h);
    double smallest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < w; ++i)
        for (int j = 0; j < h; ++j) {
            const std::complex<double> c = coefficient(half, w, h, i, j) / n;
            // Frequency (i, j) moves so that zero sits in the middle.
            double& v = z[qsizetype((i + w / 2) % w) * h + (j + h / 2) % h];
            if (mode == Mode::Magnitude) {
                v = std::abs(c);
            } else if (mode == Mode::Phase) {
                v = std::arg(c);
            } else {
                v = std::norm(c);
                if (v > 0)
                    smallest = std::min(smallest, v);
            }
        }
    if (mode == Mode::LogPower) {
        // A zero would become minus infinity; the smallest power seen stands in for it.
        const double floor = std::isfinite(smallest) ? smallest : 1.0;
        for (double& v : z)
            v = std::log10(std::max(v, floor));
    }

    auto result = std::make_unique<QSciImage>(w, h, Qt::white);
    if (!result->setZMatrix(z))
        return nullptr;
    const QSciImage::SciValues& sci = item.sciValues();
    QSciImage::SciValues s;
    const double px = sci.xUnitPerPixel > 0 ? sci.xUnitPerPixel : 1, py = sci.yUnitPerPixel > 0 ? sci.yUnitPerPixel : 1;
    s.xUnitPerPixel = 1 / (w * px);
    s.yUnitPerPixel = 1 / (h * py);
    s.sizeX = w * s.xUnitPerPixel;
    s.sizeY = h * s.yUnitPerPixel;
    s.offsetX = -(w / 2) * s.xUnitPerPixel;
    s.offsetY = -(h / 2) * s.yUnitPerPixel;
    s.xUnit = inverse(sci.xUnit);
    s.yUnit = inverse(sci.yUnit);
    s.zUnit = mode == Mode::Phase ? QStringLiteral("rad")
        : mode == Mode::Magnitude ? sci.zUnit
                                  : QStringLiteral("log10(%1^2)").arg(sci.zUnit);
    result->setSciValues(s);
    result->setColorGradient(item.colorGradient());
    result->setName(item.name() + QStringLiteral(" (") + modeName(mode) + QLatin1Char(')'));
    result->mapZToPicture();
    return result;
}

void FourierTransform::filter(const double* z, int w, int h, const unsigned char* keep, double* out)
{
    std::vector<std::complex<double>> half = forward(z, w, h);
    const int columns = h / 2 + 1;
    if (keep)
        for (int i = 0; i < w; ++i)
            for (int j = 0; j < columns; ++j)
                if (!keep[size_t((i + w / 2) % w) * h + (j + h / 2) % h])
                    half[size_t(i) * columns + j] = 0;
    const std::vector<double> result = backward(half, w, h);
    const double n = double(w) * h;
    for (size_t k = 0; k < result.size(); ++k)
        out[k] = result[k] / n;
}

void FourierTransform::autocorrelation(const double* z, int w, int h, double* out)
{
    std::vector<std::complex<double>> half = forward(z, w, h);
    for (std::complex<double>& v : half)
        v = std::norm(v);
    half[0] = 0; // the mean
    const std::vector<double> result = backward(half, w, h);
    const double n = double(w) * h;
    for (int i = 0; i < w; ++i)
        for (int j = 0; j < h; ++j)
            out[size_t((i + w / 2) % w) * h + (j + h / 2) % h] = result[size_t(i) * h + j] / (n * n);
}
