#include "core/processing/qscidriftcorrection.h"
#include "core/processing/qscilevelling.h"
#include "core/processing/qscirowalignment.h"
#include "core/processing/surfacefit.h"

#include <QRandomGenerator>
#include <QtTest>
#include <cmath>
#include <functional>

namespace {

QVector<double> field(int w, int h, const std::function<double(int, int)>& f)
{
    QVector<double> z(w * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            z[x * h + y] = f(x, y);
    return z;
}

QVector<double> applied(
    const QSciEffect& effect, const QVector<double>& z, int w, int h, const QVector<uchar>& mask = {})
{
    QVector<double> out = z;
    const EffectInput input { z.constData(), mask.isEmpty() ? nullptr : mask.constData(), w, h };
    if (!effect.run(input, out.data(), nullptr))
        qFatal("effect stopped without a sink");
    return out;
}

double spread(const QVector<double>& z, const std::function<bool(int)>& counted = {})
{
    double low = 1e300, high = -1e300;
    for (int i = 0; i < z.size(); ++i)
        if (!counted || counted(i)) {
            low = std::min(low, z[i]);
            high = std::max(high, z[i]);
        }
    return high - low;
}

QSciLevelling::Options levelling(QSciLevelling::Method method, int order = 2, bool masked = false)
{
    QSciLevelling::Options o;
    o.method = method;
    o.order = order;
    o.masked = masked;
    return o;
}

} // namespace

class TestQSciLevelling : public QObject {
    Q_OBJECT

private slots:
    void planeLeavesNoMeanAndNoSlope()
    {
        const int w = 301, h = 157;
        QRandomGenerator random(7);
        // Far from the origin, as heights in metres with an offset are: centring keeps the fit exact.
        const QVector<double> z = field(
            w, h, [&](int x, int y) { return 1e3 + 0.2 * x - 0.7 * y + 1e-3 * (random.generateDouble() - 0.5); });
        const QVector<double> out = applied(QSciLevelling(levelling(QSciLevelling::Method::Plane)), z, w, h);
        SurfaceFit::Coefficients c;
        QVERIFY(SurfaceFit::fit(out.constData(), nullptr, w, h, 1, &c));
        for (double v : c)
            QVERIFY2(std::abs(v) < 1e-9, qPrintable(QString::number(v)));
        QVERIFY(spread(out) < 1.1e-3);
    }

    void polynomialBackgroundGoesToRoundOff()
    {
        const int w = 120, h = 90;
        const auto background = [](int x, int y) {
            const double u = x / 10.0, v = y / 10.0;
            return 5 + 2 * u - v + 0.3 * u * u - 0.2 * u * v + 0.05 * u * u * u - 0.01 * u * v * v + 0.02 * v * v * v;
        };
        const QVector<double> z = field(w, h, background);
        const double before = spread(z);
        QVERIFY(
            spread(applied(QSciLevelling(levelling(QSciLevelling::Method::Polynomial, 3)), z, w, h)) < 1e-9 * before);
        // One order too low leaves a visible rest.
        QVERIFY(
            spread(applied(QSciLevelling(levelling(QSciLevelling::Method::Polynomial, 2)), z, w, h)) > 1e-3 * before);
    }

    void maskedFitIgnoresATallGrain()
    {
        const int w = 80, h = 60;
        const auto inGrain = [h](int i) { return std::hypot(i / h - 40, i % h - 30) < 10; };
        QVector<double> z = field(w, h, [](int x, int y) { return 0.5 * x + 0.25 * y; });
        QVector<uchar> background(w * h);
        for (int i = 0; i < z.size(); ++i) {
            background[i] = !inGrain(i);
            if (inGrain(i))
                z[i] += 100;
        }
        const QVector<double> out
            = applied(QSciLevelling(levelling(QSciLevelling::Method::Plane, 1, true)), z, w, h, background);
        QVERIFY(spread(out, [&](int i) { return !inGrain(i); }) < 1e-9);
        QVERIFY(spread(applied(QSciLevelling(levelling(QSciLevelling::Method::Plane)), z, w, h), [&](int i) {
            return !inGrain(i);
        }) > 1);

        QString message;
        QVERIFY(!QSciLevelling(levelling(QSciLevelling::Method::Plane, 1, true)).check(w, h, false, &message));
        QCOMPARE(message, QSciEffect::nothingSelectedText());
    }

