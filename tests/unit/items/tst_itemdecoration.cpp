#include "core/items/itemdecoration.h"
#include "core/items/qsciimage.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

/** A W x H item over 1.5 µm x 0.75 µm (in nm), z from -2 to 5 nm, a noisy opaque picture. */
std::unique_ptr<QSciImage> sample(int width, int height)
{
    auto item = std::make_unique<QSciImage>(width, height, Qt::white);
    QSciImage::SciValues values;
    values.sizeX = 1500;
    values.sizeY = 750;
    values.xUnit = values.yUnit = values.zUnit = QStringLiteral("nm");
    item->setSciValues(values);
    item->setName(QStringLiteral("Au(111) terraces"));
    QRandomGenerator random(7);
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) {
            item->setZ(x, y, -2 + 7.0 * (x + y) / (width + height - 2));
            item->setPixel(x, y, qRgb(random.bounded(256), random.bounded(256), random.bounded(256)));
        }
    }
    return item;
}

/** Black pixels of row @p y. */
int blackCount(const QImage& image, int y)
{
    int n = 0;
    for (int x = 0; x < image.width(); ++x)
        n += image.pixel(x, y) == qRgb(0, 0, 0);
    return n;
}

} // namespace

class TestItemDecoration : public QObject {
    Q_OBJECT

private slots:
    void ticksAreRoundAndReadable()
    {
        QString unit;
        QVector<DisplayDecoration::Tick> ticks
            = DisplayDecoration::ticks(0, 1500, QStringLiteral("nm"), 5, true, false, false, &unit);
        QCOMPARE(unit, QString::fromUtf8("µm"));
        QStringList texts;
        for (const auto& t : ticks)
            texts << t.text;
        QCOMPARE(texts, QStringList({ "0.0", "0.5", "1.0", "1.5" }));
        QCOMPARE(ticks.last().fraction, 1.0);

        // Negative to positive, with subticks: the majors keep their labels, zero is not "-0".
        ticks = DisplayDecoration::ticks(-2, 5, QStringLiteral("nm"), 4, true, true, true);
        texts.clear();
        int minors = 0;
        for (const auto& t : ticks) {
            if (t.major)
                texts << t.text;
            else
                ++minors;
            QVERIFY(t.fraction >= 0 && t.fraction <= 1);
        }
        QCOMPARE(texts, QStringList({ "-2 nm", "0 nm", "2 nm", "4 nm" }));
        QCOMPARE(minors, 11);

        // However little room, a scale shows at least two numbers.
        int majors = 0;
        for (const auto& t : DisplayDecoration::ticks(0, 449, QString(), 1, true, true))
            majors += t.major;
        QCOMPARE(majors, 3);

        // Evenly spaced: both ends labelled exactly.
        ticks = DisplayDecoration::ticks(0.13, 0.87, QString(), 2, false);
        QCOMPARE(ticks.size(), 3);
        QCOMPARE(ticks.first().text, QStringLiteral("0.13"));
        QCOMPARE(ticks.last().text, QStringLiteral("0.87"));

        // A flat z range still gets its one value; a broken one gets none rather than garbage.
        QCOMPARE(DisplayDecoration::ticks(3e-9, 3e-9, QStringLiteral("m"), 5, true).size(), 1);
        QCOMPARE(DisplayDecoration::ticks(3e-9, 3e-9, QStringLiteral("m"), 5, true).first().text, QStringLiteral("3"));
        QVERIFY(DisplayDecoration::ticks(0, qInf(), QStringLiteral("m"), 5, true).isEmpty());
        QVERIFY(DisplayDecoration::ticks(1e6, 1e6 + 1e-10, QString(), 5, true, true).size() <= 5 * 6 + 1);
    }

