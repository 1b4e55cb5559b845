#include "qsciimage.h"

#include "objecttransform.h"

#include <QCoreApplication>

#include "core/base/parallel.h"
#include "core/base/pixelrows.h"

#include <QColor>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

/** Below this many points the thread pool costs more than it saves. */
constexpr qsizetype ParallelPoints = qsizetype(1) << 16;
/**
 * The passes that colour the picture run on every change of the display, with the cores often busy elsewhere:
 * threads take the next band as they come free, so one thread held up does not hold up the picture.
 */
constexpr Parallel::Schedule DisplaySchedule = Parallel::Schedule::Dynamic;
/** Columns per unit of parallel work in the loops over the picture. */
constexpr int BandColumns = 64;

template <typename Function>
void forEachBand(
    int count, qsizetype points, Function function, Parallel::Schedule schedule = Parallel::Schedule::Contiguous)
{
    if (count <= 1 || points < ParallelPoints) {
        Parallel::clearVectorState();
        for (int i = 0; i < count; ++i)
            function(i);
        return;
    }
    Parallel::forEach(count, function, schedule);
}

inline QRgb* pixelAt(uchar* bits, qsizetype bytesPerLine, int column, int row)
{
    return reinterpret_cast<QRgb*>(bits + row * bytesPerLine) + column;
}

inline const QRgb* pixelAt(const uchar* bits, qsizetype bytesPerLine, int column, int row)
{
    return reinterpret_cast<const QRgb*>(bits + row * bytesPerLine) + column;
}

struct Matrices {
    QImage picture;
    QVector<double> z;
    QVector<uchar> mask;
};

/**
 * Moves every point (x, y) of a W x H item to map(x, y) in a newWidth x newHeight one; @p map must be a
 * bijection. Bands of old columns run in parallel, each writing its own points.
 */
template <typename Map>
Matrices transformed(int width, int height, int newWidth, int newHeight, const QImage& picture,
    const QVector<double>& z, const QVector<uchar>& mask, Map map)
{
    Matrices out;
    out.picture = QImage(newWidth, newHeight, QImage::Format_ARGB32);
    out.z.resize(int(qsizetype(newWidth) * newHeight));
    out.mask.resize(out.z.size());
    const double* zIn = z.constData();
    const uchar* maskIn = mask.constData();
    const uchar* picIn = picture.constBits();
    const qsizetype bplIn = picture.bytesPerLine();
    double* zOut = out.z.data();
    uchar* maskOut = out.mask.data();
    uchar* picOut = out.picture.bits();
    const qsizetype bplOut = out.picture.bytesPerLine();
    forEachBand((width + BandColumns - 1) / BandColumns, qsizetype(width) * height, [=](int band) {
        const int x1 = qMin(width, (band + 1) * BandColumns);
        for (int x = band * BandColumns; x < x1; ++x) {
            for (int y = 0; y < height; ++y) {
                const QPoint to = map(x, y);
                const qsizetype from = qsizetype(x) * height + y;
                const qsizetype index = qsizetype(to.x()) * newHeight + to.y();
                zOut[index] = zIn[from];
                maskOut[index] = maskIn[from];
                *pixelAt(picOut, bplOut, to.x(), newHeight - 1 - to.y()) = *pixelAt(picIn, bplIn, x, height - 1 - y);
            }
        }
    });
    return out;
}

/**
 * Columns per band and rows per tile in colorizeColumns(): a tile's indices (16 KiB) stay in the L1 cache, and
 * picture rows go out 512 bytes at a time.
 */
constexpr int ColorColumns = 128;
constexpr int ColorRows = 32;

#ifdef __GNUC__
#define VELMORA_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define VELMORA_ALWAYS_INLINE inline
#endif

/**
 * Colours columns [x0, x1) (at most ColorColumns of them) a tile of ColorRows rows at a time. Each column's run of z
 * is read straight through and its ramp indices land in a small buffer; the picture is then written one row run
 * at a time. The picture's rows lie a power of two apart, so writing them a pixel at a time down a column would
 * keep evicting them from the same cache sets. @p ramp holds RampSize + 1 entries, the last for z that is no
 * number.
 */
