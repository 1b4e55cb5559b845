#include "core/analysis/objectmeasures.h"
#include "core/items/qscisingleobject.h"

#include <QtTest>
#include <cmath>
#include <functional>

namespace {

constexpr double Sqrt2 = 1.4142135623730951;

/** An object of the points (x, y) of a 40 x 40 field where @p inside holds, with z = @p height there. */
struct Shape {
    QSciSingleObject object;
    QVector<double> z = QVector<double>(40 * 40, 0.0);

    Shape(const std::function<bool(int, int)>& inside, const std::function<double(int, int)>& height = nullptr)
    {
        for (int x = 0; x < 40; ++x)
            for (int y = 0; y < 40; ++y)
                if (inside(x, y)) {
                    object.fillPixels.append(QPoint(x, y));
                    z[x * 40 + y] = height ? height(x, y) : 1.0;
                }
        ObjectMeasures::computeAll(object, { z.constData(), 40, 40 }, 0.0);
    }
};

} // namespace

class TestObjectMeasures : public QObject {
    Q_OBJECT

private slots:
    void squaresAndSinglePixel()
    {
        const Shape three([](int x, int y) { return x >= 10 && x < 13 && y >= 10 && y < 13; });
        const QSciSingleObject& s = three.object;
        QCOMPARE(s.areaPBM, 9.0);
        QCOMPARE(s.areaPM, 7.0);
        QCOMPARE(s.borderPixels.size(), 8);
        // Corners: two straight and one diagonal neighbour; side centres: three and two.
        QCOMPARE(s.circumferencePM, 8.0);
        QVERIFY(qAbs(s.circumferencePBM - (4 * (1 + Sqrt2 / 2) + 4 + 1.1715728752538102)) < 1e-12);
        QVERIFY(qAbs(s.compactnessPM - 64.0 / 7 * 0.25 / ObjectMeasures::Pi) < 1e-12);
        QCOMPARE(s.boundingBox, QRect(10, 10, 3, 3));
        QCOMPARE(s.rMax, std::sqrt(2.0));
        QCOMPARE(s.rMin, 1.0);
        QCOMPARE(s.rMinVector, QPoint(10, 11)); // the first border pixel at the smallest distance

        const Shape five([](int x, int y) { return x >= 2 && x < 7 && y >= 2 && y < 7; });
        QCOMPARE(five.object.areaPM, 19.0);
        QCOMPARE(five.object.circumferencePM, 16.0);
        QCOMPARE(five.object.fracDim, 2.0);
        QCOMPARE(five.object.largestExtentDistance, std::sqrt(32.0));
        QVERIFY(qAbs(five.object.heywoodDiameterPBM - std::sqrt(100 / ObjectMeasures::Pi)) < 1e-12);

        const Shape one([](int x, int y) { return x == 5 && y == 5; });
        QCOMPARE(one.object.fracDim, -1.0);
        QCOMPARE(one.object.circumferencePM, 0.0);
        QCOMPARE(one.object.circumferencePBM, 1.1715728752538102);
        QCOMPARE(one.object.width, 1);
    }

    void plateauTouchingTheEdge()
    {
        // Every pixel on the image edge is a border pixel even with all its neighbours in the object.
        const Shape edge([](int x, int y) { return x < 4 && y >= 10 && y < 14; });
        QCOMPARE(edge.object.borderPixels.size(), 4 + 4 + 2 + 2);
        QVERIFY(edge.object.borderPixels.contains(QPoint(0, 11)));
        QVERIFY(!edge.object.borderPixels.contains(QPoint(1, 11)));
    }

    void diamondOutline()
    {
        const Shape d([](int x, int y) { return std::abs(x - 20) + std::abs(y - 20) <= 3; });
        QCOMPARE(d.object.areaPBM, 25.0);
        QCOMPARE(d.object.borderPixels.size(), 12);
        // Tips: one straight and two diagonal neighbours; sides: two and three.
        QVERIFY(qAbs(d.object.circumferencePM - 12 * Sqrt2) < 1e-12);
        QVERIFY(qAbs(d.object.circumferencePBM - (4 * (2 * Sqrt2 - 1) + 8 * Sqrt2 + 1.1715728752538102)) < 1e-12);
        QCOMPARE(d.object.rMax, 3.0);
        QCOMPARE(d.object.rMin, std::sqrt(5.0));
        QCOMPARE(d.object.width, 7);
        QVERIFY(qAbs(d.object.fracDim - std::log(25.0) / std::log(7.0)) < 1e-12);
    }

