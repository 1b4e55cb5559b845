#include "core/items/qsciimage.h"
#include "core/processing/planecorrection.h"
#include "core/processing/syntheticfield.h"

#include <QSignalSpy>
#include <QtTest>
#include <cmath>

namespace {

QVector<double> planeField(int w, int h, double a, double b, double c)
{
    QVector<double> z(qsizetype(w) * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            z[qsizetype(x) * h + y] = a + b * x + c * y;
    return z;
}

double maxAbs(const QVector<double>& z)
{
    double m = 0;
    for (double v : z)
        m = std::max(m, std::abs(v));
    return m;
}

} // namespace

class TestPlaneCorrection : public QObject {
    Q_OBJECT

private slots:
    void exactPlaneBecomesZero_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::newRow("square") << 40 << 40;
        QTest::newRow("tall") << 3 << 200;
        QTest::newRow("wide") << 300 << 2;
        QTest::newRow("single column") << 1 << 17;
        QTest::newRow("single row") << 17 << 1;
        QTest::newRow("1x1") << 1 << 1;
        QTest::newRow("odd, parallel") << 1025 << 513;
    }

    void exactPlaneBecomesZero()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        const double a = 1234.5, b = -0.75, c = 2.25;
        QVector<double> z = planeField(w, h, a, b, c);
        const PlaneCorrection::Plane plane = PlaneCorrection::subtractGlobalPlane(z.data(), w, h);
        QVERIFY2(maxAbs(z) < 1e-8, qPrintable(QString::number(maxAbs(z))));
        // A direction with a single point carries no slope; the fit must not invent one.
        if (w > 1)
            QVERIFY(std::abs(plane.b - b) < 1e-10);
        else
            QCOMPARE(plane.b, 0.0);
        if (h > 1)
            QVERIFY(std::abs(plane.c - c) < 1e-10);
        else
            QCOMPARE(plane.c, 0.0);
    }

    void residualIsOrthogonalToThePlane()
    {
        // On a rough field the corrected matrix has mean 0 and no remaining tilt in x or y.
        SyntheticField::Parameters p;
        p.width = 90;
        p.height = 60;
        QVector<double> z = SyntheticField::generate(p);
        PlaneCorrection::subtractGlobalPlane(z.data(), p.width, p.height);
        const PlaneCorrection::Plane again = PlaneCorrection::fitGlobalPlane(z.constData(), p.width, p.height);
        QVERIFY(std::abs(again.b) < 1e-9);
        QVERIFY(std::abs(again.c) < 1e-9);
        QVERIFY(std::abs(again.at(p.width / 2, p.height / 2)) < 1e-9);
    }

    void itemOverloadNotifiesViews()
    {
        QSciImage item(5, 4, Qt::white);
        for (int x = 0; x < 5; ++x)
            for (int y = 0; y < 4; ++y)
                item.setZ(x, y, 3 * x - y);
        QSignalSpy spy(&item, &QSciImage::contentChanged);
        PlaneCorrection::subtractGlobalPlane(item);
        QCOMPARE(spy.count(), 1);
        QVERIFY(std::abs(item.zMax()) < 1e-12 && std::abs(item.zMin()) < 1e-12);
    }
};

QTEST_GUILESS_MAIN(TestPlaneCorrection)
#include "tst_planecorrection.moc"