    void threePointsBecomeLevel()
    {
        const int w = 40, h = 30;
        const QVector<double> z = field(w, h, [](int x, int y) { return 3.0 * x - 2.0 * y + std::sin(x * y * 0.1); });
        QSciLevelling::Options o = levelling(QSciLevelling::Method::ThreePoints);
        o.points[0] = QPoint(2, 3);
        o.points[1] = QPoint(35, 5);
        o.points[2] = QPoint(10, 27);
        const QVector<double> out = applied(QSciLevelling(o), z, w, h);
        const double first = out[2 * h + 3];
        QVERIFY(std::abs(out[35 * h + 5] - first) < 1e-9);
        QVERIFY(std::abs(out[10 * h + 27] - first) < 1e-9);

        o.points[2] = QPoint(68, 7); // in line with the first two
        QString message;
        QVERIFY(!QSciLevelling(o).check(100, 30, true, &message));
        QVERIFY(!message.isEmpty());
    }

    void facetAndMinimum()
    {
        // A big terrace tilted one way and a small patch tilted the other: the terrace becomes level.
        const int w = 100, h = 100;
        const QVector<double> z
            = field(w, h, [](int x, int y) { return x < 80 ? 0.3 * x + 0.1 * y : 24 + 0.1 * y - 2.0 * (x - 80); });
        const QVector<double> out = applied(QSciLevelling(levelling(QSciLevelling::Method::Facet)), z, w, h);
        QVERIFY(spread(out, [h](int i) { return i / h < 78; }) < 0.05);

        const QVector<double> zero = applied(QSciLevelling(levelling(QSciLevelling::Method::ZeroMinimum)), z, w, h);
        QCOMPARE(*std::min_element(zero.cbegin(), zero.cend()), 0.0);
        QCOMPARE(zero[5 * h + 5] - zero[6 * h + 5], z[5 * h + 5] - z[6 * h + 5]);
    }

    void rowOffsetsGoWithEveryMethod_data()
    {
        QTest::addColumn<int>("method");
        QTest::newRow("median") << int(QSciRowAlignment::Method::Median);
        QTest::newRow("mean") << int(QSciRowAlignment::Method::Mean);
        QTest::newRow("median of differences") << int(QSciRowAlignment::Method::MedianDifference);
        QTest::newRow("line") << int(QSciRowAlignment::Method::Linear);
    }

    void rowOffsetsGoWithEveryMethod()
    {
        QFETCH(int, method);
        const int w = 64, h = 48;
        const QVector<double> z = field(w, h, [](int, int y) { return 7.0 + std::sin(y * 1.3) * 5; });
        QSciRowAlignment::Options o;
        o.method = QSciRowAlignment::Method(method);
        const QVector<double> out = applied(QSciRowAlignment(o), z, w, h);
        QVERIFY2(spread(out) < 1e-9, qPrintable(QString::number(spread(out))));
    }

    void scarsGoStepsStay()
    {
        const int w = 50, h = 20;
        QRandomGenerator random(3);
        QVector<double> z
            = field(w, h, [&](int, int y) { return (y >= 12 ? 4.0 : 0.0) + 0.01 * random.generateDouble(); });
        const QVector<double> clean = z;
        for (int x = 10; x < 40; ++x)
            z[x * h + 6] += 2; // a scar in row 6
        QSciRowAlignment::Options o;
        o.method = QSciRowAlignment::Method::Scars;
        const QVector<double> out = applied(QSciRowAlignment(o), z, w, h);
        for (int x = 0; x < w; ++x) {
            QVERIFY(std::abs(out[x * h + 6] - clean[x * h + 6]) < 0.02);
            QCOMPARE(out[x * h + 12], z[x * h + 12]); // the step edge's rows are kept
            QCOMPARE(out[x * h + 11], z[x * h + 11]);
        }
    }

    void driftIsShiftedBack()
    {
        const int w = 200, h = 12;
        // Each row is the row below moved right by 1.5 points.
        const auto pattern = [](double x) { return std::sin(x * 0.21) + 0.5 * std::sin(x * 0.057 + 1); };
        const QVector<double> z = field(w, h, [&](int x, int y) { return pattern(x - 1.5 * y); });
        QVector<double> row(w), below(w);
        for (int x = 0; x < w; ++x) {
            below[x] = z[x * h + 3];
            row[x] = z[x * h + 4];
        }
        QVERIFY(std::abs(QSciDriftCorrection::rowShift(below.constData(), row.constData(), w, 10) - 1.5) < 0.1);
        const QVector<double> out = applied(QSciDriftCorrection(), z, w, h);
        for (int x = 40; x < 160; ++x)
            QVERIFY(std::abs(out[x * h + 10] - z[x * h]) < 0.05);
    }
};

QTEST_GUILESS_MAIN(TestQSciLevelling)
#include "tst_qscilevelling.moc"
