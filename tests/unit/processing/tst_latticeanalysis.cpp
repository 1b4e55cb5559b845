#include "core/items/qsciimage.h"
#include "core/processing/latticeanalysis.h"

#include <QtTest>
#include <cmath>

class TestLatticeAnalysis : public QObject {
    Q_OBJECT

private slots:
    void findsTheCellOfARectangularAndAnObliqueLattice_data()
    {
        QTest::addColumn<double>("ax");
        QTest::addColumn<double>("ay");
        QTest::addColumn<double>("bx");
        QTest::addColumn<double>("by");
        QTest::newRow("rectangular") << 8.0 << 0.0 << 0.0 << 12.0;
        QTest::newRow("oblique") << 10.0 << 0.0 << 5.0 << 9.0;
    }

    void findsTheCellOfARectangularAndAnObliqueLattice()
    {
        QFETCH(double, ax);
        QFETCH(double, ay);
        QFETCH(double, bx);
        QFETCH(double, by);
        // Bumps at every lattice point, through the reciprocal vectors so the pattern repeats exactly.
        const double det = ax * by - ay * bx;
        const double g1x = by / det, g1y = -bx / det, g2x = -ay / det, g2y = ax / det;
        const int w = 240, h = 216;
        QSciImage item(w, h, Qt::white);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) {
                const double u = x * g1x + y * g1y, v = x * g2x + y * g2y;
                item.setZ(x, y, std::pow(std::cos(M_PI * u), 8) * std::pow(std::cos(M_PI * v), 8));
            }
        QSciImage::SciValues s;
        s.xUnit = s.yUnit = QStringLiteral("nm");
        s.xUnitPerPixel = s.yUnitPerPixel = 0.25;
        item.setSciValues(s);
        LatticeAnalysis::Result r;
        QString message;
        QVERIFY2(LatticeAnalysis::find(item, &r, &message), qPrintable(message));
        const double lengths[] = { std::hypot(ax, ay) * 0.25, std::hypot(bx, by) * 0.25 };
        QVERIFY2(
            std::abs(r.lengthA - std::min(lengths[0], lengths[1])) < 0.05, qPrintable(LatticeAnalysis::describe(r)));
        QVERIFY2(
            std::abs(r.lengthB - std::max(lengths[0], lengths[1])) < 0.05, qPrintable(LatticeAnalysis::describe(r)));
        const double angle = std::acos((ax * bx + ay * by) / (std::hypot(ax, ay) * std::hypot(bx, by))) * 180 / M_PI;
        QVERIFY2(std::abs(r.angle - angle) < 1.5 || std::abs(r.angle - (180 - angle)) < 1.5,
            qPrintable(LatticeAnalysis::describe(r)));
    }

    void flatItemsHaveNoLattice()
    {
        QSciImage item(64, 64, Qt::white);
        LatticeAnalysis::Result r;
        QString message;
        QVERIFY(!LatticeAnalysis::find(item, &r, &message));
        QVERIFY(!message.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLatticeAnalysis)
#include "tst_latticeanalysis.moc"
