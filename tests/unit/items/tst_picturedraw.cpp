#include "core/items/picturedraw.h"
#include "core/items/qsciimage.h"

#include <QtTest>

namespace {

/** The picture as shown, top row first: '#' where it has @p color, '.' elsewhere. */
QString painted(const QSciImage& item, const QColor& color)
{
    QString text;
    const QImage& picture = item.picture();
    for (int row = 0; row < picture.height(); ++row) {
        if (row)
            text += QLatin1Char('/');
        for (int x = 0; x < picture.width(); ++x)
            text += picture.pixel(x, row) == color.rgba() ? QLatin1Char('#') : QLatin1Char('.');
    }
    return text;
}

} // namespace

class TestPictureDraw : public QObject {
    Q_OBJECT

private slots:
    void rectangleCoversExactlyItsPoints_data()
    {
        QTest::addColumn<bool>("filled");
        QTest::addColumn<int>("lineWidth");
        QTest::addColumn<QString>("expected");
        QTest::newRow("outline 1") << false << 1 << QStringLiteral("......./.#####./.#...#./.#####./.......");
        QTest::newRow("outline 2") << false << 2 << QStringLiteral("......./.#####./.#####./.#####./.......");
        QTest::newRow("filled") << true << 1 << QStringLiteral("......./.#####./.#####./.#####./.......");
    }

    void rectangleCoversExactlyItsPoints()
    {
        QFETCH(bool, filled);
        QFETCH(int, lineWidth);
        QFETCH(QString, expected);
        QSciImage item(7, 5, Qt::white);
        PictureDraw::drawShape(item, PictureDraw::Shape::Rectangle, QRect(1, 1, 5, 3), Qt::red, filled, lineWidth);
        QCOMPARE(painted(item, Qt::red), expected);
    }

    void ellipseStaysInsideItsRectangle()
    {
        QSciImage item(12, 9, Qt::white);
        PictureDraw::drawShape(item, PictureDraw::Shape::Ellipse, QRect(2, 1, 8, 6), Qt::blue, true, 1);
        const QImage& picture = item.picture();
        for (int row = 0; row < picture.height(); ++row)
            for (int x = 0; x < picture.width(); ++x)
                if (!QRect(2, 1, 8, 6).contains(x, row))
                    QCOMPARE(picture.pixel(x, row), qRgba(255, 255, 255, 255));
        QCOMPARE(picture.pixel(5, 4), QColor(Qt::blue).rgba());
    }

    void pencilHitsThePointsOfItsPath()
    {
        QSciImage item(6, 4, Qt::white);
        QPolygon path;
        path << QPoint(1, 1) << QPoint(4, 1) << QPoint(4, 3);
        PictureDraw::drawStroke(item, PictureDraw::Stroke::Pencil, path, Qt::black, 9);
        QCOMPARE(painted(item, Qt::black), QStringLiteral("....../.####./....#./....#."));

        QSciImage dot(3, 3, Qt::white);
        PictureDraw::drawStroke(dot, PictureDraw::Stroke::Pencil, QPolygon({ QPoint(2, 0) }), Qt::black, 1);
        QCOMPARE(painted(dot, Qt::black), QStringLiteral("..#/.../..."));
    }

    void eraserPaintsSquares()
    {
        QSciImage item(7, 5, Qt::black);
        PictureDraw::drawStroke(item, PictureDraw::Stroke::Eraser, QPolygon({ QPoint(3, 2) }), Qt::white, 3);
        QCOMPARE(painted(item, Qt::white), QStringLiteral("......./..###../..###../..###../......."));
    }

    void fillBucketStopsAtOtherColours_data()
    {
        QTest::addColumn<QPoint>("seed");
        QTest::addColumn<int>("tolerance");
        QTest::addColumn<QString>("expected");
        QTest::newRow("walled in") << QPoint(0, 0) << 0 << QStringLiteral("##.../##.../...../.....");
        QTest::newRow("around the grey") << QPoint(4, 0) << 0 << QStringLiteral("...##/....#/...##/#####");
        QTest::newRow("tolerance joins the grey") << QPoint(4, 0) << 10 << QStringLiteral("...##/...##/...##/#####");
        QTest::newRow("on the wall") << QPoint(2, 0) << 0 << QStringLiteral("..#../..#../###../.....");
        QTest::newRow("outside") << QPoint(-1, 0) << 255 << QStringLiteral("...../...../...../.....");
    }

    void fillBucketStopsAtOtherColours()
    {
        QFETCH(QPoint, seed);
        QFETCH(int, tolerance);
        QFETCH(QString, expected);
        // White, split by a black wall, with a light grey patch right of it.
        QSciImage item(5, 4, Qt::white);
        QImage& picture = item.pictureRef();
        for (const QPoint p : { QPoint(2, 0), QPoint(2, 1), QPoint(0, 2), QPoint(1, 2), QPoint(2, 2) })
            picture.setPixel(p, qRgb(0, 0, 0));
        picture.setPixel(3, 1, qRgb(250, 250, 250));
        PictureDraw::fillBucket(item, seed, Qt::green, tolerance);
        QCOMPARE(painted(item, Qt::green), expected);
    }
};

QTEST_GUILESS_MAIN(TestPictureDraw)
#include "tst_picturedraw.moc"
