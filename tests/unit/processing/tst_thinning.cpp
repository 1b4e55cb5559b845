#include "core/processing/thinning.h"

#include <QtTest>
#include <functional>

namespace {

using Mask = QVector<uchar>;

Mask shape(int w, int h, const std::function<bool(int, int)>& inside)
{
    Mask m(w * h);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            m[x * h + y] = inside(x, y);
    return m;
}

/** Connected regions of points whose mask value is @p value, 8- or 4-connected. */
int regions(const Mask& m, int w, int h, uchar value, bool eight)
{
    QVector<int> label(m.size(), 0);
    int count = 0;
    for (int start = 0; start < m.size(); ++start) {
        if (m[start] != value || label[start])
            continue;
        ++count;
        QVector<int> stack { start };
        label[start] = count;
        while (!stack.isEmpty()) {
            const int i = stack.takeLast();
            const int x = i / h, y = i % h;
            for (int dx = -1; dx <= 1; ++dx)
                for (int dy = -1; dy <= 1; ++dy) {
                    if ((!dx && !dy) || (!eight && dx && dy))
                        continue;
                    const int nx = x + dx, ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= w || ny >= h || m[nx * h + ny] != value || label[nx * h + ny])
                        continue;
                    label[nx * h + ny] = count;
                    stack.append(nx * h + ny);
                }
        }
    }
    return count;
}

bool hasFullSquare(const Mask& m, int w, int h)
{
    for (int x = 0; x + 1 < w; ++x)
        for (int y = 0; y + 1 < h; ++y)
            if (m[x * h + y] && m[x * h + y + 1] && m[(x + 1) * h + y] && m[(x + 1) * h + y + 1])
                return true;
    return false;
}

} // namespace

class TestThinning : public QObject {
    Q_OBJECT

private slots:
    void barsBecomeLinesRingsStayRings()
    {
        const int w = 40, h = 30;
        // A thick bar and, apart from it, a thick ring around a hole.
        Mask m = shape(w, h, [](int x, int y) {
            const double r = std::hypot(x - 28, y - 15);
            return (x >= 2 && x <= 14 && y >= 5 && y <= 11) || (r >= 5 && r <= 9);
        });
        const int pointsBefore = std::count(m.cbegin(), m.cend(), uchar(1));
        QVERIFY(Thinning::thin(m.data(), w, h) > 0);
        QVERIFY(std::count(m.cbegin(), m.cend(), uchar(1)) < pointsBefore / 3);
        QVERIFY(!hasFullSquare(m, w, h));
        QCOMPARE(regions(m, w, h, 1, true), 2);
        // Outside and the ring's hole are still apart.
        QCOMPARE(regions(m, w, h, 0, false), 2);
        // The bar's skeleton stays inside the bar.
        for (int x = 0; x < 16; ++x)
            for (int y = 0; y < h; ++y)
                if (m[x * h + y])
                    QVERIFY(y >= 5 && y <= 11 && x >= 2 && x <= 14);

        Mask line = shape(w, h, [](int x, int y) { return y == 3 && x > 4 && x < 30; });
        const Mask before = line;
        QCOMPARE(Thinning::thin(line.data(), w, h), qsizetype(0));
        QCOMPARE(line, before);
    }
};

QTEST_GUILESS_MAIN(TestThinning)
#include "tst_thinning.moc"
