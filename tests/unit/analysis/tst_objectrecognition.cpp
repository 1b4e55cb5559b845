#include "core/analysis/objectrecognition.h"
#include "core/analysis/objectreidentification.h"
#include "core/analysis/objecttable.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"
#include "core/processing/syntheticfield.h"
#include "core/project/collectiontab.h"
#include "core/project/objectoperations.h"
#include "core/project/project.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int Size = 64;

/**
 * A flat field at -1 with a terrace at 0 (x, y 50..55, marked in the mask) and triangular peaks: z = 10 - (dx + dy)
 * for dx, dy >= 0 and dx + dy <= 10 from each corner point. The corner is the peak and the first point of the
 * triangle the tile scan meets, so each triangle is seeded at its top.
 */
std::unique_ptr<QSciImage> field(const QList<QPoint>& corners, double sign = 1, const QRect& mesa = QRect())
{
    auto item = std::make_unique<QSciImage>(Size, Size, Qt::white);
    for (int x = 0; x < Size; ++x)
        for (int y = 0; y < Size; ++y) {
            double z = -1;
            if (x >= 50 && x <= 55 && y >= 50 && y <= 55) {
                z = 0;
                item->setPixelSelected(x, y, true);
            }
            if (mesa.contains(x, y))
                z = 10;
            for (const QPoint& c : corners) {
                const int d = (x - c.x()) + (y - c.y());
                if (x >= c.x() && y >= c.y() && d <= 10)
                    z = 10 - d;
            }
            item->setZ(x, y, sign * z);
        }
    return item;
}

/** 2 x 2 tiles, objects up to 20 x 20, the terrace as reference and flat tiles left out. */
ObjectRecognitionOptions options(double fill)
{
    ObjectRecognitionOptions o;
    o.r1Min = o.r1Max = ObjectLimit();
    o.widthMin = o.heightMin = { true, 2 };
    o.widthMax = o.heightMax = { true, 20 };
    o.deltaZMin = { true, 0.5 };
    o.subPlanes = true;
    o.fillFactor = fill;
    return o;
}

QList<QSciSingleObject> find(const QSciImage& item, const ObjectRecognitionOptions& o)
{
    QList<QSciSingleObject> found;
    QString message;
    const RecognitionInput input { item.zData(), item.maskData(), item.width(), item.height() };
    if (ObjectRecognition(o).find(input, &found, nullptr, &message) != ObjectRecognition::Result::Done)
        qWarning() << message;
    return found;
}

} // namespace

class TestObjectRecognition : public QObject {
    Q_OBJECT

private slots:
    void preconditionsInOrder()
    {
        ObjectRecognitionOptions o;
        QString message;
        o.offsetX = 13;
        QVERIFY(!ObjectRecognition(o).check(12, 40, &message));
        QCOMPARE(message, QStringLiteral("Additional offset exceeds image dimensions!"));
        o.offsetX = 0;
        QVERIFY(!ObjectRecognition(o).check(11, 40, &message));
        QCOMPARE(message, QStringLiteral("Image dimensions are lower than 12x12 pixels!"));
        QVERIFY(ObjectRecognition(o).check(12, 12, &message));

        o.r1Min = ObjectLimit();
        QVERIFY(!ObjectRecognition(o).check(100, 100, &message));
        QCOMPARE(message, QStringLiteral("Please select additional minimum defining values!"));
        o.areaMin = { true, 4 };
        o.r1Max = ObjectLimit();
        QVERIFY(!ObjectRecognition(o).check(100, 100, &message));
        QCOMPARE(message, QStringLiteral("Please select additional maximum defining values!"));
        o.areaMax = { true, 50 };
        RecognitionTiles tiles;
        QVERIFY(ObjectRecognition(o).check(100, 80, &message, &tiles));
        QCOMPARE(tiles.wMin, 2);
        QCOMPARE(tiles.hMin, 2);
        QCOMPARE(tiles.wMax, 99); // the image's size, less one
        QCOMPARE(tiles.hMax, 79);

        o.r1Min = { true, 5 };
        o.r2Min = { true, 3 };
        QVERIFY(ObjectRecognition(o).check(100, 100, &message, &tiles));
        QCOMPARE(tiles.wMin, 6);
        o.zRangeMode = true;
        o.zRangeMinFactor = o.zRangeMaxFactor = 40;
        QVERIFY(!ObjectRecognition(o).check(100, 100, &message));
        QCOMPARE(message, QStringLiteral("Choose a valid z range"));
    }

