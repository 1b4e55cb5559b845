#include "core/items/qsciimage.h"
#include "core/plots/lineprofile.h"

#include <QtTest>

namespace {

/** 40 x 20 points, z 0 on the left half and @p step on the right, 0.5 nm a point. */
QSciImage* stepItem(double step)
{
    auto* item = new QSciImage(40, 20, Qt::white);
    for (int x = 0; x < 40; ++x)
        for (int y = 0; y < 20; ++y)
            item->setZ(x, y, x < 20 ? 0.0 : step);
    QSciImage::SciValues sci = item->sciValues();
    sci.xUnit = sci.yUnit = QStringLiteral("nm");
    sci.zUnit = QStringLiteral("pm");
    sci.sizeX = 20;
    sci.sizeY = 10;
    sci.xUnitPerPixel = sci.yUnitPerPixel = 0.5;
    item->setSciValues(sci);
    return item;
}

} // namespace

class TestLineProfile : public QObject {
    Q_OBJECT

private slots:
    void stepAcrossGivesTheStepHeight()
    {
        std::unique_ptr<QSciImage> item(stepItem(3.5));
        const LineProfile p = LineProfile::sample(*item, QPointF(2, 10), QPointF(37, 10), 1);
        QCOMPARE(p.size(), 36);
        QCOMPARE(p.z.first(), 0.0);
        QCOMPARE(p.z.last(), 3.5);
        QCOMPARE(p.z.last() - p.z.first(), 3.5);
        // Physical distance: 35 points of 0.5 nm.
        QCOMPARE(p.distance.last(), 17.5);
        QCOMPARE(p.distanceUnit, QStringLiteral("nm"));
        // Monotonic across the edge: interpolation, no overshoot.
        for (int i = 1; i < p.size(); ++i)
            QVERIFY(p.z[i] >= p.z[i - 1]);
    }

    void thickLineAveragesAcrossItsWidth()
    {
        std::unique_ptr<QSciImage> item(stepItem(0));
        // Rows as displayed: top row 0 has z 1, all others 0 (the item stores rows from the bottom).
        for (int x = 0; x < 40; ++x)
            item->setZ(x, 19, 1.0);
        const LineProfile thin = LineProfile::sample(*item, QPointF(5, 1), QPointF(30, 1), 1);
        QCOMPARE(thin.z[3], 0.0);
        const LineProfile thick = LineProfile::sample(*item, QPointF(5, 1), QPointF(30, 1), 3);
        QCOMPARE(thick.z[3], 1.0 / 3);
        // Lines running off the item sample NaN outside and keep the inside.
        const LineProfile off = LineProfile::sample(*item, QPointF(-10, 5), QPointF(5, 5), 1);
        QVERIFY(qIsNaN(off.z.first()));
        QCOMPARE(off.z.last(), 0.0);
    }

    void csvHasUnitsAndExactNumbers()
    {
        std::unique_ptr<QSciImage> item(stepItem(1.0 / 3));
        const LineProfile p = LineProfile::sample(*item, QPointF(38, 0), QPointF(39, 0), 1);
        QCOMPARE(p.toCsv(), QStringLiteral("distance [nm],z [pm]\n0,0.33333333333333331\n0.5,0.33333333333333331\n"));
        // A single point gives one sample.
        QCOMPARE(LineProfile::sample(*item, QPointF(3, 3), QPointF(3, 3)).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestLineProfile)
#include "tst_lineprofile.moc"