VELMORA_ALWAYS_INLINE void colorizeColumnsBody(
    const double* z, int h, double low, double range, const QRgb* ramp, uchar* bits, qsizetype bpl, int x0, int x1)
{
    constexpr double size = ColorGradient::RampSize;
    constexpr double top = ColorGradient::RampSize - 1;
    alignas(64) int index[ColorColumns * ColorRows]; // ramp indices of the tile, column after column
    alignas(64) QRgb row[ColorColumns];
    const int columns = x1 - x0;
    for (int y0 = 0; y0 < h; y0 += ColorRows) {
        const int rows = qMin(ColorRows, h - y0);
        for (int c = 0; c < columns; ++c) {
            const double* column = z + qsizetype(x0 + c) * h + y0;
            int* out = index + c * ColorRows;
            // ColorGradient::colorAt with the same expression, truncation and clamping, in a form that vectorises:
            // v - v is 0 for every finite v and NaN otherwise.
            for (int r = 0; r < rows; ++r) {
                const double v = column[r];
                const double t = (v - low) / range * size;
                const double clamped = t > 0 ? (t < top ? t : top) : 0;
                out[r] = v - v == 0 ? int(clamped) : ColorGradient::RampSize;
            }
        }
        // Gathering a row across the index columns is cheaper than storing colours down the columns of a
        // row-major tile, whose stores 256 bytes apart stall.
        for (int r = 0; r < rows; ++r) {
            const int* in = index + r;
            for (int c = 0; c < columns; ++c)
                row[c] = ramp[in[c * ColorRows]];
            PixelRows::store(bits + (h - 1 - y0 - r) * bpl + qsizetype(x0) * 4, row, columns);
        }
    }
    PixelRows::finish();
}

void colorizeColumnsPlain(
    const double* z, int h, double low, double range, const QRgb* ramp, uchar* bits, qsizetype bpl, int x0, int x1)
{
    colorizeColumnsBody(z, h, low, range, ramp, bits, bpl, x0, x1);
}

#if defined(__GNUC__) && defined(__x86_64__)
#define VELMORA_COLORIZE_AVX2
// The same loops on 256-bit registers, with no FMA so that the rounding stays that of colorAt().
__attribute__((target("avx2"))) void colorizeColumnsAvx2(
    const double* z, int h, double low, double range, const QRgb* ramp, uchar* bits, qsizetype bpl, int x0, int x1)
{
    colorizeColumnsBody(z, h, low, range, ramp, bits, bpl, x0, x1);
}
#endif

void colorizeColumns(
    const double* z, int h, double low, double range, const QRgb* ramp, uchar* bits, qsizetype bpl, int x0, int x1)
{
#ifdef VELMORA_COLORIZE_AVX2
    static const bool avx2 = __builtin_cpu_supports("avx2");
    if (avx2) {
        colorizeColumnsAvx2(z, h, low, range, ramp, bits, bpl, x0, x1);
        return;
    }
#endif
    colorizeColumnsPlain(z, h, low, range, ramp, bits, bpl, x0, x1);
}

/** z of columns [x0, x1) from the picture's grey levels, blocked like colorizeColumns(). */
void greyColumns(const uchar* bits, qsizetype bpl, int h, const double* levels, double* z, int x0, int x1)
{
    constexpr int TileColumns = 8;
    constexpr int TileRows = 32;
    for (int y0 = 0; y0 < h; y0 += TileRows) {
        const int y1 = qMin(h, y0 + TileRows);
        for (int tx = x0; tx < x1; tx += TileColumns) {
            const int tx1 = qMin(x1, tx + TileColumns);
            for (int y = y0; y < y1; ++y) {
                const QRgb* line = reinterpret_cast<const QRgb*>(bits + (h - 1 - y) * bpl);
                for (int x = tx; x < tx1; ++x)
                    z[qsizetype(x) * h + y] = levels[qRed(line[x]) + qGreen(line[x]) + qBlue(line[x])];
            }
        }
    }
}

/**
 * Minimum and maximum of the finite ones of n values. NaN and infinity mark missing points (aborted scans): a NaN
 * never wins a comparison, and an infinity is replaced by a value that cannot win either.
 */
