#include "core/processing/qscifilter.h"

#include <QtTest>
#include <cmath>
#include <functional>

namespace {

using Kind = QSciFilter::Kind;

QVector<double> field(int w, int h, const std::function<double(int, int)>& f)
{
    QVector<double> z(w * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            z[x * h + y] = f(x, y);
    return z;
}

QVector<double> filtered(const QSciFilter::Options& o, const QVector<double>& z, int w, int h)
{
    QVector<double> out = z;
    const EffectInput input { z.constData(), nullptr, w, h };
    if (!QSciFilter(o).run(input, out.data(), nullptr))
        qFatal("filter stopped without a sink");
    return out;
}

QSciFilter::Options of(Kind kind)
{
    QSciFilter::Options o;
    o.kind = kind;
    return o;
}

} // namespace

class TestQSciFilter : public QObject {
    Q_OBJECT

private slots:
    void gaussianKeepsTheSpikeAndSpreadsItBySigma()
    {
        const int w = 61, h = 61;
        const QVector<double> spike = field(w, h, [](int x, int y) { return x == 30 && y == 30 ? 1000.0 : 0.0; });
        QSciFilter::Options o = of(Kind::Gaussian);
        o.sigma = 3;
        const QVector<double> out = filtered(o, spike, w, h);
        double sum = 0, varianceX = 0;
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) {
                sum += out[x * h + y];
                varianceX += out[x * h + y] * (x - 30) * (x - 30);
            }
        QVERIFY(std::abs(sum - 1000) < 1e-9);
        QVERIFY(std::abs(varianceX / sum - 9) < 0.01);
        QVERIFY(std::abs(out[33 * h + 30] - out[27 * h + 30]) < 1e-12);
    }

    void kernelsAsWritten()
    {
        const int w = 9, h = 7;
        const QVector<double> z = field(w, h, [](int x, int y) { return x * x + 10.0 * y * y; });
        QSciFilter::Options o = of(Kind::Convolution);
        QVERIFY(QSciFilter::parseKernel(QStringLiteral("0,0,0;0,1,0;0,0,0"), &o.kernel));
        QCOMPARE(filtered(o, z, w, h), z);
        // The first row written is the top: a lone 1 there reads the point above (one row up).
        QVERIFY(QSciFilter::parseKernel(QStringLiteral("0,2,0; 0,0,0; 0,0,0"), &o.kernel));
        QCOMPARE(filtered(o, z, w, h)[4 * h + 3], z[4 * h + 4]);
        o.normalise = false;
        QCOMPARE(filtered(o, z, w, h)[4 * h + 3], 2 * z[4 * h + 4]);
        // Mirrored edges: above the top row lies the row below it.
        QCOMPARE(filtered(o, z, w, h)[4 * h + h - 1], 2 * z[4 * h + h - 2]);
        QCOMPARE(QSciFilter::kernelText(o.kernel), QStringLiteral("0,2,0;0,0,0;0,0,0"));

        Convolution::Kernel bad;
        QVERIFY(!QSciFilter::parseKernel(QStringLiteral("1,2;3,4"), &bad));
        QVERIFY(!QSciFilter::parseKernel(QStringLiteral("1,2,3;4,5;6,7,8"), &bad));
        QVERIFY(!QSciFilter::parseKernel(QStringLiteral("1,x,3"), &bad));
    }

    void sobelOfAPlaneAndAStep()
    {
        const int w = 20, h = 12;
        QSciFilter::Options o = of(Kind::Sobel);
        const QVector<double> plane = field(w, h, [](int x, int y) { return 0.5 * x - 2.0 * y; });
        const QVector<double> magnitude = filtered(o, plane, w, h);
        QVERIFY(std::abs(magnitude[7 * h + 5] - 8 * std::hypot(0.5, 2.0)) < 1e-12);
        o.direction = QSciFilter::Direction::X;
        QCOMPARE(filtered(o, plane, w, h)[7 * h + 5], 4.0);
        o.direction = QSciFilter::Direction::Y;
        QCOMPARE(filtered(o, plane, w, h)[7 * h + 5], -16.0);

        o.direction = QSciFilter::Direction::Both;
        const QVector<double> step = field(w, h, [](int x, int) { return x >= 10 ? 1.0 : 0.0; });
        const QVector<double> edges = filtered(o, step, w, h);
        for (int x = 0; x < w; ++x)
            QCOMPARE(edges[x * h + 6], (x == 9 || x == 10) ? 4.0 : 0.0);
    }

    void smoothingKeepsPlanesAndDespikeTakesOnlyPeaks()
    {
        const int w = 15, h = 13;
        const QVector<double> plane = field(w, h, [](int x, int y) { return 3.0 * x + y; });
        for (Kind kind : { Kind::Smoothen, Kind::Sharpen, Kind::Unsharp, Kind::Despike }) {
            const QVector<double> out = filtered(of(kind), plane, w, h);
            QVERIFY2(std::abs(out[7 * h + 6] - plane[7 * h + 6]) < 1e-9, qPrintable(QSciFilter::kindName(kind)));
        }
        QVector<double> spiky = plane;
        spiky[7 * h + 6] += 50;
        const QVector<double> out = filtered(of(Kind::Despike), spiky, w, h);
        QVERIFY(std::abs(out[7 * h + 6] - plane[7 * h + 6]) <= 3);
        for (int i = 0; i < plane.size(); ++i)
            if (i != 7 * h + 6)
                QCOMPARE(out[i], spiky[i]);
    }
};

QTEST_GUILESS_MAIN(TestQSciFilter)
#include "tst_qscifilter.moc"
