#include "core/items/distancemeasure.h"
#include "core/items/qsciimage.h"

#include <QtTest>
#include <cmath>

class TestDistanceMeasure : public QObject {
    Q_OBJECT

private slots:
    void lengthsAndAngles_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<double>("xPerPoint");
        QTest::addColumn<double>("yPerPoint");
        QTest::addColumn<double>("points");
        QTest::addColumn<double>("anglePoints");
        QTest::addColumn<double>("physical");
        QTest::addColumn<double>("anglePhysical");
        const double deg = 180.0 / M_PI;
        // Display rows grow downwards: going up the item is a positive angle.
        QTest::newRow("up and right") << QPoint(0, 4) << QPoint(3, 0) << 2.0 << 2.0 << 5.0 << std::atan2(4, 3) * deg
                                      << 10.0 << std::atan2(4, 3) * deg;
        QTest::newRow("down") << QPoint(1, 1) << QPoint(1, 3) << 1.0 << 1.0 << 2.0 << -90.0 << 2.0 << -90.0;
        QTest::newRow("left") << QPoint(5, 0) << QPoint(1, 0) << 0.5 << 1.0 << 4.0 << 180.0 << 2.0 << 180.0;
        QTest::newRow("anisotropic") << QPoint(0, 4) << QPoint(3, 0) << 1.0 << 2.0 << 5.0 << std::atan2(4, 3) * deg
                                     << std::hypot(3.0, 8.0) << std::atan2(8, 3) * deg;
        QTest::newRow("no length") << QPoint(2, 2) << QPoint(2, 2) << 1.0 << 1.0 << 0.0 << 0.0 << 0.0 << 0.0;
    }

    void lengthsAndAngles()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        QFETCH(double, xPerPoint);
        QFETCH(double, yPerPoint);
        QSciImage item(8, 8, Qt::white);
        QSciImage::SciValues sci = item.sciValues();
        sci.xUnitPerPixel = xPerPoint;
        sci.yUnitPerPixel = yPerPoint;
        sci.xUnit = QStringLiteral("nm");
        item.setSciValues(sci);
        const DistanceMeasure m = DistanceMeasure::between(item, from, to);
        QTEST(m.lengthPoints, "points");
        QTEST(m.anglePoints, "anglePoints");
        QTEST(m.lengthPhysical, "physical");
        QTEST(m.anglePhysical, "anglePhysical");
        QCOMPARE(m.unit, QStringLiteral("nm"));
    }
};

QTEST_GUILESS_MAIN(TestDistanceMeasure)
#include "tst_distancemeasure.moc"
