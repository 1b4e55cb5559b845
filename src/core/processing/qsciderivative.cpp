#include "qsciderivative.h"

#include "progressiveloop.h"

#include "core/settings/options.h"

#include <QCoreApplication>
#include <QVector>
#include <algorithm>
#include <cmath>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("QSciDerivative", text);
}

int sign(int v)
{
    return (v > 0) - (v < 0);
}

/** Columns of one band share the work of a unit: enough to amortise the column set-up, few enough to spread. */
constexpr int BandWidth = 16;

/** One pass over the region: reads @p src, writes @p dst at the visited points. */
class DerivativePass {
public:
    DerivativePass(
        const QSciDerivative::Options& o, const EffectInput& in, const QRect& region, const double* src, double* dst)
        : m_o(o)
        , m_in(in)
        , m_region(region)
        , m_src(src)
        , m_dst(dst)
        , m_w(in.width)
        , m_h(in.height)
    {
        if (o.mode == QSciDerivative::Mode::Directional) {
            // dx outer, dy inner; dy counts down the image, which is against the row index.
            for (int dx = -o.points; dx <= o.points; ++dx)
                for (int dy = -o.points; dy <= o.points; ++dy) {
                    if (dx == 0 && dy == 0)
                        continue;
                    const int w = QSciDerivative::weight(o.angle, dx, dy);
                    if (w != 0)
                        m_kernel.append({ dx, -dy, double(w) });
                }
        }
    }

    int units() const { return (m_region.width() + BandWidth - 1) / BandWidth; }

    void runUnit(int unit)
    {
        const int first = m_region.left() + unit * BandWidth;
        const int last = std::min(m_region.right(), first + BandWidth - 1);
        QVector<double> acc(m_region.height()), dy(m_region.height());
        for (int x = first; x <= last; ++x) {
            if (m_o.mode == QSciDerivative::Mode::Gradient)
                gradientColumn(x, acc.data(), dy.data());
            else
                directionalColumn(x, acc.data());
        }
    }

private:
    struct Tap {
        int dx;
        int dy; // in rows from the bottom
        double w;
    };

    const double* column(int x) const { return m_src + qsizetype(x) * m_h; }

    /** The coordinate a gradient neighbour at @p c stands for, along an axis of @p size points. */
    int axis(int c, int mirror, int size) const
    {
        if (c >= 0 && c < size)
            return c;
        if (m_o.border == QSciDerivative::Border::Wrap)
            return ((c % size) + size) % size;
        return mirror;
    }

    void store(int x, const double* acc)
    {
        const int y0 = m_region.top(), n = m_region.height();
        const double f = m_o.originFactor;
        const double* z = column(x) + y0;
        double* out = m_dst + qsizetype(x) * m_h + y0;
        if (!m_o.selectionOnly) {
            for (int i = 0; i < n; ++i)
                out[i] = acc[i] + f * z[i];
            return;
        }
        const uchar* mask = m_in.mask + qsizetype(x) * m_h + y0;
        for (int i = 0; i < n; ++i)
            if (mask[i])
                out[i] = acc[i] + f * z[i];
    }

    void gradientColumn(int x, double* acc, double* dy)
    {
        const int n = m_o.points, y0 = m_region.top(), y1 = m_region.bottom(), len = m_region.height();
        const double* c = column(x);
        // Dx into acc, Dy into a second buffer over the same rows, then the magnitude.
        std::fill(acc, acc + len, 0.0);
        if (m_o.xDirection) {
            for (int i = 1; i <= n; ++i) {
                const double* right = column(axis(x + i, x - i, m_w)) + y0;
                const double* left = column(axis(x - i, x + i, m_w)) + y0;
                for (int k = 0; k < len; ++k)
                    acc[k] += right[k] - left[k];
            }
        }
        if (m_o.yDirection) {
            std::fill(dy, dy + len, 0.0);
            const int inner0 = std::max(y0, n), inner1 = std::min(y1, m_h - 1 - n);
            for (int y = y0; y <= y1; ++y) {
                if (y == inner0 && inner0 <= inner1) {
                    for (int i = 1; i <= n; ++i) {
                        const double* up = c + i;
                        const double* down = c - i;
                        for (int yy = inner0; yy <= inner1; ++yy)
                            dy[yy - y0] += up[yy] - down[yy];
                    }
                    y = inner1;
                    continue;
                }
                double sum = 0;
                for (int i = 1; i <= n; ++i)
                    sum += c[axis(y + i, y - i, m_h)] - c[axis(y - i, y + i, m_h)];
                dy[y - y0] = sum;
            }
            for (int k = 0; k < len; ++k)
                acc[k] = std::sqrt(acc[k] * acc[k] + dy[k] * dy[k]);
        } else {
            for (int k = 0; k < len; ++k)
                acc[k] = std::abs(acc[k]);
        }
        store(x, acc);
    }