void minMax(const double* z, qsizetype n, double* low, double* high)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double max = std::numeric_limits<double>::max();
    double lo[4] = { inf, inf, inf, inf };
    double hi[4] = { -inf, -inf, -inf, -inf };
    qsizetype i = 0;
    for (; i + 4 <= n; i += 4) {
        for (int k = 0; k < 4; ++k) {
            const double v = z[i + k];
            // +inf never beats a minimum, -inf never a maximum; only the other infinity needs turning round.
            const double forLow = v < -max ? inf : v;
            const double forHigh = v > max ? -inf : v;
            lo[k] = forLow < lo[k] ? forLow : lo[k];
            hi[k] = forHigh > hi[k] ? forHigh : hi[k];
        }
    }
    for (; i < n; ++i) {
        const double v = z[i];
        if (std::isfinite(v)) {
            lo[0] = v < lo[0] ? v : lo[0];
            hi[0] = v > hi[0] ? v : hi[0];
        }
    }
    *low = std::min({ lo[0], lo[1], lo[2], lo[3] });
    *high = std::max({ hi[0], hi[1], hi[2], hi[3] });
}

const QMap<QString, QString>& defaultDisplayElementMap()
{
    static const QMap<QString, QString> map = [] {
        QMap<QString, QString> m;
        for (const auto& pair : QSciImage::displayElementDefaults())
            m.insert(pair.first, pair.second);
        return m;
    }();
    return map;
}

} // namespace

bool QSciImage::SciValues::operator==(const SciValues& o) const
{
    return offsetX == o.offsetX && offsetY == o.offsetY && sizeX == o.sizeX && sizeY == o.sizeY && xUnit == o.xUnit
        && yUnit == o.yUnit && zUnit == o.zUnit && xUnitPerPixel == o.xUnitPerPixel && yUnitPerPixel == o.yUnitPerPixel;
}

QSciImage::QSciImage(QObject* parent)
    : QSciImage(100, 100, QColor(Qt::white), parent)
{
}

QSciImage::QSciImage(int width, int height, const QColor& background, QObject* parent)
    : QObject(parent)
    , m_displayElements(defaultDisplayElementMap())
    , m_creationTime(QDateTime::currentDateTime())
{
    // For queued connections and signal spies.
    static const int partsType = qRegisterMetaType<QSciImage::Parts>("QSciImage::Parts");
    Q_UNUSED(partsType)
    resetMatrices(qMax(1, width), qMax(1, height), background);
    m_sciValues.sizeX = m_width;
    m_sciValues.sizeY = m_height;
}

QSciImage::~QSciImage() = default;

void QSciImage::resetMatrices(int width, int height, const QColor& background)
{
    m_width = width;
    m_height = height;
    m_picture = QImage(width, height, QImage::Format_ARGB32);
    m_picture.fill(background);
    m_z = QVector<double>(int(qsizetype(width) * height), 0.0);
    zChanged();
    m_mask = QVector<uchar>(m_z.size(), uchar(0));
}

void QSciImage::copyFrom(const QSciImage& other)
{
    if (&other == this)
        return;
    // The matrices are shared until either side writes to them, which detaches that side only.
    m_width = other.m_width;
    m_height = other.m_height;
    m_left = other.m_left;
    m_top = other.m_top;
    m_picture = other.m_picture;
    m_z = other.m_z;
    zChanged();
    {
        // The shared matrix has the same extremes.
        double low = 0, high = 0;
        bool valid = false;
        {
            std::lock_guard<std::mutex> lock(other.m_zRange.lock);
            valid = other.m_zRange.valid;
            low = other.m_zRange.low;
            high = other.m_zRange.high;
        }
        std::lock_guard<std::mutex> lock(m_zRange.lock);
        m_zRange.valid = valid;
        m_zRange.low = low;
        m_zRange.high = high;
    }
    m_mask = other.m_mask;
    m_objects = other.m_objects;
    m_sciValues = other.m_sciValues;
    m_zCalibrateMultiply = other.m_zCalibrateMultiply;
    m_zCalibrateAdd = other.m_zCalibrateAdd;
    m_instrumentHeader = other.m_instrumentHeader;
    m_textLines = other.m_textLines;
    m_displayElements = other.m_displayElements;
    m_name = other.m_name;
    m_tabText = other.m_tabText;
    m_zPos = other.m_zPos;
    m_selected = other.m_selected;
    m_visible = other.m_visible;
    m_abstract = other.m_abstract;
    m_creationTime = other.m_creationTime;
    m_drawImage = other.m_drawImage;
    m_drawMask = other.m_drawMask;
    m_drawObjects = other.m_drawObjects;
    m_drawZ = other.m_drawZ;
    m_opacity = other.m_opacity;
    m_gradient = other.m_gradient;
    m_colorRange = other.m_colorRange;
    m_processingLog = other.m_processingLog;
    m_fileName = other.m_fileName;
    m_saved = other.m_saved;
    m_editMode = other.m_editMode;
    notifyChanged(AllParts | PositionPart | DisplayPart | HeaderPart);
    if (!m_loading)
        emit placeChanged();
}

