#include "core/items/itemdecoration.h"
#include "core/items/qsciimage.h"

#include <QtTest>

namespace {

/** A one-row item holding @p values from left to right. */
std::unique_ptr<QSciImage> rowItem(const QVector<double>& values)
{
    auto item = std::make_unique<QSciImage>(values.size(), 1, Qt::white);
    for (int x = 0; x < values.size(); ++x)
        item->setZ(x, 0, values.at(x));
    item->setColorGradient(ColorGradient::builtIn(3));
    return item;
}

} // namespace

class TestItemColorRange : public QObject {
    Q_OBJECT

private slots:
    void fixedRangeClampsBothEnds()
    {
        const auto item = rowItem({ -5, 0, 4.99, 10, 50 });
        ColorRange range;
        QVERIFY(ColorRange::parseFixed(QStringLiteral("0:10"), &range));
        item->setColorRange(range);
        item->mapZToPicture();
        const QRgb* ramp = item->colorGradient().rampData();
        QVERIFY(ramp[0] != ramp[999]);
        QCOMPARE(item->pixel(0, 0), ramp[0]);
        QCOMPARE(item->pixel(1, 0), ramp[0]);
        QCOMPARE(item->pixel(2, 0), ramp[499]);
        QCOMPARE(item->pixel(3, 0), ramp[999]);
        QCOMPARE(item->pixel(4, 0), ramp[999]);
        // The z scale shows the numbers the colours come from, not the matrix's extremes.
        const DisplayDecoration::Source source = ItemDecoration::sourceOf(*item);
        QCOMPARE(source.zMin, 0.0);
        QCOMPARE(source.zMax, 10.0);
    }

    void cutRangeSpreadsTheGradientOverTheRestOfAField()
    {
        QVector<double> values;
        for (int i = 0; i < 200; ++i)
            values.append(i);
        values[50] = 1e12; // one spike would squeeze every other point into the first ramp entry
        const auto item = rowItem(values);
        item->mapZToPicture();
        const QRgb* ramp = item->colorGradient().rampData();
        QCOMPARE(item->pixel(199, 0), ramp[0]);

        ColorRange range;
        QVERIFY(ColorRange::parseCut(QStringLiteral("1"), &range));
        item->setColorRange(range);
        double low = 0, high = 0;
        item->displayRange(&low, &high);
        QVERIFY2(
            low >= 0 && low <= 2 && high >= 197 && high <= 199, qPrintable(QStringLiteral("%1 %2").arg(low).arg(high)));
        item->mapZToPicture();
        QCOMPARE(item->pixel(0, 0), ramp[0]);
        QCOMPARE(item->pixel(50, 0), ramp[999]);
        QVERIFY(item->pixel(100, 0) != ramp[0] && item->pixel(100, 0) != ramp[999]);
    }
};

QTEST_GUILESS_MAIN(TestItemColorRange)
#include "tst_itemcolorrange.moc"