    /** The value a kernel tap reads for the point (x, y), or false when the tap is skipped. */
    bool tap(int x, int y, const Tap& t, double* value) const
    {
        int tx = x + t.dx, ty = y + t.dy;
        if (tx < 0 || tx >= m_w || ty < 0 || ty >= m_h) {
            if (m_o.border == QSciDerivative::Border::Wrap) {
                tx = ((tx % m_w) + m_w) % m_w;
                ty = ((ty % m_h) + m_h) % m_h;
            } else {
                tx = x - t.dx;
                ty = y - t.dy;
                if (tx < 0 || tx >= m_w || ty < 0 || ty >= m_h)
                    return false;
            }
        }
        *value = m_src[qsizetype(tx) * m_h + ty];
        return true;
    }

    void directionalColumn(int x, double* acc)
    {
        const int n = m_o.points, y0 = m_region.top(), y1 = m_region.bottom(), len = m_region.height();
        std::fill(acc, acc + len, 0.0);
        const bool innerColumn = x >= n && x < m_w - n;
        const int inner0 = innerColumn ? std::max(y0, n) : y1 + 1;
        const int inner1 = innerColumn ? std::min(y1, m_h - 1 - n) : y1;
        if (inner0 <= inner1) {
            for (const Tap& t : m_kernel) {
                const double* c = column(x + t.dx) + t.dy;
                const double w = t.w;
                for (int y = inner0; y <= inner1; ++y)
                    acc[y - y0] += w * c[y];
            }
        }
        for (int y = y0; y <= y1; ++y) {
            if (y >= inner0 && y <= inner1)
                continue;
            double sum = 0, v = 0;
            for (const Tap& t : m_kernel)
                if (tap(x, y, t, &v))
                    sum += t.w * v;
            acc[y - y0] = sum;
        }
        store(x, acc);
    }

    const QSciDerivative::Options& m_o;
    const EffectInput& m_in;
    const QRect m_region;
    const double* m_src;
    double* m_dst;
    const int m_w;
    const int m_h;
    QVector<Tap> m_kernel;
};

} // namespace

QString QSciDerivative::name() const
{
    return tr("Derivative");
}

void QSciDerivative::readSettings()
{
    Options o;
    const bool directional = ::Options::getBool(QStringLiteral("Derivative.calculateDirectionalDerivative"), false);
    const bool gradient = ::Options::getBool(QStringLiteral("Derivative.calculateGradient"), !directional);
    o.mode = gradient || !directional ? Mode::Gradient : Mode::Directional;
    o.points = std::max(1, ::Options::getInt(QStringLiteral("Derivative.numberOfPoints"), 1));
    o.order = std::max(1, ::Options::getInt(QStringLiteral("Derivative.order"), 1));
    o.originFactor = ::Options::getInt(QStringLiteral("Derivative.addSubstractOrigin"), 0);
    o.border = ::Options::getInt(QStringLiteral("Derivative.borderPixelHandling"), 0) == 1 ? Border::Wrap
                                                                                           : Border::Replicate;
    const bool onlyX = ::Options::getBool(QStringLiteral("Derivative.gradientDirectionX"), false);
    const bool onlyY = ::Options::getBool(QStringLiteral("Derivative.gradientDirectionY"), false);
    const bool both = ::Options::getBool(QStringLiteral("Derivative.gradientDirectionXY"), !onlyX && !onlyY);
    o.xDirection = both || onlyX;
    o.yDirection = both || onlyY;
    o.angle = m_options.angle;
    o.selectionOnly = m_options.selectionOnly;
    m_options = o;
}