QString QSciImage::tooLargeText(qint64 width, qint64 height)
{
    return QCoreApplication::translate("QSciImage", "The item would be too large: %1 x %2 points (at most %3 points)")
        .arg(width)
        .arg(height)
        .arg(MaxPoints);
}

QSciImage* QSciImage::duplicate() const
{
    auto* copy = new QSciImage(1, 1, QColor(Qt::white));
    copy->copyFrom(*this);
    copy->m_creationTime = QDateTime::currentDateTime();
    return copy;
}

void QSciImage::setPosition(int left, int top)
{
    if (left == m_left && top == m_top)
        return;
    m_left = left;
    m_top = top;
    if (!m_loading)
        emit placeChanged();
}

// ---- z-matrix ------------------------------------------------------------------------------------------

void QSciImage::setZ(int x, int y, double value)
{
    zChanged();
    m_z[int(qsizetype(x) * m_height + y)] = value;
}

bool QSciImage::setZMatrix(const QVector<double>& z)
{
    if (qsizetype(z.size()) != qsizetype(m_width) * m_height)
        return false;
    m_z = z;
    notifyChanged(ZPart);
    return true;
}

void QSciImage::zChanged()
{
    std::lock_guard<std::mutex> lock(m_zRange.lock);
    ++m_zRange.generation;
    m_zRange.valid = false;
}

double QSciImage::zMin() const
{
    double low, high;
    zRange(&low, &high);
    return low;
}

double QSciImage::zMax() const
{
    double low, high;
    zRange(&low, &high);
    return high;
}

void QSciImage::zRange(double* zMin, double* zMax) const
{
    quint64 generation = 0;
    {
        std::lock_guard<std::mutex> lock(m_zRange.lock);
        if (m_zRange.valid) {
            *zMin = m_zRange.low;
            *zMax = m_zRange.high;
            return;
        }
        generation = m_zRange.generation;
    }
    // Each chunk's result has a cache line of its own, on the stack: no allocation, no line shared by two threads.
    struct alignas(64) Extremes {
        double low, high;
    };
    constexpr int MaxChunks = 128;
    const qsizetype n = m_z.size();
    const qsizetype chunk = qMax(qsizetype(1) << 18, (n + MaxChunks - 1) / MaxChunks);
    const double* z = m_z.constData();
    const int chunks = int((n + chunk - 1) / chunk);
    Extremes found[MaxChunks];
    Extremes* out = found;
    forEachBand(
        chunks, n,
        [=](int c) {
            const qsizetype begin = c * chunk;
            minMax(z + begin, qMin(chunk, n - begin), &out[c].low, &out[c].high);
        },
        DisplaySchedule);
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (int c = 0; c < chunks; ++c) {
        low = std::min(low, found[c].low);
        high = std::max(high, found[c].high);
    }
    if (low > high) // no number at all
        low = high = std::numeric_limits<double>::quiet_NaN();
    *zMin = low;
    *zMax = high;
    std::lock_guard<std::mutex> lock(m_zRange.lock);
    if (m_zRange.generation == generation) { // z did not change while the pass ran
        m_zRange.valid = true;
        m_zRange.low = low;
        m_zRange.high = high;
    }
}

// ---- picture ---------------------------------------------------------------------------------------------

bool QSciImage::setPicture(const QImage& picture)
{
    if (picture.width() != m_width || picture.height() != m_height)
        return false;
    m_picture = picture.format() == QImage::Format_ARGB32 ? picture : picture.convertToFormat(QImage::Format_ARGB32);
    notifyChanged(PicturePart);
    return true;
}