    void discAndRing()
    {
        const Shape disc([](int x, int y) { return (x - 20) * (x - 20) + (y - 20) * (y - 20) <= 100; },
            [](int x, int y) { return 1 + 0.1 * x + 0.0 * y; });
        QCOMPARE(disc.object.areaPBM, 317.0); // lattice points in a circle of radius 10
        QCOMPARE(disc.object.rMax, 10.0);
        QCOMPARE(disc.object.areaPM, 279.0); // 318 less the bounding box terms
        // Near 1 for a disc, above it for the staircase of its outline.
        QVERIFY(disc.object.compactnessPBM > 1 && disc.object.compactnessPBM < 1.3);
        QVERIFY(disc.object.compactnessPM > 1 && disc.object.compactnessPM < 1.3);
        QVERIFY(qAbs(disc.object.mainFirstAxisLength - 20) < 0.6);
        QVERIFY(qAbs(disc.object.mainAxesAspectRatio - 1) < 0.01);
        QVERIFY(qAbs(disc.object.zMean - 3) < 1e-12);
        QCOMPARE(disc.object.zMaxAt.x(), 30);
        // Heights rise to the right, so the centre of the volume lies right of the centre of area.
        const QPointF com = ObjectMeasures::centroidOfCubage(disc.object, { disc.z.constData(), 40, 40 });
        QVERIFY(com.x() > 20.1 && qAbs(com.y() - 20) < 1e-9);
        QCOMPARE(disc.object.skeletonNumberOfBranches, 1);

        const Shape ring([](int x, int y) {
            const int d2 = (x - 20) * (x - 20) + (y - 20) * (y - 20);
            return d2 <= 100 && d2 > 36;
        });
        QCOMPARE(ring.object.areaPBM, 317.0 - 113); // 113 points within radius 6
        // The inner edge counts as border: the smallest border distance is the hole's.
        QVERIFY(ring.object.rMin > 6 && ring.object.rMin < 7.1);
        QCOMPARE(ring.object.skeletonNumberOfBranches, 1);
        QVERIFY(ring.object.skeletonMaxLength > 15);
    }

    void elongatedShapes()
    {
        const Shape ellipse([](int x, int y) {
            const double dx = (x - 20) / 12.0, dy = (y - 20) / 6.0;
            return dx * dx + dy * dy <= 1;
        });
        QVERIFY(qAbs(ellipse.object.mainFirstAxisLength - 24) < 1.0);
        QVERIFY(qAbs(ellipse.object.mainSecondAxisLength - 12) < 1.0);
        QVERIFY(ellipse.object.mainFirstAxisAngle < 1 || ellipse.object.mainFirstAxisAngle > 179);
        QVERIFY(qAbs(ellipse.object.mainSecondAxisAngle - 90) < 1);
        QVERIFY(qAbs(ellipse.object.mainAxesElongation - 0.5) < 0.05);

        const Shape ell([](int x, int y) {
            return (x >= 5 && x < 8 && y >= 5 && y < 25) || (x >= 5 && x < 20 && y >= 5 && y < 8);
        });
        QCOMPARE(ell.object.areaPBM, 60.0 + 36.0);
        QCOMPARE(ell.object.width, 15);
        QCOMPARE(ell.object.height, 20);
        QVERIFY(qAbs(ell.object.fracDim - std::log(96.0) / std::log(17.5)) < 1e-12);
        QCOMPARE(ell.object.skeletonNumberOfBranches, 1);
        // The skeleton runs from one arm's end round the corner to the other's.
        QVERIFY(ell.object.skeletonMaxLength > 25 && ell.object.skeletonMaxLength < 33);
        QVERIFY(ell.object.skeletonLargestBranch.size() >= ell.object.skeletonPixels.size() - 1); // may cut the corner

        const Shape plus([](int x, int y) {
            return (x >= 19 && x <= 21 && y >= 10 && y <= 30) || (y >= 19 && y <= 21 && x >= 10 && x <= 30);
        });
        QCOMPARE(plus.object.skeletonNumberOfBranches, 4);
        QVERIFY(plus.object.skeletonLargestBranch.size() < plus.object.skeletonPixels.size());
    }
};

QTEST_GUILESS_MAIN(TestObjectMeasures)
#include "tst_objectmeasures.moc"
