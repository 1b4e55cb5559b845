#include "core/items/qsciimage.h"
#include "core/processing/doubletip.h"

#include <QtTest>
#include <algorithm>
#include <cmath>

namespace {

constexpr int W = 64, H = 48;

/** Three round bumps of different heights on a flat ground of 0. */
double clean(int x, int y)
{
    const struct {
        double x, y, r, height;
    } bumps[] = { { 20, 20, 3, 10 }, { 40, 30, 4, 6 }, { 30, 12, 2.5, 8 } };
    double z = 0;
    for (const auto& b : bumps)
        z += b.height * std::exp(-((x - b.x) * (x - b.x) + (y - b.y) * (y - b.y)) / (2 * b.r * b.r));
    return z;
}

/** Measurement noise of about @p amplitude, the same on every run. */
double noise(int x, int y, double amplitude)
{
    const unsigned hash = (unsigned(x) * 73856093u) ^ (unsigned(y) * 19349663u);
    return amplitude * (double((hash * 2654435761u) >> 8 & 0xFFFF) / 0xFFFF - 0.5);
}

/**
 * The clean surface plus its copy shifted by @p v and scaled by @p ratio, what a tip with two apexes records,
 * and noise of @p amplitude.
 */
QSciImage* doubled(const QPoint& v, double ratio, double amplitude = 0)
{
    auto* item = new QSciImage(W, H, Qt::white);
    for (int x = 0; x < W; ++x)
        for (int y = 0; y < H; ++y) {
            const int sx = x - v.x(), sy = y - v.y();
            const bool inside = sx >= 0 && sy >= 0 && sx < W && sy < H;
            item->setZ(x, y, clean(x, y) + (inside ? ratio * clean(sx, sy) : 0) + noise(x, y, amplitude));
        }
    return item;
}

double worstError(const QVector<double>& z)
{
    double worst = 0;
    for (int x = 0; x < W; ++x)
        for (int y = 0; y < H; ++y)
            worst = std::max(worst, std::abs(z[x * H + y] - clean(x, y)));
    return worst;
}

} // namespace

class TestDoubleTip : public QObject {
    Q_OBJECT

private slots:
    void restoresTheCleanSurfaceFromItsMarks_data()
    {
        QTest::addColumn<QPoint>("vector");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<bool>("estimate");
        QTest::addColumn<double>("noise");
        QTest::newRow("right and up, estimated") << QPoint(7, 5) << 0.4 << true << 0.0;
        QTest::newRow("left and down, estimated") << QPoint(-6, -4) << 0.6 << true << 0.0;
        QTest::newRow("left and up, given") << QPoint(-9, 3) << 0.3 << false << 0.0;
        QTest::newRow("straight up, estimated") << QPoint(0, 8) << 0.5 << true << 0.0;
        QTest::newRow("noisy, estimated") << QPoint(-5, -7) << 0.45 << true << 0.2;
    }

    void restoresTheCleanSurfaceFromItsMarks()
    {
        QFETCH(QPoint, vector);
        QFETCH(double, ratio);
        QFETCH(bool, estimate);
        QFETCH(double, noise);
        std::unique_ptr<QSciImage> item(doubled(vector, ratio, noise));
        // Clicks a point or two beside the apexes, as a hand places them.
        const QPoint feature(21, 19), ghost = QPoint(20, 20) + vector + QPoint(-1, 1);
        double used = -1;
        QPoint usedVector;
        const QVector<double> out
            = DoubleTip::resolved(*item, feature, ghost, estimate ? -1 : ratio, &used, &usedVector);
        QCOMPARE(usedVector, vector);
        QVERIFY2(std::abs(used - ratio) < 0.02, qPrintable(QString::number(used)));
        const double range = 10;
        QVERIFY2(worstError(out) < 0.05 * range + noise, qPrintable(QString::number(worstError(out))));
        // Without the removal the ghost stands out far beyond that.
        QVERIFY(worstError(item->zMatrix()) > 0.2 * range);
    }

    void marksWithoutAFeatureChangeNothing()
    {
        QSciImage flat(16, 16, Qt::white);
        double used = -1;
        const QVector<double> out = DoubleTip::resolved(flat, QPoint(3, 3), QPoint(8, 8), -1, &used);
        QCOMPARE(used, 0.0);
        QCOMPARE(out, flat.zMatrix());
        // A vector of nothing (both marks on one apex) leaves the matrix as it is.
        std::unique_ptr<QSciImage> item(doubled(QPoint(7, 5), 0.4));
        QCOMPARE(DoubleTip::resolved(*item, QPoint(20, 20), QPoint(20, 20), 0.5), item->zMatrix());
    }

    void unmeasuredPointsStayUnmeasuredAndSpoilNothingElse()
    {
        std::unique_ptr<QSciImage> item(doubled(QPoint(7, 5), 0.4));
        item->setZ(5, 5, std::nan(""));
        const QVector<double> out = DoubleTip::resolved(*item, QPoint(20, 20), QPoint(27, 25), 0.4);
        QVERIFY(std::isnan(out[5 * H + 5]));
        QVERIFY(std::isfinite(out[12 * H + 10])); // the point whose ghost source is the NaN
        QVERIFY(std::abs(out[20 * H + 20] - clean(20, 20)) < 0.5);
    }
};

QTEST_GUILESS_MAIN(TestDoubleTip)
#include "tst_doubletip.moc"