    void fillPercentage()
    {
        // Fill 0 keeps only the points at the height of the peak; one point alone is never an object.
        const auto spike = field({}, 1, QRect(20, 20, 1, 1));
        QCOMPARE(find(*spike, options(50)).size(), 0);
        const auto mesa = field({}, 1, QRect(20, 20, 3, 4));
        QCOMPARE(find(*mesa, options(0)).size(), 1);
        QCOMPARE(find(*mesa, options(0)).first().fillPixels.size(), 12);

        const auto item = field({ QPoint(20, 20) });
        const QList<QSciSingleObject> half = find(*item, options(50));
        QCOMPARE(half.size(), 1);
        QCOMPARE(half.first().fillPixels.size(), 21); // dx + dy <= 5
        QCOMPARE(half.first().fillPixels.first(), QPoint(20, 20));
        const QList<QSciSingleObject> all = find(*item, options(100));
        QCOMPARE(all.size(), 1);
        QCOMPARE(all.first().fillPixels.size(), 66); // down to the terrace's level 0
        QCOMPARE(all.first().zMax, 10.0);
        QCOMPARE(all.first().cubage, 220.0); // heights above the reference

        const auto pits = field({ QPoint(20, 20) }, -1);
        ObjectRecognitionOptions down = options(50);
        down.depressions = true;
        QCOMPARE(find(*pits, down).size(), 1);
        QCOMPARE(find(*pits, options(50)).size(), 0);
    }

    void objectTypeAtTheImageEdge()
    {
        const auto item = field({ QPoint(0, 20), QPoint(30, 20) });
        ObjectRecognitionOptions o = options(50);
        o.objectType = ObjectRecognitionOptions::OpenAndClosed;
        QCOMPARE(find(*item, o).size(), 1);
        o.objectType = ObjectRecognitionOptions::Closed;
        QCOMPARE(find(*item, o).size(), 2);
        o.objectType = ObjectRecognitionOptions::Open;
        QCOMPARE(find(*item, o).size(), 2);
        // Objects too far from their seed fail under the distance rule.
        o.objectType = ObjectRecognitionOptions::Closed;
        o.widthMax = o.heightMax = { true, 2 };
        QCOMPARE(find(*item, o).size(), 0);
    }

    void sizeFiltersAndSelection()
    {
        const auto item = field({ QPoint(10, 10), QPoint(30, 30) });
        ObjectRecognitionOptions o = options(50);
        o.areaMax = { true, 20 };
        QCOMPARE(find(*item, o).size(), 0);
        o.areaMax = ObjectLimit();
        o.onlyInSelection = true;
        QCOMPARE(find(*item, o).size(), 0);
        for (int x = 8; x < 20; ++x)
            for (int y = 8; y < 20; ++y)
                item->setPixelSelected(x, y, true);
        QCOMPARE(find(*item, o).size(), 1);
    }

    void zRangeMode()
    {
        const auto item = field({ QPoint(10, 10), QPoint(30, 30) });
        ObjectRecognitionOptions o = options(50);
        o.zRangeMode = true;
        o.zRangeMinFactor = 50; // z from 4.5 to 10 of -1 .. 10
        o.zRangeMaxFactor = 100;
        const QList<QSciSingleObject> found = find(*item, o);
        QCOMPARE(found.size(), 2);
        QCOMPARE(found.first().fillPixels.size(), 21);
    }

    void seriesKeepsNumbersAcrossDrift()
    {
        Project project;
        CollectionTab* tab = project.addTab();
        QSciImage* first = field({ QPoint(10, 10), QPoint(36, 30) }).release();
        QSciImage* second = field({ QPoint(40, 33), QPoint(13, 12) }).release();
        tab->addItem(first);
        tab->addItem(second);
        ObjectRecognitionOptions o = options(50);
        o.backgroundStable = false;
        QString message;
        QCOMPARE(ObjectOperations::recognise(project, { first, second }, o, 0, nullptr, &message),
            ObjectOperations::Outcome::Applied);
        QCOMPARE(first->objects().size(), 2);
        const auto numberAt = [](const QSciImage* item, QPoint corner) {
            for (const QSciSingleObject& obj : item->objects())
                if (obj.fillPixels.first() == corner)
                    return obj.objectNumber;
            return -1;
        };
        QCOMPARE(numberAt(first, QPoint(10, 10)), numberAt(second, QPoint(13, 12)));
        QCOMPARE(numberAt(first, QPoint(36, 30)), numberAt(second, QPoint(40, 33)));

        // A stable background refuses the same drift; a constant count refuses a new object.
        QSciImage* third = field({ QPoint(40, 33), QPoint(13, 12), QPoint(25, 45) }).release();
        tab->addItem(third);
        o.backgroundStable = true;
        QCOMPARE(ObjectOperations::recognise(project, { first, second }, o, 0, nullptr, &message),
            ObjectOperations::Outcome::Stopped);
        QCOMPARE(message, ObjectReidentification::backgroundMovingText());
        o.backgroundStable = false;
        o.numberConstant = true;
        QCOMPARE(ObjectOperations::recognise(project, { second, third }, o, 0, nullptr, &message),
            ObjectOperations::Outcome::Stopped);
        QCOMPARE(message, QStringLiteral("Number of Objects is not constant"));
        o.numberConstant = false;
        third->clearObjects();
        second->clearObjects();
        QCOMPARE(ObjectOperations::recognise(project, { second, third }, o, 0, nullptr, &message),
            ObjectOperations::Outcome::Applied);
        QCOMPARE(numberAt(third, QPoint(25, 45)), 3);
        QCOMPARE(ObjectTable::summary({ second, third }, false).at(2).at(1), QStringLiteral("3"));
    }