    void decoratedPictureWrapsTheBarePictureUnchanged_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("wide") << QSize(120, 40);
        QTest::newRow("tall") << QSize(30, 90);
        QTest::newRow("one point") << QSize(1, 1);
    }

    void decoratedPictureWrapsTheBarePictureUnchanged()
    {
        QFETCH(QSize, size);
        const auto item = sample(size.width(), size.height());
        DisplayElements elements;
        elements.showTitle = elements.showXLabels = elements.showXPosLabel = true;
        elements.showYLabels = elements.showYPosLabel = true;
        elements.showZScale = elements.showZLabels = elements.showZPosLabel = true;
        const QImage bare = item->picture();
        const DisplayDecoration decoration = ItemDecoration::of(*item, elements);
        const QMargins m = decoration.margins();
        QVERIFY(m.left() > 0 && m.top() > 0 && m.right() > elements.zScaleLeftMargin + elements.zScaleWidth
            && m.bottom() > 0);
        const QImage decorated = ItemDecoration::decoratedPicture(*item, bare, elements);
        QCOMPARE(decorated.size(), bare.size().grownBy(m));
        QCOMPARE(decorated.copy(QRect(QPoint(m.left(), m.top()), bare.size())), bare);
    }

    void defaultsLeaveThePictureAlone()
    {
        const auto item = sample(20, 10);
        QVERIFY(ItemDecoration::of(*item).isEmpty());
        QCOMPARE(ItemDecoration::decoratedPicture(*item), item->picture());
    }

    void zScaleRunsFromTheGradientsLowToHighEnd_data()
    {
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("border");
        QTest::newRow("short, bordered") << 7 << true;
        QTest::newRow("taller than the ramp") << 1200 << false;
    }

    void zScaleRunsFromTheGradientsLowToHighEnd()
    {
        QFETCH(int, height);
        QFETCH(bool, border);
        const auto item = sample(10, height);
        item->setColorGradient(ColorGradient::builtIn(2));
        DisplayElements elements;
        elements.showZScale = true;
        elements.zScaleBorder = border;
        const DisplayDecoration decoration = ItemDecoration::of(*item, elements);
        const QImage image = decoration.render(item->picture());
        const int x = decoration.margins().left() + 10 + elements.zScaleLeftMargin + elements.zScaleWidth / 2;
        const int top = decoration.margins().top();
        const QRgb* ramp = item->colorGradient().rampData();
        QCOMPARE(image.pixel(x, top), ramp[ColorGradient::RampSize - 1]);
        QCOMPARE(image.pixel(x, top + height - 1), ramp[0]);
        if (border) {
            QCOMPARE(image.pixel(x, top - 1), qRgb(0, 0, 0));
            QCOMPARE(image.pixel(x, top + height), qRgb(0, 0, 0));
        }
    }

    void rulerLiesInItsCornerWithARoundLength()
    {
        // 100 points over 1500 nm: a quarter of the width is 375 nm, shortened to 200 nm, 13 points.
        const auto item = sample(100, 100);
        item->pictureRef().fill(Qt::white);
        DisplayElements elements;
        elements.showHorizontalRuler = true;
        const QImage bare = item->picture();
        QImage image = ItemDecoration::decoratedPicture(*item, bare, elements);
        QCOMPARE(image.size(), bare.size());
        const int barRow = 100 - elements.rulerMargin - elements.rulerThickness / 2;
        QCOMPARE(blackCount(image, barRow), 13);
        QCOMPARE(image.copy(0, 0, 100, 50), bare.copy(0, 0, 100, 50));

        elements.rulerNaturalUnits = false;
        image = ItemDecoration::decoratedPicture(*item, bare, elements);
        QCOMPARE(blackCount(image, barRow), 25);

        elements.horizontalRulerCorner = DisplayElements::TopRight;
        elements.rulerSizeManual = true;
        elements.rulerLength = 60;
        image = ItemDecoration::decoratedPicture(*item, bare, elements);
        QCOMPARE(blackCount(image, elements.rulerMargin + elements.rulerThickness / 2), 60);
        QCOMPARE(image.pixel(99 - elements.rulerMargin, elements.rulerMargin + 1), qRgb(0, 0, 0));
        QCOMPARE(image.copy(0, 50, 100, 50), bare.copy(0, 50, 100, 50));
    }

    void storedSettingsAreReadSafely()
    {
        QMap<QString, QString> values;
        values.insert(QStringLiteral("showZScale"), QStringLiteral("1"));
        values.insert(QStringLiteral("displayZScaleWidth"), QStringLiteral("1e12"));
        values.insert(QStringLiteral("displayZScaleLeftMargin"), QStringLiteral("-5"));
        values.insert(QStringLiteral("displayFontColor"), QStringLiteral("10;20;30"));
        values.insert(QStringLiteral("displayLineColor"), QStringLiteral("red"));
        values.insert(QStringLiteral("showTitle"), QStringLiteral("maybe"));
        const DisplayElements e = DisplayElements::fromMap(values);
        QVERIFY(e.showZScale);
        QCOMPARE(e.zScaleWidth, 4096);
        QCOMPARE(e.zScaleLeftMargin, 0);
        QCOMPARE(e.fontColor, QColor(10, 20, 30));
        QCOMPARE(e.lineColor, QColor(Qt::black));
        QVERIFY(!e.showTitle);
    }
};

QTEST_MAIN(TestItemDecoration)
#include "tst_itemdecoration.moc"
