#include "core/items/qsciimage.h"
#include "itemtestsupport.h"

#include <QSignalSpy>
#include <QTransform>
#include <QSet>
#include <QtTest>
#include <cmath>

namespace {

/** A W x H item whose picture, z and mask all say where each point came from. */
std::unique_ptr<QSciImage> codedItem(int width, int height)
{
    auto item = std::make_unique<QSciImage>(width, height, QColor(Qt::white));
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) {
            item->setPixel(x, y, qRgba(x, y, 7, 255));
            item->setZ(x, y, x * 100 + y);
            item->setPixelSelected(x, y, (x + 2 * y) % 3 == 0);
        }
    }
    return item;
}

/** Every point's z and mask must belong to the point its picture came from. */
bool matricesMoveTogether(const QSciImage& item)
{
    for (int x = 0; x < item.width(); ++x) {
        for (int y = 0; y < item.height(); ++y) {
            const int ox = qRed(item.pixel(x, y)), oy = qGreen(item.pixel(x, y));
            if (item.z(x, y) != ox * 100 + oy || item.isPixelSelected(x, y) != ((ox + 2 * oy) % 3 == 0))
                return false;
        }
    }
    return true;
}

} // namespace

class TestQSciImage : public QObject {
    Q_OBJECT

private slots:
    void rotationsAndFlipsMoveAllMatrices_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QSize>("size");
        // Qt's own image transforms are the reference for the direction of each operation.
        QTest::newRow("rotate +90") << QStringLiteral("+90") << QSize(2, 3);
        QTest::newRow("rotate -90") << QStringLiteral("-90") << QSize(2, 3);
        QTest::newRow("rotate 180") << QStringLiteral("180") << QSize(3, 2);
        QTest::newRow("flip horizontal") << QStringLiteral("h") << QSize(3, 2);
        QTest::newRow("flip vertical") << QStringLiteral("v") << QSize(3, 2);
    }

    void rotationsAndFlipsMoveAllMatrices()
    {
        QFETCH(QString, operation);
        QFETCH(QSize, size);
        auto item = codedItem(3, 2);
        item->setObjects({ ItemTestSupport::sampleObject(1) });
        const QImage before = item->picture();
        QImage expected;
        QSignalSpy spy(item.get(), &QSciImage::contentChanged);
        if (operation == QLatin1String("h") || operation == QLatin1String("v")) {
            const bool horizontal = operation == QLatin1String("h");
            horizontal ? item->flipHorizontal() : item->flipVertical();
            expected = before.mirrored(horizontal, !horizontal);
        } else {
            const int degrees = operation.toInt();
            item->rotate(degrees);
            expected = before.transformed(QTransform().rotate(degrees));
        }
        QCOMPARE(item->size(), size);
        QCOMPARE(
            item->picture().convertToFormat(QImage::Format_ARGB32), expected.convertToFormat(QImage::Format_ARGB32));
        QVERIFY(matricesMoveTogether(*item));
        QVERIFY(item->objects().isEmpty());
        QCOMPARE(spy.count(), 1);
        const auto parts = spy.at(0).at(0).value<QSciImage::Parts>();
        QVERIFY(parts.testFlag(QSciImage::PicturePart) && parts.testFlag(QSciImage::ZPart)
            && parts.testFlag(QSciImage::MaskPart));
    }

    void rotationSwapsCalibration()
    {
        auto item = codedItem(3, 2);
        QSciImage::SciValues sci = item->sciValues();
        sci.sizeX = 30;
        sci.sizeY = 20;
        sci.xUnitPerPixel = 10;
        item->setSciValues(sci);
        item->rotate(90);
        QCOMPARE(item->sciValues().sizeX, 20.0);
        QCOMPARE(item->sciValues().sizeY, 30.0);
        QCOMPARE(item->sciValues().yUnitPerPixel, 10.0);
        item->rotate(45);
        QCOMPARE(item->size(), QSize(2, 3));
    }

    void expandingNonOverlappingItemsFillsWithOwnExtreme_data()
    {
        QTest::addColumn<bool>("useMaximum");
        QTest::newRow("min(z)") << false;
        QTest::newRow("max(z)") << true;
    }

    void expandingNonOverlappingItemsFillsWithOwnExtreme()
    {
        QFETCH(bool, useMaximum);
        auto a = codedItem(3, 2);
        auto b = codedItem(2, 2);
        b->recalibrateZ(1, 1000);
        b->setPosition(10, 5);
        const QRect united = a->tabRect().united(b->tabRect());
        QCOMPARE(united, QRect(0, 0, 12, 7));
        for (QSciImage* item : { a.get(), b.get() }) {
            const auto original = std::unique_ptr<QSciImage>(item->duplicate());
            const double fill = useMaximum ? item->zMax() : item->zMin();
            const QPoint shift = item->tabRect().topLeft() - united.topLeft();
            item->resizeToRect(united.translated(-item->left(), -item->top()), fill);
            QCOMPARE(item->size(), united.size());
            QCOMPARE(item->tabRect().topLeft(), united.topLeft());
            for (int x = 0; x < item->width(); ++x) {
                for (int y = 0; y < item->height(); ++y) {
                    // Display terms: row 0 on top, for both the old and the new item.
                    const int ox = x - shift.x();
                    const int orow = (item->height() - 1 - y) - shift.y();
                    if (ox >= 0 && ox < original->width() && orow >= 0 && orow < original->height()) {
                        const int oy = original->height() - 1 - orow;
                        QCOMPARE(item->z(x, y), original->z(ox, oy));
                        QCOMPARE(item->isPixelSelected(x, y), original->isPixelSelected(ox, oy));
                        QCOMPARE(item->pixel(x, y), original->pixel(ox, oy));
                    } else {
                        QCOMPARE(item->z(x, y), fill);
                        QVERIFY(!item->isPixelSelected(x, y));
                    }
                }
            }
        }
    }

    void cutsToMaskBorderRect()
    {
        auto item = codedItem(5, 4);
        item->clearMask();
        item->setPixelSelected(1, 0, true);
        item->setPixelSelected(3, 2, true);
        QCOMPARE(item->maskBorderRect(), QRect(1, 1, 3, 3)); // y 0..2 are display rows 3..1
        item->setPosition(100, 200);
        item->cutToMaskBorderRect();
        QCOMPARE(item->size(), QSize(3, 3));
        QCOMPARE(item->tabRect().topLeft(), QPoint(101, 201));
        QCOMPARE(item->z(0, 0), 100.0);
        QCOMPARE(item->z(2, 2), 302.0);
        QCOMPARE(item->maskSelectedCount(), qsizetype(2));
        item->clearMask();
        item->cutToMaskBorderRect();
        QCOMPARE(item->size(), QSize(3, 3));
    }

    void duplicateIsIndependent()
    {
        auto source = ItemTestSupport::sampleItem(6, 5);
        const std::unique_ptr<QSciImage> copy(source->duplicate());
        QCOMPARE(ItemTestSupport::difference(*source, *copy), QString());
        copy->objects()[0].area = 99;
        copy->zData()[3] = 42;
        copy->maskData()[0] ^= 1;
        copy->setPixel(0, 0, qRgb(1, 2, 3));
        const auto fresh = ItemTestSupport::sampleItem(6, 5);
        QCOMPARE(ItemTestSupport::difference(*source, *fresh), QString());
    }

    void mapZToPictureIsTheGradientLookup_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<double>("offset");
        QTest::newRow("parallel size") << 300 << 260 << 0.0;
        QTest::newRow("one thread, far from zero") << 40 << 30 << -1e6;
    }

    void mapZToPictureIsTheGradientLookup()
    {
        // z spread evenly over its range, so every ramp entry is hit and an index off by one entry shows.
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(double, offset);
        QSciImage item(width, height, QColor(Qt::white));
        item.setColorGradient(ColorGradient::builtIn(13));
        const qsizetype points = qsizetype(width) * height;
        double* z = item.zData();
        for (qsizetype i = 0; i < points; ++i)
            z[i] = offset + double((i * 7919) % points) / double(points - 1) * 1000.0;
        double low, high;
        item.zRange(&low, &high);
        item.mapZToPicture();
        QSet<QRgb> seen;
        for (int x = 0; x < width; ++x)
            for (int y = 0; y < height; ++y) {
                seen.insert(item.pixel(x, y));
                if (item.pixel(x, y) != item.colorGradient().colorAt(item.z(x, y), low, high))
                    QFAIL(qPrintable(QStringLiteral("point %1,%2").arg(x).arg(y)));
            }
        const QRgb* ramp = item.colorGradient().rampData();
        QCOMPARE(seen.size(), QSet<QRgb>(ramp, ramp + ColorGradient::RampSize).size());
        // By hand: the lowest value opens the ramp, the highest closes it, a quarter up is entry 250.
        const ColorGradient& g = item.colorGradient();
        QCOMPARE(g.colorAt(0, 0, 1000), ramp[0]);
        QCOMPARE(g.colorAt(1000, 0, 1000), ramp[999]);
        QCOMPARE(g.colorAt(250, 0, 1000), ramp[250]);
        QCOMPARE(g.colorAt(250.9, 0, 1000), ramp[250]);
        QCOMPARE(g.colorAt(999.5, 0, 1000), ramp[999]);
        QCOMPARE(item.pixel(0, 0), g.colorAt(z[0], low, high));
    }

    void nonFiniteValuesAreSkippedAndPaintedApart_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("small") << 3;
        QTest::newRow("wide, in four lanes") << 1000;
    }

    void nonFiniteValuesAreSkippedAndPaintedApart()
    {
        // Aborted scans leave NaN and infinities; they must neither become the range nor blacken the rest.
        QFETCH(int, width);
        constexpr double inf = std::numeric_limits<double>::infinity();
        QSciImage item(width, 2, QColor(Qt::black));
        double* z = item.zData();
        double largest = 0;
        for (int i = 0; i < 2 * width; ++i) {
            z[i] = i % 5 == 0 ? -inf : i % 5 == 1 ? inf : i % 5 == 2 ? std::numeric_limits<double>::quiet_NaN() : 1 + i;
            if (i % 5 > 2)
                largest = 1 + i;
        }
        double low = 0, high = 0;
        item.zRange(&low, &high);
        QCOMPARE(low, 4.0);
        QCOMPARE(high, largest);
        QVERIFY(std::isfinite(item.zMin()) && std::isfinite(item.zMax()));
        item.setColorGradient(ColorGradient::builtIn(1));
        item.mapZToPicture();
        QCOMPARE(item.pixel(0, 0), ColorGradient::NonFiniteColor); // -inf
        QCOMPARE(item.pixel(0, 1), ColorGradient::NonFiniteColor); // +inf
        QCOMPARE(item.pixel(1, 0), ColorGradient::NonFiniteColor); // NaN
        QVERIFY(item.pixel(1, 1) != item.pixel(width - 1, 1));
        QCOMPARE(item.colorGradient().colorAt(inf, 0, 1), ColorGradient::NonFiniteColor);

        for (int i = 0; i < 2 * width; ++i)
            z[i] = std::numeric_limits<double>::quiet_NaN();
        item.notifyChanged(QSciImage::ZPart);
        QVERIFY(std::isnan(item.zMin()));
    }

    void theKeptRangeFollowsEveryChangeOfZ()
    {
        // The extremes are kept between colourings; a stale pair would colour the picture with the old range.
        QSciImage item(3, 2, QColor(Qt::black));
        QCOMPARE(item.zMax(), 0.0);
        item.setZ(1, 1, 5);
        QCOMPARE(item.zMax(), 5.0);
        item.zData()[0] = 9;
        QCOMPARE(item.zMax(), 9.0);
        double* z = item.zData();
        z[1] = -4;
        item.notifyChanged(QSciImage::ZPart);
        QCOMPARE(item.zMin(), -4.0);
        QVERIFY(item.setZMatrix(QVector<double>(6, 2.0)));
        QCOMPARE(item.zMax(), 2.0);
        item.recalibrateZ(3, 1);
        QCOMPARE(item.zMax(), 7.0);

        QSciImage copy(1, 1, QColor(Qt::black));
        copy.copyFrom(item);
        QCOMPARE(copy.zMin(), 7.0);
        copy.zData()[2] = 100; // detaches the copy; the original keeps its matrix and range
        QCOMPARE(copy.zMax(), 100.0);
        QCOMPARE(item.zMax(), 7.0);
        item.flipVertical();
        QCOMPARE(item.zMax(), 7.0);
        QSciImage other(4, 4, QColor(Qt::black));
        QVERIFY(item.setContent(other.picture(), QVector<double>(16, -1.0), QVector<uchar>(16, 0)));
        QCOMPARE(item.zMax(), -1.0);
    }

    void mapPictureToZGivesZeroToOne()
    {
        auto item = ItemTestSupport::sampleItem(40, 30);
        item->recalibrateZ(1e9, 50);
        item->setPixel(0, 0, qRgb(255, 255, 255));
        item->setPixel(1, 0, qRgb(0, 0, 0));
        item->mapPictureToZ();
        for (int x = 0; x < item->width(); ++x) {
            for (int y = 0; y < item->height(); ++y)
                QVERIFY(item->z(x, y) >= 0 && item->z(x, y) <= 1);
        }
        QCOMPARE(item->z(0, 0), 1.0);
        QCOMPARE(item->z(1, 0), 0.0);
        QCOMPARE(item->z(2, 0), ColorGradient::zFromColor(item->pixel(2, 0), 0, 1));
    }

    void setContentTakesTheNewSize()
    {
        QSciImage item;
        QSignalSpy spy(&item, &QSciImage::contentChanged);
        QImage picture(4, 2, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(!item.setContent(picture, QVector<double>(7), QVector<uchar>(8)));
        QCOMPARE(item.size(), QSize(100, 100));
        QVERIFY(item.setContent(picture, QVector<double>(8, 1.5), QVector<uchar>(8, 5)));
        QCOMPARE(item.size(), QSize(4, 2));
        QCOMPARE(item.picture().format(), QImage::Format_ARGB32);
        QCOMPARE(item.maskSelectedCount(), qsizetype(8));
        item.setPixel(0, 0, qRgb(0, 0, 0));
        item.setLoading(true);
        item.clearMask();
        item.setLoading(false);
        QCOMPARE(spy.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestQSciImage)
#include "tst_qsciimage.moc"
