#pragma once

#include "core/items/qsciimage.h"

#include <QRandomGenerator>
#include <cstring>
#include <limits>
#include <memory>

/** Items with every part filled, and a field-by-field comparison that treats z bit for bit. */
namespace ItemTestSupport {

inline QSciSingleObject sampleObject(int seed)
{
    QSciSingleObject object;
    object.area = 12.5 + seed;
    object.fracDim = -1;
    object.visible = true;
    object.lableSize = 9;
    object.borderColor = QColor(1, 2, 3, 4);
    object.rMaxVector = QPoint(seed, 2);
    object.boundingBox = QRect(QPoint(1, 2), QPoint(3, 4));
    object.fillPixels = { QPoint(1, 2), QPoint(2, 2), QPoint(seed, 3) };
    object.borderPixels = { QPoint(1, 2) };
    object.zMean = 0.25; // records keep 12 digits
    return object;
}

inline std::unique_ptr<QSciImage> sampleItem(int width, int height, quint32 seed = 1)
{
    auto item = std::make_unique<QSciImage>(width, height, QColor(Qt::white));
    QRandomGenerator random(seed);
    double* z = item->zData();
    uchar* mask = item->maskData();
    const qsizetype points = qsizetype(width) * height;
    for (qsizetype i = 0; i < points; ++i) {
        z[i] = (random.generateDouble() - 0.5) * 1e-8;
        mask[i] = random.bounded(3) == 0 ? 1 : 0;
    }
    // Values a decimal detour would change.
    const double specials[] = { -0.0, 1e-310, std::numeric_limits<double>::quiet_NaN(), 0.1, -1e300 };
    for (int i = 0; i < 5 && i < points; ++i)
        z[i] = specials[i];
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y)
            item->setPixel(x, y, random.generate());
    }
    QSciImage::SciValues sci;
    sci.offsetX = 0.1;
    sci.offsetY = -2.5e-9;
    sci.sizeX = 1.0 / 3.0;
    sci.sizeY = 7e-7;
    sci.xUnit = QStringLiteral("nm");
    sci.yUnit = QStringLiteral("µm");
    sci.zUnit = QStringLiteral("a|b<c>&d");
    sci.xUnitPerPixel = 2.0 / 3.0;
    sci.yUnitPerPixel = 1e-12;
    item->setSciValues(sci);
    item->setZCalibration(1.1, -0.3);
    item->setInstrumentHeader({ { QStringLiteral("Bias|V"), QStringLiteral("<1&2>") }, { QString(), QString() },
        { QStringLiteral("Scan"), QStringLiteral("12|3") } });
    item->setTextLines({ QStringLiteral("first line"), QString(), QStringLiteral("&pipe; | <x> & y") });
    QMap<QString, QString> elements = item->displayElements();
    elements[QStringLiteral("displayFontClassName")] = QStringLiteral("DejaVu Sans");
    elements[QStringLiteral("showZScale")] = QStringLiteral("1");
    item->setDisplayElements(elements);
    item->setName(QStringLiteral("Probe | ü"));
    item->setTabText(QStringLiteral("Tab <2>"));
    item->setZPosInImageList(3);
    item->setSelected(true);
    item->setVisible(false);
    item->setPosition(-7, 11);
    item->setAbstractText(QStringLiteral("abstract & more"));
    item->setDrawSwitches(false, true, false, true);
    item->setOpacity(0.75);
    item->setColorGradient(ColorGradient::builtIn(15));
    ColorRange range;
    range.mode = ColorRange::Mode::Fixed;
    range.minimum = -1.0 / 3.0;
    range.maximum = 2e-9;
    item->setColorRange(range);
    item->setProcessingLog({ QStringLiteral("2026-01-02 03:04:05  Denoise  radius=2|3"), QString() });
    item->setObjects({ sampleObject(1), sampleObject(2) });
    return item;
}

/** Empty when @p a and @p b hold the same file content; otherwise the first field that differs. */
inline QString difference(const QSciImage& a, const QSciImage& b)
{
    if (a.size() != b.size())
        return QStringLiteral("size");
    const qsizetype points = qsizetype(a.width()) * a.height();
    if (std::memcmp(a.zData(), b.zData(), size_t(points) * sizeof(double)) != 0)
        return QStringLiteral("z-matrix");
    if (std::memcmp(a.maskData(), b.maskData(), size_t(points)) != 0)
        return QStringLiteral("mask");
    for (int x = 0; x < a.width(); ++x) {
        for (int y = 0; y < a.height(); ++y) {
            if (a.pixel(x, y) != b.pixel(x, y))
                return QStringLiteral("picture at %1,%2").arg(x).arg(y);
        }
    }
    if (!(a.sciValues() == b.sciValues()))
        return QStringLiteral("calibration");
    if (a.zCalibrateMultiply() != b.zCalibrateMultiply() || a.zCalibrateAdd() != b.zCalibrateAdd())
        return QStringLiteral("z calibration");
    if (a.instrumentHeader() != b.instrumentHeader())
        return QStringLiteral("instrument header");
    if (a.textLines() != b.textLines())
        return QStringLiteral("text lines");
    if (a.displayElements() != b.displayElements())
        return QStringLiteral("display elements");
    if (a.name() != b.name() || a.tabText() != b.tabText() || a.abstractText() != b.abstractText())
        return QStringLiteral("texts");
    if (a.zPosInImageList() != b.zPosInImageList() || a.isSelected() != b.isSelected() || a.isVisible() != b.isVisible()
        || a.left() != b.left() || a.top() != b.top())
        return QStringLiteral("place");
    if (a.drawImageInSciPaint() != b.drawImageInSciPaint() || a.drawMaskInSciPaint() != b.drawMaskInSciPaint()
        || a.drawObjectsInSciPaint() != b.drawObjectsInSciPaint() || a.drawZInSciPaint() != b.drawZInSciPaint()
        || a.opacity() != b.opacity())
        return QStringLiteral("drawing switches");
    if (!(a.colorGradient() == b.colorGradient()))
        return QStringLiteral("gradient");
    if (a.colorRange() != b.colorRange())
        return QStringLiteral("color range");
    if (a.processingLog() != b.processingLog())
        return QStringLiteral("processing log");
    if (a.objects() != b.objects())
        return QStringLiteral("objects");
    return QString();
}

} // namespace ItemTestSupport