    void recordsMoveWithTheirItemAndSurviveSaving()
    {
        const auto item = field({ QPoint(10, 10), QPoint(30, 20) });
        ObjectRecognitionOptions o = options(50);
        o.markFoundPixels = true;
        Project project;
        QSciImage* owned = item->duplicate();
        project.addTab()->addItem(owned);
        QString message;
        QCOMPARE(ObjectOperations::recognise(project, { owned }, o, 0, nullptr, &message),
            ObjectOperations::Outcome::Applied);
        QCOMPARE(owned->objects().size(), 2);
        QCOMPARE(owned->maskSelectedCount(), qsizetype(42));

        const QList<QSciSingleObject> before = owned->objects();
        for (int turn : { 0, 1, 2 }) {
            if (turn == 0)
                owned->flipHorizontal();
            else if (turn == 1)
                owned->rotate(90);
            else
                owned->resizeToRect(QRect(-3, -2, owned->width() + 5, owned->height() + 4), 0);
            QCOMPARE(owned->objects().size(), 2);
            for (const QSciSingleObject& obj : owned->objects()) {
                QCOMPARE(owned->z(obj.zMaxAt.x(), obj.zMaxAt.y()), 10.0);
                for (const QPoint& p : obj.fillPixels)
                    QVERIFY(owned->isPixelSelected(p.x(), p.y()));
                QCOMPARE(obj.boundingBox.width(), obj.width);
            }
        }
        // Cutting across an object drops it.
        owned->resizeToRect(QRect(0, 0, owned->width(), 1), 0);
        QCOMPARE(owned->objects().size(), 0);

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("objects.img.velm"));
        owned->setObjects(before);
        QVERIFY(ItemFile::save(*owned, path));
        QSciImage loaded;
        QVERIFY(ItemFile::load(loaded, path));
        QCOMPARE(loaded.objects().size(), 2);
        QCOMPARE(loaded.objects().last().numberAt(1), 2); // records carry no number: they count in layer order
        QCOMPARE(loaded.objects().first().fillPixels, before.first().fillPixels);
        QCOMPARE(loaded.objects().first().skeletonPixels, before.first().skeletonPixels);
        QVERIFY(qAbs(loaded.objects().first().compactnessPM - before.first().compactnessPM) < 1e-9);
    }

    void flatGroundShortcutsAgreeWithReadingEveryCircle()
    {
        // A matrix without gaps lets flat tiles and lone spikes be settled from block bounds; one NaN far from any
        // object sends every tile through its full circle instead. Both must find the same objects.
        for (const double sign : { 1.0, -1.0 }) {
            SyntheticField::Parameters p;
            p.width = p.height = 256;
            p.grains = 14;
            p.seed = 9;
            QVector<double> z = SyntheticField::generate(p);
            for (double& v : z)
                v *= sign;
            QVector<double> gap = z;
            gap[0] = std::numeric_limits<double>::quiet_NaN();
            ObjectRecognitionOptions o;
            o.deltaZMin = { true, 5 };
            o.depressions = sign < 0;
            o.objectType = ObjectRecognitionOptions::Closed;
            QList<QSciSingleObject> fast, full;
            QVERIFY(ObjectRecognition(o).find({ z.constData(), nullptr, 256, 256 }, &fast)
                == ObjectRecognition::Result::Done);
            QVERIFY(ObjectRecognition(o).find({ gap.constData(), nullptr, 256, 256 }, &full)
                == ObjectRecognition::Result::Done);
            QVERIFY(fast.size() >= 8);
            QCOMPARE(fast.size(), full.size());
            for (int i = 0; i < fast.size(); ++i)
                QCOMPARE(fast[i].fillPixels, full[i].fillPixels);
        }
    }

    void measuresTable()
    {
        const auto item = field({ QPoint(10, 10) });
        QSciImage::SciValues values = item->sciValues();
        values.xUnitPerPixel = values.yUnitPerPixel = 0.5;
        item->setSciValues(values);
        item->setObjects(find(*item, options(50)));
        const QVector<QStringList> pixel = ObjectTable::measures({ item.get() }, false);
        const QVector<QStringList> physical = ObjectTable::measures({ item.get() }, true);
        QCOMPARE(pixel.size(), 2);
        QCOMPARE(pixel.first().size(), pixel.at(1).size());
        const int area = pixel.first().indexOf(QStringLiteral("Area.pbm [px]"));
        QVERIFY(area >= 0);
        QCOMPARE(physical.first().at(area), QStringLiteral("Area.pbm [xUnits*yUnits]"));
        QCOMPARE(pixel.at(1).at(area), QStringLiteral("21"));
        QCOMPARE(physical.at(1).at(area), QStringLiteral("5.25"));
    }
};

QTEST_GUILESS_MAIN(TestObjectRecognition)
#include "tst_objectrecognition.moc"
