#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/imagecomposition.h"
#include "core/project/project.h"

#include <QtTest>

namespace {

/** A W x H part at physical offset (@p ox, @p oy) with 0.5 units per point, z = 100 * tag + x * 10 + y. */
QSciImage* part(int w, int h, double ox, double oy, int tag)
{
    auto* item = new QSciImage(w, h, Qt::white);
    QSciImage::SciValues s;
    s.xUnit = s.yUnit = s.zUnit = QStringLiteral("nm");
    s.xUnitPerPixel = s.yUnitPerPixel = 0.5;
    s.offsetX = ox;
    s.offsetY = oy;
    item->setSciValues(s);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            item->setZ(x, y, 100 * tag + x * 10 + y);
    item->setName(QStringLiteral("tile %1").arg(tag));
    return item;
}

} // namespace

class TestImageComposition : public QObject {
    Q_OBJECT

private slots:
    void composeAndRecomposeByOffsets()
    {
        Project project;
        CollectionTab* tab = project.addTab();
        // The second part lies 3 points right of and 1 point above the first, overlapping it by one column.
        QSciImage* a = part(4, 3, 10.0, 20.0, 1);
        QSciImage* b = part(4, 3, 11.5, 20.5, 2);
        tab->addItem(a);
        tab->addItem(b);
        QString message;
        QSciImage* composed = ImageComposition::composeInto(project, { a, b }, &message);
        QVERIFY2(composed, qPrintable(message));
        QCOMPARE(composed->size(), QSize(7, 4));
        QCOMPARE(composed->sciValues().offsetX, 10.0);
        QCOMPARE(composed->z(0, 0), 100.0);
        QCOMPARE(composed->z(3, 1), 200.0); // the later part wins the overlap
        QCOMPARE(composed->z(6, 3), 232.0);
        // Nothing covers the top left and bottom right corners: lowest z, selected.
        QCOMPARE(composed->z(0, 3), 100.0);
        QCOMPARE(composed->maskSelectedCount(), qsizetype(3 + 3));

        composed->setZ(1, 1, -5);
        const QList<QSciImage*> parts = ImageComposition::recomposeInto(project, composed, &message);
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.first()->name(), QStringLiteral("tile 1"));
        QCOMPARE(parts.first()->z(1, 1), -5.0);
        QCOMPARE(parts.last()->sciValues().offsetY, 20.5);
        QCOMPARE(parts.last()->zMatrix(), b->zMatrix());
        QCOMPARE(tab->items().size(), 5);

        QVERIFY(ImageComposition::recomposeInto(project, a, &message).isEmpty());
        QVERIFY(!message.isEmpty());
        composed->resizeToRect(QRect(0, 0, 5, 4), 0);
        QVERIFY(ImageComposition::recomposeInto(project, composed, &message).isEmpty());

        QSciImage* coarse = part(2, 2, 0, 0, 3);
        QSciImage::SciValues s = coarse->sciValues();
        s.xUnitPerPixel = 1;
        coarse->setSciValues(s);
        tab->addItem(coarse);
        QVERIFY(!ImageComposition::composeInto(project, { a, coarse }, &message));
        QVERIFY(message.contains(QStringLiteral("tile 3")));
    }
};

QTEST_GUILESS_MAIN(TestImageComposition)
#include "tst_imagecomposition.moc"