QRgb QSciImage::pixel(int x, int y) const
{
    return reinterpret_cast<const QRgb*>(m_picture.constScanLine(m_height - 1 - y))[x];
}

void QSciImage::setPixel(int x, int y, QRgb color)
{
    reinterpret_cast<QRgb*>(m_picture.scanLine(m_height - 1 - y))[x] = color;
}

// ---- mask ------------------------------------------------------------------------------------------------

void QSciImage::setPixelSelected(int x, int y, bool selected)
{
    m_mask[int(qsizetype(x) * m_height + y)] = selected ? 1 : 0;
}

bool QSciImage::setMask(const QVector<uchar>& mask)
{
    if (qsizetype(mask.size()) != qsizetype(m_width) * m_height)
        return false;
    m_mask = mask;
    if (std::any_of(mask.cbegin(), mask.cend(), [](uchar b) { return b > 1; })) {
        for (uchar& b : m_mask)
            b = b ? 1 : 0;
    }
    notifyChanged(MaskPart);
    return true;
}

QRect QSciImage::maskBorderRect() const
{
    int minX = m_width, maxX = -1, minY = m_height, maxY = -1;
    const uchar* mask = m_mask.constData();
    for (int x = 0; x < m_width; ++x) {
        const uchar* column = mask + qsizetype(x) * m_height;
        const uchar* first = std::find(column, column + m_height, uchar(1));
        if (first == column + m_height)
            continue;
        const int last
            = int(std::find(std::make_reverse_iterator(column + m_height), std::make_reverse_iterator(column), uchar(1))
                      .base()
                  - column)
            - 1;
        minX = qMin(minX, x);
        maxX = x;
        minY = qMin(minY, int(first - column));
        maxY = qMax(maxY, last);
    }
    if (maxX < 0)
        return QRect();
    return QRect(minX, m_height - 1 - maxY, maxX - minX + 1, maxY - minY + 1);
}

qsizetype QSciImage::maskSelectedCount() const
{
    return std::count(m_mask.cbegin(), m_mask.cend(), uchar(1));
}

void QSciImage::selectAllMask()
{
    m_mask.fill(1);
    notifyChanged(MaskPart);
}

void QSciImage::clearMask()
{
    m_mask.fill(0);
    notifyChanged(MaskPart);
}

void QSciImage::invertMask()
{
    for (uchar& b : m_mask)
        b ^= 1;
    notifyChanged(MaskPart);
}

bool QSciImage::setContent(const QImage& picture, const QVector<double>& z, const QVector<uchar>& mask)
{
    const qsizetype points = qsizetype(picture.width()) * picture.height();
    if (picture.isNull() || qsizetype(z.size()) != points || qsizetype(mask.size()) != points)
        return false;
    m_width = picture.width();
    m_height = picture.height();
    m_picture = picture.format() == QImage::Format_ARGB32 ? picture : picture.convertToFormat(QImage::Format_ARGB32);
    m_z = z;
    m_mask = mask;
    if (std::any_of(mask.cbegin(), mask.cend(), [](uchar b) { return b > 1; })) {
        for (uchar& b : m_mask)
            b = b ? 1 : 0;
    }
    notifyChanged(PicturePart | ZPart | MaskPart);
    return true;
}

// ---- objects and header ------------------------------------------------------------------------------------

void QSciImage::setObjects(const QList<QSciSingleObject>& objects)
{
    m_objects = objects;
    notifyChanged(ObjectsPart);
}

void QSciImage::clearObjects()
{
    m_objects.clear();
    notifyChanged(ObjectsPart);
}

void QSciImage::setSciValues(const SciValues& values)
{
    m_sciValues = values;
    notifyChanged(HeaderPart);
}

void QSciImage::setZCalibration(double multiply, double add)
{
    m_zCalibrateMultiply = multiply;
    m_zCalibrateAdd = add;
    notifyChanged(HeaderPart);
}

void QSciImage::setInstrumentHeader(const QList<QPair<QString, QString>>& header)
{
    m_instrumentHeader = header;
    notifyChanged(HeaderPart);
}

void QSciImage::setTextLines(const QStringList& lines)
{
    m_textLines = lines;
    notifyChanged(HeaderPart);
}

