#include "qscilevelling.h"

#include "progressiveloop.h"
#include "surfacefit.h"

#include "core/base/progresssink.h"
#include "core/settings/options.h"

#include <Eigen/Dense>
#include <QCoreApplication>
#include <QMutex>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("QSciLevelling", text);
}

const char* const methodKeys[] = { "plane", "polynomial", "threePoints", "facet", "zeroMinimum" };

} // namespace

QString QSciLevelling::methodName(Method method)
{
    switch (method) {
    case Method::Plane:
        return tr("Plane subtraction");
    case Method::Polynomial:
        return tr("Polynomial background");
    case Method::ThreePoints:
        return tr("Three-point levelling");
    case Method::Facet:
        return tr("Facet levelling");
    case Method::ZeroMinimum:
        return tr("Set minimum to zero");
    }
    return QString();
}

QString QSciLevelling::name() const
{
    return methodName(m_options.method);
}

void QSciLevelling::readSettings()
{
    const QString method = ::Options::getString(QStringLiteral("Levelling.method"), QStringLiteral("plane"));
    for (int i = 0; i < 5; ++i)
        if (method == QLatin1String(methodKeys[i]))
            m_options.method = Method(i);
    m_options.order = std::clamp(::Options::getInt(QStringLiteral("Levelling.order"), 2), 1, 4);
    m_options.masked = ::Options::getBool(QStringLiteral("Levelling.fitToSelection"), false);
}

void QSciLevelling::writeSettings() const
{
    ::Options::setString(QStringLiteral("Levelling.method"), QLatin1String(methodKeys[int(m_options.method)]));
    ::Options::setInt(QStringLiteral("Levelling.order"), m_options.order);
    ::Options::setBool(QStringLiteral("Levelling.fitToSelection"), m_options.masked);
}

bool QSciLevelling::check(int width, int height, bool anySelected, QString* message) const
{
    const bool usesMask = m_options.masked && m_options.method != Method::ThreePoints;
    if (usesMask && !anySelected) {
        if (message)
            *message = nothingSelectedText();
        return false;
    }
    if (m_options.method == Method::ThreePoints) {
        for (const QPoint& p : m_options.points)
            if (p.x() < 0 || p.y() < 0 || p.x() >= width || p.y() >= height) {
                if (message)
                    *message = tr("The three points must lie inside the item.");
                return false;
            }
        const QPoint a = m_options.points[1] - m_options.points[0], b = m_options.points[2] - m_options.points[0];
        if (qint64(a.x()) * b.y() - qint64(a.y()) * b.x() == 0) {
            if (message)
                *message = tr("The three points lie on one line; they do not define a plane.");
            return false;
        }
    }
    return true;
}

bool QSciLevelling::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const int w = input.width, h = input.height;
    const unsigned char* mask = m_options.masked ? input.mask : nullptr;
    switch (m_options.method) {
    case Method::Plane:
    case Method::Polynomial: {
        const int order = m_options.method == Method::Plane ? 1 : std::clamp(m_options.order, 1, 4);
        SurfaceFit::Coefficients c;
        // out holds the input: fitting from it reads memory the subtraction is about to touch anyway.
        if (!SurfaceFit::fit(out, mask, w, h, order, &c, progress))
            return !(progress && progress->isCancelled());
        return SurfaceFit::subtract(out, w, h, order, c, progress);
    }
    case Method::ThreePoints: {
        Eigen::Matrix3d a;
        Eigen::Vector3d b;
        for (int k = 0; k < 3; ++k) {
            const QPoint& p = m_options.points[k];
            a.row(k) << 1.0, SurfaceFit::u(p.x(), w), SurfaceFit::u(p.y(), h);
            b(k) = input.z[size_t(p.x()) * h + p.y()];
        }
        const Eigen::Vector3d c = a.colPivHouseholderQr().solve(b);
        return SurfaceFit::subtract(out, w, h, 1, { c(0), c(1), c(2) }, progress);
    }
    case Method::Facet:
        return facet(input, out, progress);
    case Method::ZeroMinimum: {
        double low = std::numeric_limits<double>::infinity();
        for (size_t i = 0, n = size_t(w) * h; i < n; ++i)
            if ((!mask || mask[i]) && std::isfinite(out[i]))
                low = std::min(low, out[i]);
        if (std::isfinite(low))
            for (size_t i = 0, n = size_t(w) * h; i < n; ++i)
                out[i] -= low;
        return true;
    }
    }
    return true;
}

bool QSciLevelling::facet(const EffectInput& input, double* out, ProgressSink* progress) const
{
    // The dominant facet is the mode of the local slopes: start from the mean slope and move, a few times,
    // to the mean weighted by how close each slope lies to the current estimate.
    const int w = input.width, h = input.height;
    if (w < 2 || h < 2)
        return true;
    const unsigned char* mask = m_options.masked ? input.mask : nullptr;
    double sx = 0, sy = 0, spread = 0;
    for (int iteration = 0; iteration < 12; ++iteration) {
        if (progress && progress->isCancelled())
            return false;
        long double wsum = 0, gx = 0, gy = 0, d2 = 0;
        for (int x = 0; x + 1 < w; ++x) {
            const double* c0 = out + size_t(x) * h;
            const double* c1 = c0 + h;
            for (int y = 0; y + 1 < h; ++y) {
                if (mask && !mask[size_t(x) * h + y])
                    continue;
                const double dx = 0.5 * ((c1[y] - c0[y]) + (c1[y + 1] - c0[y + 1]));
                const double dy = 0.5 * ((c0[y + 1] - c0[y]) + (c1[y + 1] - c1[y]));
                const double e2 = (dx - sx) * (dx - sx) + (dy - sy) * (dy - sy);
                const double weight = iteration == 0 ? 1.0 : std::exp(-e2 / spread);
                wsum += weight;
                gx += weight * dx;
                gy += weight * dy;
                d2 += e2;
            }
        }
        if (wsum <= 0)
            break;
        sx = double(gx / wsum);
        sy = double(gy / wsum);
        // A fifth of the slopes' variance: narrow enough to pick the largest facet, wide enough to find it.
        if (iteration == 0)
            spread = std::max(0.2 * (double(d2 / wsum) - sx * sx - sy * sy), std::numeric_limits<double>::min());
    }
    // Slopes are per point; the surface coordinates run over [-1, 1].
    const double cu = sx * (w - 1) / 2.0, cv = sy * (h - 1) / 2.0;
    return SurfaceFit::subtract(out, w, h, 1, { 0.0, cu, cv }, progress);
}

QString QSciLevelling::logParameters() const
{
    QString text;
    if (m_options.method == Method::Polynomial)
        text = QStringLiteral("order=%1").arg(m_options.order);
    else if (m_options.method == Method::ThreePoints)
        text = QStringLiteral("points=%1,%2;%3,%4;%5,%6")
                   .arg(m_options.points[0].x())
                   .arg(m_options.points[0].y())
                   .arg(m_options.points[1].x())
                   .arg(m_options.points[1].y())
                   .arg(m_options.points[2].x())
                   .arg(m_options.points[2].y());
    if (m_options.masked && m_options.method != Method::ZeroMinimum && m_options.method != Method::ThreePoints)
        text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + QStringLiteral("masked");
    return text;
}