void QSciDerivative::writeSettings() const
{
    const Options& o = m_options;
    ::Options::setBool(QStringLiteral("Derivative.calculateGradient"), o.mode == Mode::Gradient);
    ::Options::setBool(QStringLiteral("Derivative.calculateDirectionalDerivative"), o.mode == Mode::Directional);
    ::Options::setInt(QStringLiteral("Derivative.numberOfPoints"), o.points);
    ::Options::setInt(QStringLiteral("Derivative.order"), o.order);
    ::Options::setInt(QStringLiteral("Derivative.addSubstractOrigin"), o.originFactor);
    ::Options::setInt(QStringLiteral("Derivative.borderPixelHandling"), o.border == Border::Wrap ? 1 : 0);
    ::Options::setBool(QStringLiteral("Derivative.gradientDirectionXY"), o.xDirection && o.yDirection);
    ::Options::setBool(QStringLiteral("Derivative.gradientDirectionX"), o.xDirection && !o.yDirection);
    ::Options::setBool(QStringLiteral("Derivative.gradientDirectionY"), o.yDirection && !o.xDirection);
}

bool QSciDerivative::check(int width, int height, bool anySelected, QString* message) const
{
    if (m_options.points < 1 || 2 * qint64(m_options.points) + 1 > std::min(width, height)) {
        if (message)
            *message = tooManyPointsText();
        return false;
    }
    return QSciEffect::check(width, height, anySelected, message);
}

bool QSciDerivative::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const QRect region = this->region(input);
    if (region.isEmpty() || 2 * m_options.points + 1 > std::min(input.width, input.height))
        return true;
    const qsizetype size = qsizetype(input.width) * input.height;
    // Each pass reads the previous pass's whole field: points outside the region keep the input's values.
    QVector<double> previous;
    for (int pass = 0; pass < std::max(1, m_options.order); ++pass) {
        if (pass > 0)
            previous = QVector<double>(out, out + size);
        DerivativePass work(m_options, input, region, pass > 0 ? previous.constData() : input.z, out);
        if (!ProgressiveLoop::run(work.units(), progress, name(), [&work](int unit) { work.runUnit(unit); }))
            return false;
    }
    return true;
}

const QVector<int>& QSciDerivative::angles()
{
    static const QVector<int> list = { 0, 45, 90, 135, 180, 225, 270, 315 };
    return list;
}

int QSciDerivative::weight(int angle, int dx, int dy)
{
    switch (angle) {
    case 0:
        return -sign(dy);
    case 45:
        return sign(dx - dy);
    case 90:
        return sign(dx);
    case 135:
        return sign(dx + dy);
    case 180:
        return sign(dy);
    case 225:
        return sign(dy - dx);
    case 270:
        return -sign(dx);
    case 315:
        return -sign(dx + dy);
    default:
        return 0;
    }
}

QString QSciDerivative::tooManyPointsText()
{
    return tr("Number of chosen neighbour points exceeds image dimensions!");
}

QString QSciDerivative::logParameters() const
{
    const Options& o = m_options;
    QString text = o.mode == Mode::Gradient ? QStringLiteral("mode=gradient") : QStringLiteral("mode=directional");
    text += QStringLiteral(", points=%1, order=%2, origin=%3, border=%4")
                .arg(o.points)
                .arg(o.order)
                .arg(o.originFactor)
                .arg(o.border == Border::Wrap ? QStringLiteral("wrap") : QStringLiteral("replicate"));
    if (o.mode == Mode::Directional)
        text += QStringLiteral(", angle=%1").arg(o.angle);
    else if (o.xDirection != o.yDirection)
        text += o.xDirection ? QStringLiteral(", direction=x") : QStringLiteral(", direction=y");
    if (o.selectionOnly)
        text += QStringLiteral(", selection");
    return text;
}