void QSciImage::setDisplayElements(const QMap<QString, QString>& elements)
{
    m_displayElements = elements;
    notifyChanged(DisplayPart);
}

const QList<QPair<QString, QString>>& QSciImage::displayElementDefaults()
{
    static const QList<QPair<QString, QString>> defaults = [] {
        const char* const table[][2] = {
            { "displayFontClassName", "Arial" },
            { "displayFontColor", "0;0;0;255" },
            { "displayLineColor", "0;0;0;255" },
            { "displayRulerBackgroundPanelColor", "255;255;255;192" },
            { "displayRulerColor", "0;0;0;255" },
            { "displayRulerHeightInPix", "6" },
            { "displayRulerLabelBold", "0" },
            { "displayRulerLabelSize", "12" },
            { "displayRulerMarginInPix", "10" },
            { "displayRulerNaturalUnits", "1" },
            { "displayRulerPosition", "0" },
            { "displayRulerShowUnit", "1" },
            { "displayRulerWidthInPix", "100" },
            { "displayRulerSizeManual", "0" },
            { "displayTitleBold", "1" },
            { "displayTitleSize", "14" },
            { "displayVERTRulerPosition", "0" },
            { "displayXYLabelBold", "0" },
            { "displayXYLabelSize", "10" },
            { "displayXYNaturalUnits", "1" },
            { "displayZLabelBold", "0" },
            { "displayZLabelSize", "10" },
            { "displayZLabelWithUnit", "1" },
            { "displayZScaleBorder", "1" },
            { "displayZScaleBorderColor", "0;0;0;255" },
            { "displayZScaleLeftMargin", "10" },
            { "displayZScaleWidth", "20" },
            { "showHorizontalRuler", "0" },
            { "showHorizontalRulerLabel", "1" },
            { "showHorizontalRulerPanel", "1" },
            { "showTitle", "0" },
            { "showVerticalRuler", "0" },
            { "showVerticalRulerLabel", "1" },
            { "showVerticalRulerPanel", "1" },
            { "showXLabels", "0" },
            { "showXPosLabel", "0" },
            { "showYLabels", "0" },
            { "showYPosLabel", "0" },
            { "showZLabels", "0" },
            { "showZPosLabel", "0" },
            { "showZScale", "0" },
            { "showZScaleSubticks", "1" },
            { "showZScaleTicks", "1" },
        };
        QList<QPair<QString, QString>> list;
        for (const auto& row : table)
            list.append({ QString::fromLatin1(row[0]), QString::fromLatin1(row[1]) });
        return list;
    }();
    return defaults;
}

// ---- identity and display ------------------------------------------------------------------------------------

void QSciImage::setName(const QString& name)
{
    m_name = name;
    notifyChanged(HeaderPart);
}

void QSciImage::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    if (!m_loading)
        emit placeChanged();
}

void QSciImage::setVisible(bool visible)
{
    if (visible == m_visible)
        return;
    m_visible = visible;
    if (!m_loading)
        emit placeChanged();
}

void QSciImage::setDrawSwitches(bool image, bool mask, bool objects, bool z)
{
    m_drawImage = image;
    m_drawMask = mask;
    m_drawObjects = objects;
    m_drawZ = z;
    notifyChanged(DisplayPart);
}

void QSciImage::setOpacity(double opacity)
{
    m_opacity = opacity;
    notifyChanged(DisplayPart);
}

void QSciImage::setColorGradient(const ColorGradient& gradient)
{
    m_gradient = gradient;
    notifyChanged(DisplayPart);
}

void QSciImage::setColorRange(const ColorRange& range)
{
    m_colorRange = range;
    notifyChanged(DisplayPart);
}

void QSciImage::displayRange(double* low, double* high) const
{
    double fullMin, fullMax;
    if (m_colorRange.mode == ColorRange::Mode::Fixed)
        fullMin = fullMax = 0; // the fixed numbers stand: no pass over the matrix
    else
        zRange(&fullMin, &fullMax);
    m_colorRange.limits(m_z.constData(), m_z.size(), fullMin, fullMax, low, high);
}

// ---- operations ------------------------------------------------------------------------------------------------

