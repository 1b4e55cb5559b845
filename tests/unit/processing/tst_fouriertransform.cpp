#include "core/items/qsciimage.h"
#include "core/processing/fouriertransform.h"

#include <QtTest>
#include <cmath>

namespace {

/** A cosine of 7 periods across, amplitude 2, on 0.5 nm points, over a level of 3. */
std::unique_ptr<QSciImage> wave(int w, int h)
{
    auto item = std::make_unique<QSciImage>(w, h, Qt::white);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            item->setZ(x, y, 3 + 2 * std::cos(2 * M_PI * 7 * x / w));
    QSciImage::SciValues s;
    s.xUnit = s.yUnit = s.zUnit = QStringLiteral("nm");
    s.xUnitPerPixel = s.yUnitPerPixel = 0.5;
    s.sizeX = 0.5 * w;
    s.sizeY = 0.5 * h;
    item->setSciValues(s);
    return item;
}

} // namespace

class TestFourierTransform : public QObject {
    Q_OBJECT

private slots:
    void sinusoidPeaksAtItsFrequency_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::newRow("even") << 64 << 32;
        QTest::newRow("odd") << 63 << 17;
    }

    void sinusoidPeaksAtItsFrequency()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        const auto item = wave(w, h);
        const auto spectrum = FourierTransform::spectrum(*item, FourierTransform::Mode::Magnitude);
        QVERIFY(spectrum);
        const QSciImage::SciValues& s = spectrum->sciValues();
        QCOMPARE(s.xUnit, QStringLiteral("1/nm"));
        // The peak right of the middle lies at 7 periods over the width: 7 / (w * 0.5 nm).
        const int cx = w / 2, cy = h / 2;
        QVERIFY(std::abs(spectrum->z(cx + 7, cy) - 1.0) < 1e-12);
        QVERIFY(std::abs(spectrum->z(cx - 7, cy) - 1.0) < 1e-12);
        QVERIFY(std::abs(spectrum->z(cx, cy) - 3.0) < 1e-12);
        QVERIFY(std::abs(s.offsetX + (cx + 7) * s.xUnitPerPixel - 7 / (w * 0.5)) < 1e-12);
        QVERIFY(spectrum->z(cx + 3, cy + 1) < 1e-12);
    }

    void roundTripAndMask()
    {
        const int w = 40, h = 30;
        auto item = wave(w, h);
        for (int x = 0; x < w; ++x)
            item->setZ(x, 5, item->z(x, 5) + x * 0.01);
        QVector<double> back(w * h);
        FourierTransform::filter(item->zData(), w, h, nullptr, back.data());
        for (int i = 0; i < back.size(); ++i)
            QVERIFY(std::abs(back[i] - item->zData()[i]) < 1e-12);

        // Keeping only the zero frequency leaves the mean everywhere.
        QVector<uchar> keep(w * h, 0);
        keep[(w / 2) * h + h / 2] = 1;
        FourierTransform::filter(item->zData(), w, h, keep.constData(), back.data());
        double mean = 0;
        for (int i = 0; i < w * h; ++i)
            mean += item->zData()[i] / (w * h);
        for (double v : back)
            QVERIFY(std::abs(v - mean) < 1e-12);
    }
};

QTEST_GUILESS_MAIN(TestFourierTransform)
#include "tst_fouriertransform.moc"
