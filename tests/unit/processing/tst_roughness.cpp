#include "core/processing/radialspectra.h"
#include "core/processing/roughness.h"

#include <QtTest>
#include <algorithm>
#include <cmath>
#include <vector>

class TestRoughness : public QObject {
    Q_OBJECT

private slots:
    void closedFormsOfASinusoidAndTwoLevels()
    {
        // A sinusoid of 40 points a period: Sa = A (2/N) cot(pi/N) sampled (2A/pi in the limit), Sq = A/sqrt2,
        // Ssk = 0, Sku = 1.5.
        const int w = 400, h = 10;
        const double amplitude = 3;
        QVector<double> z(w * h);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y)
                z[x * h + y] = 100 + amplitude * std::sin(2 * M_PI * x / 40.0);
        Roughness::Result r;
        QVERIFY(Roughness::evaluate(z.constData(), nullptr, w, h, 1, 1, &r));
        QVERIFY(std::abs(r.sa - amplitude * (2 / 40.0) / std::tan(M_PI / 40)) < 1e-9);
        QVERIFY(std::abs(r.sq - amplitude / std::sqrt(2.0)) < 1e-9);
        QVERIFY(std::abs(r.ssk) < 1e-9);
        QVERIFY(std::abs(r.sku - 1.5) < 1e-9);
        QVERIFY(std::abs(r.sz - 2 * amplitude) < 1e-9);
        QCOMPARE(r.ra, r.sa);
        QCOMPARE(r.rz, r.sz);

        // Two levels, a quarter of the points up by 4: Ssk = (1 - 2p)/sqrt(p(1-p)) with p = 1/4.
        QVector<double> levels(w * h, 0.0);
        for (int i = 0; i < levels.size(); i += 4)
            levels[i] = 4;
        QVERIFY(Roughness::evaluate(levels.constData(), nullptr, w, h, 1, 1, &r));
        const double p = 0.25;
        QVERIFY(std::abs(r.sq - 4 * std::sqrt(p * (1 - p))) < 1e-9);
        QVERIFY(std::abs(r.ssk - (1 - 2 * p) / std::sqrt(p * (1 - p))) < 1e-9);
        QVERIFY(std::abs(r.sku - (1 - 3 * p + 3 * p * p) / (p * (1 - p))) < 1e-9);
        QVERIFY(std::abs(r.sa - 2 * 4 * p * (1 - p)) < 1e-9);
    }

    void slopesOfAPlaneAndTheMask()
    {
        const int w = 30, h = 20;
        QVector<double> z(w * h);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y)
                z[x * h + y] = 0.75 * x * 2; // slope 0.75 with a spacing of 2
        Roughness::Result r;
        QVERIFY(Roughness::evaluate(z.constData(), nullptr, w, h, 2, 1, &r));
        QVERIFY(std::abs(r.sdq - 0.75) < 1e-12);
        QVERIFY(std::abs(r.sdr - 100 * (std::sqrt(1 + 0.75 * 0.75) - 1)) < 1e-9);

        QVector<uchar> mask(w * h, 0);
        mask[0] = mask[h] = 1;
        QVERIFY(Roughness::evaluate(z.constData(), mask.constData(), w, h, 2, 1, &r));
        QCOMPARE(r.points, qint64(2));
        QCOMPARE(r.sp, 0.75);
        QVERIFY(!Roughness::evaluate(z.constData(), QVector<uchar>(w * h, 0).constData(), w, h, 1, 1, &r));
        QCOMPARE(Roughness::metres(QStringLiteral("nm")), 1e-9);
        QCOMPARE(Roughness::metres(QStringLiteral("\u00b5m")), 1e-6);
        QCOMPARE(Roughness::metres(QStringLiteral("pA")), 0.0);
    }

    void radialSpectraOfASinusoid()
    {
        // Period 8 points of 0.5 units along x, amplitude 2, on a 64 x 48 field offset by 5.
        constexpr int W = 64, H = 48;
        std::vector<double> z(size_t(W) * H);
        for (int x = 0; x < W; ++x)
            for (int y = 0; y < H; ++y)
                z[size_t(x) * H + y] = 5 + 2 * std::sin(2 * M_PI * x / 8);
        const RadialSpectra::Curve psd = RadialSpectra::powerSpectralDensity(z.data(), W, H, 0.5, 0.5);
        const int peak = int(std::max_element(psd.y.begin(), psd.y.end()) - psd.y.begin());
        QVERIFY(qAbs(psd.x.at(peak) - 1 / 4.0) < 1e-12);
        QCOMPARE(psd.x.last(), 1.0); // the Nyquist frequency
        QVERIFY(psd.y.first() < 1e-20); // the mean is removed

        // About the mean, at lag 0 the autocorrelation is the variance; over a ring it follows the angular mean of
        // the cosine along x, 2 J0(2 pi r / 4).
        const RadialSpectra::Curve acf = RadialSpectra::autocorrelation(z.data(), W, H, 0.5, 0.5);
        QVERIFY(qAbs(acf.y.first() - 2.0) < 1e-9);
        for (const int ring : { 2, 4, 8 })
            QVERIFY2(qAbs(acf.y.at(ring) - 2 * std::cyl_bessel_j(0.0, 2 * M_PI * acf.x.at(ring) / 4)) < 0.15,
                qPrintable(QString::number(acf.y.at(ring))));
        QCOMPARE(acf.x.last(), 12.0); // half the shorter side
    }
};

QTEST_GUILESS_MAIN(TestRoughness)
#include "tst_roughness.moc"
