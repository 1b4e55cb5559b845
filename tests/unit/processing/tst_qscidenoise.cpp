#include "core/processing/discmedian.h"
#include "core/processing/qscidenoise.h"

#include <QRandomGenerator>
#include <QtTest>
#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

/** The median as the definition reads: gather the disc inside the matrix, sort, take position count/2. */
QVector<double> referenceMedian(const QVector<double>& z, int w, int h, double r)
{
    QVector<double> out(z.size());
    std::vector<double> values;
    const int R = r >= 1 ? int(std::floor(r)) : 0;
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y) {
            values.assign(1, z[x * h + y]);
            for (int i = -R; i <= R; ++i)
                for (int j = -R; j <= R; ++j) {
                    if ((i == 0 && j == 0) || x + i < 0 || x + i >= w || y + j < 0 || y + j >= h)
                        continue;
                    if (std::sqrt(double(i * i + j * j)) <= r)
                        values.push_back(z[(x + i) * h + y + j]);
                }
            std::sort(values.begin(), values.end());
            out[x * h + y] = values[values.size() / 2];
        }
    return out;
}

QVector<double> denoised(const QVector<double>& z, int w, int h, double r, int loops = 1, const uchar* mask = nullptr)
{
    QSciDenoise effect(QSciDenoise::Options { r, loops, mask != nullptr });
    QVector<double> out = z;
    const EffectInput input { z.constData(), mask, w, h };
    if (!effect.run(input, out.data(), nullptr))
        qFatal("denoise stopped without a sink");
    return out;
}

} // namespace

class TestQSciDenoise : public QObject {
    Q_OBJECT

private slots:
    void fastMedianIsExact_data()
    {
        QTest::addColumn<double>("radius");
        QTest::addColumn<int>("levels"); // 0: continuous values
        QTest::addColumn<bool>("extremes");
        for (double r : { 0.5, 1.0, 1.5, 2.0, 2.3, 3.0, 5.0, 7.0 }) {
            const QByteArray name = QByteArray::number(r);
            QTest::newRow(QByteArray(name + " random").constData()) << r << 0 << false;
            QTest::newRow(QByteArray(name + " three levels").constData()) << r << 3 << false;
            QTest::newRow(QByteArray(name + " extremes").constData()) << r << 6 << true;
        }
    }

    void fastMedianIsExact()
    {
        QFETCH(double, radius);
        QFETCH(int, levels);
        QFETCH(bool, extremes);
        QRandomGenerator random(quint32(radius * 100) + quint32(levels));
        // Odd sizes, wider than tall and taller than a tile, so borders, bands and tiles all meet.
        for (const QSize size : { QSize(37, 23), QSize(9, 300), QSize(150, 140) }) {
            const int w = size.width(), h = size.height();
            QVector<double> z(w * h);
            const double special[] = { -DBL_MAX, DBL_MAX, -0.0, 0.0, DBL_MIN, -1e-310 };
            for (double& v : z) {
                if (levels == 0)
                    v = random.generateDouble() * 2 - 1;
                else if (extremes)
                    v = special[random.bounded(levels)];
                else
                    v = random.bounded(levels);
            }
            const QVector<double> fast = denoised(z, w, h, radius);
            const QVector<double> slow = referenceMedian(z, w, h, radius);
            for (int i = 0; i < z.size(); ++i)
                if (!(fast[i] == slow[i]))
                    QFAIL(qPrintable(QStringLiteral("%1x%2 at x=%3 y=%4: %5 instead of %6")
                                         .arg(w)
                                         .arg(h)
                                         .arg(i / h)
                                         .arg(i % h)
                                         .arg(fast[i])
                                         .arg(slow[i])));
        }
    }

    void spikeGoesBelowOneRadiusStaysAndLoopsRepeat()
    {
        const int w = 7, h = 6;
        QVector<double> z(w * h, 2.0);
        z[3 * h + 2] = 100;
        QCOMPARE(denoised(z, w, h, 0.9), z);
        QVector<double> flat(w * h, 2.0);
        QCOMPARE(denoised(z, w, h, 1.0), flat);

        QVector<double> noisy(w * h);
        for (int i = 0; i < noisy.size(); ++i)
            noisy[i] = (i * 7919) % 13;
        QCOMPARE(denoised(noisy, w, h, 1.5, 3), denoised(noisy, w, h, 1.5, 1));
    }

    void selectionChangesOnlySelectedPoints()
    {
        const int w = 12, h = 10;
        QVector<double> z(w * h);
        for (int i = 0; i < z.size(); ++i)
            z[i] = (i * 31) % 17;
        QVector<uchar> mask(w * h, 0);
        mask[4 * h + 3] = mask[5 * h + 3] = mask[9 * h + 8] = 1;
        const QVector<double> all = denoised(z, w, h, 1.5);
        const QVector<double> some = denoised(z, w, h, 1.5, 1, mask.constData());
        for (int i = 0; i < z.size(); ++i)
            QCOMPARE(some[i], mask[i] ? all[i] : z[i]);

        QSciDenoise effect(QSciDenoise::Options { 1, 1, true });
        QString message;
        QVERIFY(!effect.check(w, h, false, &message));
        QCOMPARE(message, QStringLiteral("Function cannot be applied to selection since there is nothing selected!"));
    }

    void discHoldsThePointsWithinTheRadius()
    {
        QCOMPARE(DiscMedian::offsets(0.99).size(), 0);
        QCOMPARE(DiscMedian::offsets(1).size(), 4);
        QCOMPARE(DiscMedian::offsets(std::sqrt(2.0)).size(), 8);
        QCOMPARE(DiscMedian::offsets(2.3).size(), 20);
        QCOMPARE(DiscMedian::offsets(5).size(), 80);
    }
};

QTEST_GUILESS_MAIN(TestQSciDenoise)
#include "tst_qscidenoise.moc"
