#include "core/analysis/imagesegmentation.h"
#include "core/analysis/voronoicells.h"
#include "core/items/qsciimage.h"
#include "core/items/qscisingleobject.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/project/segmentationoperations.h"
#include "core/project/voronoioperations.h"

#include <QtTest>
#include <cmath>

namespace {

constexpr int W = 30, H = 20;

/** Two 3 x 3 squares, the second at (@p dx, @p dy) from the first. */
std::vector<uchar> squares(int dx, int dy)
{
    std::vector<uchar> mask(size_t(W) * H, 0);
    for (const QPoint origin : { QPoint(5, 5), QPoint(5 + dx, 5 + dy) })
        for (int x = 0; x < 3; ++x)
            for (int y = 0; y < 3; ++y)
                mask[size_t(origin.x() + x) * H + size_t(origin.y() + y)] = 1;
    return mask;
}

/** Two cones of height 10 and 8, their feet overlapping, on a floor at 0. */
double cones(int x, int y)
{
    const double a = 10 - std::hypot(x - 9, y - 10);
    const double b = 8 - std::hypot(x - 20, y - 10);
    return std::max({ a, b, 0.0 });
}

} // namespace

class TestImageSegmentation : public QObject {
    Q_OBJECT

private slots:
    void maskComponentsByConnectivity()
    {
        auto corner = squares(3, 3);
        QCOMPARE(ImageSegmentation::maskComponents(corner.data(), W, H, 4).size(), size_t(2));
        const auto joined = ImageSegmentation::maskComponents(corner.data(), W, H, 8);
        QCOMPARE(joined.size(), size_t(1));
        QCOMPARE(joined.front().size(), size_t(18));
        auto edge = squares(3, 1);
        QCOMPARE(ImageSegmentation::maskComponents(edge.data(), W, H, 4).size(), size_t(1));

        // The top of one column and the bottom of the next are neighbours in memory only.
        std::vector<uchar> wrap(size_t(W) * H, 0);
        wrap[H - 1] = wrap[H] = 1;
        QCOMPARE(ImageSegmentation::maskComponents(wrap.data(), W, H, 8).size(), size_t(2));
    }

    void watershedSplitsMergedCones()
    {
        std::vector<double> z(size_t(W) * H);
        std::vector<uchar> domain(z.size());
        for (int x = 0; x < W; ++x)
            for (int y = 0; y < H; ++y) {
                z[size_t(x) * H + y] = cones(x, y);
                domain[size_t(x) * H + y] = cones(x, y) > 0;
            }
        // On the grid the cones meet at 4, so the lower one rises 4 above the saddle.
        const auto split = ImageSegmentation::watershed(z.data(), domain.data(), W, H, 1.0);
        QCOMPARE(split.size(), size_t(2));
        const auto has = [&](const std::vector<int>& region, int x, int y) {
            return std::binary_search(region.begin(), region.end(), x * H + y);
        };
        QVERIFY(has(split[0], 9, 10) && has(split[0], 13, 10));
        QVERIFY(has(split[1], 20, 10) && has(split[1], 16, 10));
        QCOMPARE(split[0].size() + split[1].size(), size_t(std::count(domain.begin(), domain.end(), 1)));

        QCOMPARE(ImageSegmentation::watershed(z.data(), domain.data(), W, H, 4.5).size(), size_t(1));
        // A bump rising 0.5 above the flank it sits on makes no grain of its own.
        z[size_t(5) * H + 10] += 1.5;
        QCOMPARE(ImageSegmentation::watershed(z.data(), domain.data(), W, H, 1.0).size(), size_t(2));
    }

