#include "core/processing/qsciderivative.h"

#include <QtTest>
#include <cmath>

namespace {

using Options = QSciDerivative::Options;

/** z(x, y) with y the row from the bottom, column by column as items hold it. */
QVector<double> field(int w, int h, const std::function<double(int, int)>& f)
{
    QVector<double> z(w * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            z[x * h + y] = f(x, y);
    return z;
}

QVector<double> derive(const Options& o, const QVector<double>& z, int w, int h, const QVector<uchar>& mask = {})
{
    QSciDerivative effect(o);
    QVector<double> out = z;
    const EffectInput input { z.constData(), mask.isEmpty() ? nullptr : mask.constData(), w, h };
    if (!effect.run(input, out.data(), nullptr))
        qFatal("derivative stopped without a sink");
    return out;
}

double at(const QVector<double>& z, int h, int x, int y)
{
    return z[x * h + y];
}

} // namespace

class TestQSciDerivative : public QObject {
    Q_OBJECT

private slots:
    void planeGivesTwiceTheSlope_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::addColumn<double>("a");
        QTest::newRow("square rising") << 9 << 9 << 0.5;
        QTest::newRow("wide falling") << 31 << 3 << -2.0;
        QTest::newRow("tall") << 3 << 40 << 1.25;
    }

    void planeGivesTwiceTheSlope()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        QFETCH(double, a);
        Options o;
        o.yDirection = false;
        const QVector<double> z = field(w, h, [a](int x, int) { return a * x; });
        const QVector<double> d = derive(o, z, w, h);
        for (int x = 1; x < w - 1; ++x)
            for (int y = 0; y < h; ++y)
                QCOMPARE(at(d, h, x, y), 2 * std::abs(a));
        // Replicate mirrors the missing neighbour onto the present one: the border difference vanishes.
        QCOMPARE(at(d, h, 0, 0), 0.0);

        o.xDirection = false;
        o.yDirection = true;
        const QVector<double> rows = field(w, h, [a](int, int y) { return a * y; });
        QCOMPARE(at(derive(o, rows, w, h), h, w / 2, 1), 2 * std::abs(a));
    }

    void originFactorAddsOrSubtractsTheSurface()
    {
        const int w = 8, h = 6;
        const QVector<double> z = field(w, h, [](int x, int y) { return 3.0 * x + y * y; });
        Options o;
        const QVector<double> plain = derive(o, z, w, h);
        for (int f : { 1, -1, 3 }) {
            o.originFactor = f;
            const QVector<double> shaded = derive(o, z, w, h);
            for (int i = 0; i < z.size(); ++i)
                QCOMPARE(shaded[i], plain[i] + f * z[i]);
        }
    }

    void wrapAroundUsesTheOppositeEdge()
    {
        const int w = 6, h = 4;
        const QVector<double> z = field(w, h, [](int x, int y) { return x * x + 0.0 * y; });
        Options o;
        o.yDirection = false;
        o.border = QSciDerivative::Border::Wrap;
        const QVector<double> d = derive(o, z, w, h);
        // First column: right neighbour 1, left neighbour the last column, 25.
        QCOMPARE(at(d, h, 0, 2), 24.0);
        QCOMPARE(at(d, h, w - 1, 2), std::abs(0.0 - 16.0));
    }

    void ordersRepeatOnThePreviousResult()
    {
        const int w = 12, h = 5;
        const QVector<double> z = field(w, h, [](int x, int) { return double(x * x); });
        Options o;
        o.yDirection = false;
        const QVector<double> once = derive(o, z, w, h);
        o.order = 2;
        QCOMPARE(derive(o, z, w, h), derive(Options { o.mode, 1, 1, 0, o.border, true, false, 0, false }, once, w, h));
    }

    void directionalWeightsFollowTheAngle()
    {
        // Rises towards the top of the image: y counts rows from the bottom, so "up" is +y.
        const int w = 7, h = 7;
        const QVector<double> z = field(w, h, [](int, int y) { return double(y); });
        Options o;
        o.mode = QSciDerivative::Mode::Directional;
        o.angle = 0; // neighbours above weigh +1, below -1
        // Three neighbours above (one row up) minus three below: 3 * (+1) - 3 * (-1).
        QCOMPARE(at(derive(o, z, w, h), h, 3, 3), 6.0);
        o.angle = 180;
        QCOMPARE(at(derive(o, z, w, h), h, 3, 3), -6.0);
        o.angle = 90; // along x only: a surface constant in x gives nothing
        QCOMPARE(at(derive(o, z, w, h), h, 3, 3), 0.0);

        QCOMPARE(QSciDerivative::weight(45, 1, -1), 1);
        QCOMPARE(QSciDerivative::weight(135, 1, -1), 0);
        QCOMPARE(QSciDerivative::weight(315, -1, -1), 1);
        QCOMPARE(QSciDerivative::weight(225, 1, 0), -1);
        QCOMPARE(QSciDerivative::weight(270, 1, 0), -1);
    }

    void selectionOnlyChangesSelectedPoints()
    {
        const int w = 9, h = 7;
        const QVector<double> z = field(w, h, [](int x, int y) { return x * 1.5 + y * y; });
        QVector<uchar> mask(w * h, 0);
        mask[2 * h + 3] = mask[6 * h + 5] = 1;
        Options o;
        const QVector<double> all = derive(o, z, w, h);
        o.selectionOnly = true;
        const QVector<double> some = derive(o, z, w, h, mask);
        for (int i = 0; i < z.size(); ++i)
            QCOMPARE(some[i], mask[i] ? all[i] : z[i]);
    }

    void refusesWhatCannotRun()
    {
        Options o;
        o.points = 3;
        QString message;
        QVERIFY(!QSciDerivative(o).check(20, 6, true, &message));
        QCOMPARE(message, QStringLiteral("Number of chosen neighbour points exceeds image dimensions!"));
        QVERIFY(QSciDerivative(o).check(20, 7, false, &message));
        o.selectionOnly = true;
        QVERIFY(!QSciDerivative(o).check(20, 7, false, &message));
        QCOMPARE(message, QStringLiteral("Function cannot be applied to selection since there is nothing selected!"));
    }
};

QTEST_GUILESS_MAIN(TestQSciDerivative)
#include "tst_qsciderivative.moc"