void QSciImage::renderZInto(QImage& image) const
{
    double low, high;
    displayRange(&low, &high);
    // The lookup of ColorGradient::colorAt, inlined: the same range rule, the same expression and rounding.
    double range = high - low;
    if (range < 1e-200 && range > -1e-200)
        range = range < 0 ? -1e-200 : 1e-200;
    QRgb ramp[ColorGradient::RampSize + 1];
    std::memcpy(ramp, m_gradient.rampData(), sizeof(QRgb) * ColorGradient::RampSize);
    ramp[ColorGradient::RampSize] = ColorGradient::NonFiniteColor;
    if (image.size() != size() || image.format() != QImage::Format_ARGB32)
        image = QImage(m_width, m_height, QImage::Format_ARGB32);
    uchar* bits = image.bits();
    const qsizetype bpl = image.bytesPerLine();
    const double* z = m_z.constData();
    const int w = m_width, h = m_height;

    const QRgb* lookup = ramp;
    forEachBand((w + ColorColumns - 1) / ColorColumns, qsizetype(w) * h,
        [=](int band) {
            colorizeColumns(
                z, h, low, range, lookup, bits, bpl, band * ColorColumns, qMin(w, (band + 1) * ColorColumns));
        },
        DisplaySchedule);
}

QImage QSciImage::zPicture() const
{
    QImage image;
    renderZInto(image);
    return image;
}

void QSciImage::mapZToPicture()
{
    if (m_picture.format() != QImage::Format_ARGB32)
        m_picture = m_picture.convertToFormat(QImage::Format_ARGB32);
    renderZInto(m_picture);
    notifyChanged(PicturePart);
}

void QSciImage::mapPictureToZ()
{
    // The grey level is the sum of three channels, so 766 values cover every colour.
    double levels[766];
    for (int sum = 0; sum < 766; ++sum)
        levels[sum]
            = ColorGradient::zFromColor(qRgb(qMin(sum, 255), qBound(0, sum - 255, 255), qMax(0, sum - 510)), 0, 1);
    const uchar* bits = m_picture.constBits();
    const qsizetype bpl = m_picture.bytesPerLine();
    double* z = m_z.data();
    const int w = m_width, h = m_height;
    forEachBand((w + BandColumns - 1) / BandColumns, qsizetype(w) * h, [=, &levels](int band) {
        greyColumns(bits, bpl, h, levels, z, band * BandColumns, qMin(w, (band + 1) * BandColumns));
    });
    notifyChanged(ZPart);
}

void QSciImage::recalibrateZ(double multiply, double add)
{
    constexpr qsizetype Chunk = qsizetype(1) << 18;
    const qsizetype n = m_z.size();
    double* z = m_z.data();
    forEachBand(int((n + Chunk - 1) / Chunk), n, [=](int c) {
        double* p = z + c * Chunk;
        const qsizetype count = qMin(Chunk, n - c * Chunk);
        for (qsizetype i = 0; i < count; ++i)
            p[i] = p[i] * multiply + add;
    });
    m_zCalibrateMultiply = multiply;
    m_zCalibrateAdd = add;
    notifyChanged(ZPart | HeaderPart);
}

void QSciImage::flipHorizontal()
{
    const int w = m_width;
    Matrices m = transformed(
        w, m_height, w, m_height, m_picture, m_z, m_mask, [w](int x, int y) { return QPoint(w - 1 - x, y); });
    m_picture = m.picture;
    m_z = m.z;
    m_mask = m.mask;
    ObjectTransform::apply(m_objects, w, m_height, [w](int x, int y) { return QPoint(w - 1 - x, y); });
    notifyChanged(PicturePart | ZPart | MaskPart | ObjectsPart);
}

void QSciImage::flipVertical()
{
    const int h = m_height;
    Matrices m = transformed(
        m_width, h, m_width, h, m_picture, m_z, m_mask, [h](int x, int y) { return QPoint(x, h - 1 - y); });
    m_picture = m.picture;
    m_z = m.z;
    m_mask = m.mask;
    ObjectTransform::apply(m_objects, m_width, h, [h](int x, int y) { return QPoint(x, h - 1 - y); });
    notifyChanged(PicturePart | ZPart | MaskPart | ObjectsPart);
}