    void operationsStoreMeasuredObjects()
    {
        Project project;
        auto* item = new QSciImage(W, H, Qt::white);
        project.addTab()->addItem(item);
        QString message;
        QCOMPARE(SegmentationOperations::maskToObjects(project, { item }, 4, &message),
            SegmentationOperations::Outcome::Refused);
        QCOMPARE(message, SegmentationOperations::noMaskText());

        const auto mask = squares(3, 3);
        for (int x = 0; x < W; ++x)
            for (int y = 0; y < H; ++y) {
                item->setPixelSelected(x, y, mask[size_t(x) * H + y]);
                item->setZ(x, y, cones(x, y));
            }
        QCOMPARE(SegmentationOperations::maskToObjects(project, { item }, 4, &message),
            SegmentationOperations::Outcome::Applied);
        QCOMPARE(message, QStringLiteral("2 objects found"));
        QCOMPARE(item->objects().size(), 2);
        QCOMPARE(item->objects().at(1).objectNumber, 2);
        QCOMPARE(item->objects().at(1).areaPBM, 9.0);
        QCOMPARE(item->objects().at(1).boundingBox, QRect(8, 8, 3, 3));

        // Without a mask, watershed floods what stands above the mean; numbers follow those the item has.
        item->clearObjects();
        for (int x = 0; x < W; ++x)
            for (int y = 0; y < H; ++y)
                item->setPixelSelected(x, y, false);
        QCOMPARE(SegmentationOperations::watershed(project, { item }, 1.0, &message),
            SegmentationOperations::Outcome::Applied);
        QCOMPARE(item->objects().size(), 2);
        const QSciSingleObject& high = item->objects().first();
        QCOMPARE(high.zMax, 10.0);
        QCOMPARE(high.zMaxAt, QPoint(9, 10));
        QVERIFY(high.cubage > 0);
        QVERIFY(item->objects().at(1).zMax < 8.0 + 1e-12);
    }

    void voronoiCellsAroundObjectCentres()
    {
        // Physical steps count: with x points twice as long, the border leans towards the farther centre in y.
        const std::vector<int> cells = VoronoiCells::label({ QPointF(2, 2), QPointF(6, 10) }, W, H, 2.0, 1.0);
        QCOMPARE(cells[size_t(2) * H + 2], 0);
        QCOMPARE(cells[size_t(6) * H + 3], 1); // about 8 from the first centre, 7 from the second
        QCOMPARE(cells[size_t(4) * H + 5], 0);
        const QVector<uchar> borders = VoronoiCells::borders(cells, W, H);
        QVERIFY(!borders[2 * H + 2] && borders[6 * H + 3]);

        Project project;
        auto* item = new QSciImage(W, H, Qt::white);
        project.addTab()->addItem(item);
        QString message;
        QVERIFY(!VoronoiOperations::construct(project, item, VoronoiOperations::Output::CellNumber, nullptr, &message));
        QCOMPARE(message, VoronoiOperations::noObjectsText());
        const auto mask = squares(12, 6);
        for (int x = 0; x < W; ++x)
            for (int y = 0; y < H; ++y)
                item->setPixelSelected(x, y, mask[size_t(x) * H + y]);
        QCOMPARE(SegmentationOperations::maskToObjects(project, { item }, 8), SegmentationOperations::Outcome::Applied);
        QSciImage::SciValues sci = item->sciValues();
        sci.xUnitPerPixel = sci.yUnitPerPixel = 0.5;
        item->setSciValues(sci);

        QList<VoronoiOperations::Cell> list;
        QSciImage* made = nullptr;
        QVERIFY(
            VoronoiOperations::construct(project, item, VoronoiOperations::Output::CellArea, &list, &message, &made));
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.first().centre, QPointF(6, 6));
        QCOMPARE(list.first().area + list.last().area, W * H * 0.25);
        QVERIFY(made && made != item);
        QCOMPARE(project.tabOf(item)->indexOf(made), 1);
        QCOMPARE(made->z(0, 0), list.first().area);
        QCOMPARE(made->z(W - 1, H - 1), list.last().area);
    }
};

QTEST_GUILESS_MAIN(TestImageSegmentation)
#include "tst_imagesegmentation.moc"