void QSciImage::rotate(int degrees)
{
    const int w = m_width, h = m_height;
    // Clockwise +90: display column c, row r goes to column H-1-r, row c.
    const auto plus90 = [w](int x, int y) { return QPoint(y, w - 1 - x); };
    const auto minus90 = [h](int x, int y) { return QPoint(h - 1 - y, x); };
    const auto half = [w, h](int x, int y) { return QPoint(w - 1 - x, h - 1 - y); };
    Matrices m;
    if (degrees == 90) {
        m = transformed(w, h, h, w, m_picture, m_z, m_mask, plus90);
        ObjectTransform::apply(m_objects, h, w, plus90);
    } else if (degrees == -90) {
        m = transformed(w, h, h, w, m_picture, m_z, m_mask, minus90);
        ObjectTransform::apply(m_objects, h, w, minus90);
    } else if (degrees == 180) {
        m = transformed(w, h, w, h, m_picture, m_z, m_mask, half);
        ObjectTransform::apply(m_objects, w, h, half);
    } else {
        return;
    }
    if (degrees != 180) {
        std::swap(m_width, m_height);
        std::swap(m_sciValues.sizeX, m_sciValues.sizeY);
        std::swap(m_sciValues.xUnitPerPixel, m_sciValues.yUnitPerPixel);
        std::swap(m_sciValues.xUnit, m_sciValues.yUnit);
    }
    m_picture = m.picture;
    m_z = m.z;
    m_mask = m.mask;
    notifyChanged(PicturePart | ZPart | MaskPart | ObjectsPart | HeaderPart);
}

void QSciImage::resizeToRect(const QRect& rect, double zFill, QRgb pictureFill)
{
    if (rect.width() <= 0 || rect.height() <= 0)
        return;
    const int w = m_width, h = m_height;
    const int nw = rect.width(), nh = rect.height();
    Matrices out;
    out.picture = QImage(nw, nh, QImage::Format_ARGB32);
    out.picture.fill(pictureFill);
    out.z = QVector<double>(int(qsizetype(nw) * nh), zFill);
    out.mask = QVector<uchar>(out.z.size(), uchar(0));

    // The overlap in old display coordinates (row 0 on top).
    const QRect overlap = rect.intersected(QRect(0, 0, w, h));
    if (!overlap.isEmpty()) {
        const int rows = overlap.height();
        const int oldBottomY = h - 1 - overlap.bottom(); // y of the overlap's lowest row, rows from the bottom
        const int newBottomY = nh - 1 - (overlap.bottom() - rect.top());
        for (int x = overlap.left(); x <= overlap.right(); ++x) {
            const qsizetype from = qsizetype(x) * h + oldBottomY;
            const qsizetype to = qsizetype(x - rect.left()) * nh + newBottomY;
            std::memcpy(out.z.data() + to, m_z.constData() + from, size_t(rows) * sizeof(double));
            std::memcpy(out.mask.data() + to, m_mask.constData() + from, size_t(rows));
        }
        for (int r = overlap.top(); r <= overlap.bottom(); ++r) {
            std::memcpy(out.picture.scanLine(r - rect.top()) + qsizetype(overlap.left() - rect.left()) * 4,
                m_picture.constScanLine(r) + qsizetype(overlap.left()) * 4, size_t(overlap.width()) * 4);
        }
    }
    m_sciValues.sizeX = m_sciValues.sizeX / w * nw;
    m_sciValues.sizeY = m_sciValues.sizeY / h * nh;
    m_width = nw;
    m_height = nh;
    m_picture = out.picture;
    m_z = out.z;
    m_mask = out.mask;
    const int top = rect.top(), left = rect.left();
    ObjectTransform::apply(m_objects, nw, nh, [=](int x, int y) { return QPoint(x - left, y + nh - h + top); });
    setPosition(m_left + rect.left(), m_top + rect.top());
    notifyChanged(PicturePart | ZPart | MaskPart | ObjectsPart | HeaderPart);
}

void QSciImage::cutToMaskBorderRect()
{
    const QRect rect = maskBorderRect();
    if (!rect.isEmpty())
        resizeToRect(rect, 0);
}

void QSciImage::clearPicture()
{
    m_picture.fill(Qt::white);
    notifyChanged(PicturePart);
}

void QSciImage::notifyChanged(Parts parts)
{
    if (parts & ZPart)
        zChanged();
    if (!m_loading)
        emit contentChanged(parts);
}
