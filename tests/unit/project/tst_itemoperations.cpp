#include "core/base/busyindicator.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/itemclipboard.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"

#include <QtTest>

namespace {

/** An item whose z values are base + x + 10*y, placed at (left, top). */
QSciImage* makeItem(CollectionTab* tab, const QString& name, int w, int h, int left, int top, double base)
{
    auto* item = new QSciImage(w, h, Qt::white);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            item->setZ(x, y, base + x + 10 * y);
    item->setName(name);
    item->setPosition(left, top);
    tab->addItem(item);
    return item;
}

QStringList names(const QList<QSciImage*>& items)
{
    QStringList result;
    for (const QSciImage* item : items)
        result.append(item->name());
    return result;
}

} // namespace

class TestItemOperations : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_project = std::make_unique<Project>();
        m_tab = m_project->addTab();
    }

    void expandNonOverlappingFillsWithEachItemsOwnExtreme_data()
    {
        QTest::addColumn<bool>("useMax");
        QTest::newRow("min") << false;
        QTest::newRow("max") << true;
    }

    void expandNonOverlappingFillsWithEachItemsOwnExtreme()
    {
        QFETCH(bool, useMax);
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 2, 2, 0, 0, 100);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 3, 1, 5, 4, -50);
        const double fillA = useMax ? a->zMax() : a->zMin();
        const double fillB = useMax ? b->zMax() : b->zMin();
        ItemOperations::expandToBorder(*m_project, { a, b }, useMax);
        for (QSciImage* item : { a, b }) {
            QCOMPARE(item->size(), QSize(8, 5));
            QCOMPARE(item->tabRect().topLeft(), QPoint(0, 0));
        }
        // a's old content stays at the tab's top-left: its bottom row (y=0) is display row 1, so y = 5-1-1 = 3.
        QCOMPARE(a->z(0, 3), 100.0);
        QCOMPARE(a->z(1, 4), 111.0);
        QCOMPARE(a->z(7, 0), fillA);
        // b sat at tab (5,4): display row 4 is the new bottom row y=0.
        QCOMPARE(b->z(5, 0), -50.0);
        QCOMPARE(b->z(7, 0), -48.0);
        QCOMPARE(b->z(0, 4), fillB);
        QVERIFY(!a->isPixelSelected(7, 0));
    }

    void pictureEditsBecomeVisibleAndRecalibrationStaysFinite()
    {
        QSciImage* shown = makeItem(m_tab, QStringLiteral("z shown"), 3, 2, 0, 0, 1);
        QSciImage* plain = makeItem(m_tab, QStringLiteral("plain"), 3, 2, 0, 0, 1);
        shown->setDrawSwitches(true, false, true, true);
        shown->pictureRef().fill(Qt::black);
        const QList<QSciImage*> switched = ItemOperations::clearPicture(*m_project, { shown, plain });
        QCOMPARE(switched, QList<QSciImage*> { shown });
        QVERIFY(!shown->drawZInSciPaint() && shown->drawImageInSciPaint());
        QVERIFY(!shown->drawMaskInSciPaint()); // the other switches stay as the user set them
        QCOMPARE(shown->pixel(1, 1), qRgb(255, 255, 255));
        QVERIFY(ItemOperations::pictureShownText(switched).contains(QStringLiteral("z shown")));

        QString message;
        const QVector<double> before = plain->zMatrix();
        QVERIFY(!ItemOperations::recalibrateZ(*m_project, { plain }, 1e308, 0, &message));
        QVERIFY(!ItemOperations::recalibrateZ(*m_project, { plain }, 1, qQNaN(), &message));
        QVERIFY(!message.isEmpty());
        QCOMPARE(plain->zMatrix(), before);
        QVERIFY(ItemOperations::recalibrateZ(*m_project, { plain }, -2, 1, &message));
        QCOMPARE(plain->z(2, 1), -2.0 * (1 + 2 + 10) + 1);
    }

    void largeItemsMakeTheProgramBusyForTheWholeOperation()
    {
        struct Recorder final : BusyIndicator {
            QList<bool> calls;
            void setBusy(bool busy) override { calls.append(busy); }
        } recorder;
        BusyIndicator::install(&recorder);
        QSciImage* small = makeItem(m_tab, QStringLiteral("small"), 30, 20, 0, 0, 0);
        auto* large = new QSciImage(1024, 1024, Qt::white);
        m_tab->addItem(large);
        ItemOperations::flipHorizontal(*m_project, { small });
        QVERIFY(recorder.calls.isEmpty());
        ItemOperations::flipHorizontal(*m_project, { small, large, large });
        QCOMPARE(recorder.calls, (QList<bool> { true, false }));
        BusyIndicator::install(nullptr);
    }

    void cutToOverlapKeepsTheCommonArea()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 4, 4, 0, 0, 0);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 4, 4, 2, 1, 1000);
        QVERIFY(ItemOperations::cutToOverlap(*m_project, { a, b }));
        QCOMPARE(a->tabRect(), QRect(2, 1, 2, 3));
        QCOMPARE(b->tabRect(), QRect(2, 1, 2, 3));
        // a's point (2, 2) (display row 1) is now (0, 2).
        QCOMPARE(a->z(0, 2), 22.0);
        QCOMPARE(b->z(0, 0), 1010.0);
    }

    void cutToOverlapWithoutCommonAreaChangesNothing()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 2, 2, 0, 0, 0);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 2, 2, 10, 10, 0);
        QString message;
        QVERIFY(!ItemOperations::cutToOverlap(*m_project, { a, b }, nullptr, &message));
        QVERIFY(!message.isEmpty());
        QCOMPARE(a->size(), QSize(2, 2));
        QCOMPARE(b->tabRect(), QRect(10, 10, 2, 2));
    }

    void unionsTooLargeForOneItemAreRefused()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 2, 2, 0, 0, 0);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 2, 2, 100000, 100000, 0);
        QString message;
        QVERIFY(!ItemOperations::expandToBorder(*m_project, { a, b }, false, nullptr, &message));
        QVERIFY(message.contains(QStringLiteral("too large")));
        QVERIFY(!ItemOperations::merge(*m_project, { a, b }, false, nullptr, &message));
        QCOMPARE(a->size(), QSize(2, 2));
        QCOMPARE(m_tab->count(), 2);
    }

    void mergeLetsTheTopItemWinAndFillsTheRest()
    {
        QSciImage* low = makeItem(m_tab, QStringLiteral("low"), 3, 3, 0, 0, 0);
        QSciImage* high = makeItem(m_tab, QStringLiteral("high"), 2, 2, 2, 2, 500);
        high->setPixelSelected(0, 0, true);
        QSciImage* merged = ItemOperations::merge(*m_project, { high, low }, false);
        QVERIFY(merged);
        QCOMPARE(m_tab->count(), 3);
        QCOMPARE(merged->tabRect(), QRect(0, 0, 4, 4));
        // Tab point (2,2) is covered by both; "high" lies above "low".
        QCOMPARE(merged->z(2, 1), 500.0 + 10);
        QCOMPARE(merged->z(0, 3), 0.0 + 20);
        QCOMPARE(merged->z(3, 3), 0.0); // uncovered: min over both items
        QCOMPARE(qAlpha(merged->pixel(3, 3)), 0);
        QVERIFY(merged->isPixelSelected(2, 0));
        QCOMPARE(merged->maskSelectedCount(), qsizetype(1));
    }

    void rotationAndDuplicateIndependence()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 3, 2, 0, 0, 0);
        const QList<QSciImage*> copies = ItemOperations::duplicate(*m_project, { a });
        QCOMPARE(copies.size(), 1);
        ItemOperations::rotate(*m_project, { a }, 90);
        QCOMPARE(a->size(), QSize(2, 3));
        QCOMPARE(copies.first()->size(), QSize(3, 2));
        QCOMPARE(m_tab->items(), (QList<QSciImage*> { a, copies.first() }));
        QVERIFY(copies.first()->isSelected());
    }

    void stackingOrderOperations()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 1, 1, 0, 0, 0);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 1, 1, 0, 0, 0);
        QSciImage* c = makeItem(m_tab, QStringLiteral("c"), 1, 1, 0, 0, 0);
        QSciImage* d = makeItem(m_tab, QStringLiteral("d"), 1, 1, 0, 0, 0);
        ItemArrangement::bringToFront(*m_project, { a, b });
        QCOMPARE(names(m_tab->items()), QStringList({ "c", "d", "a", "b" }));
        ItemArrangement::sendToBack(*m_project, { b });
        QCOMPARE(names(m_tab->items()), QStringList({ "b", "c", "d", "a" }));
        ItemArrangement::stackUnderFirst(*m_project, { d, b });
        QCOMPARE(names(m_tab->items()), QStringList({ "c", "b", "d", "a" }));
        ItemArrangement::stackOntoLast(*m_project, { c, a, d });
        QCOMPARE(names(m_tab->items()), QStringList({ "b", "d", "c", "a" }));
        ItemArrangement::revertOrder(*m_project, { b, c, a });
        QCOMPARE(names(m_tab->items()), QStringList({ "a", "d", "c", "b" }));
        QCOMPARE(a->zPosInImageList(), 0);
        QCOMPARE(b->zPosInImageList(), 3);
    }

    void sortsFillTheSlotsTheItemsHold()
    {
        QSciImage* x10 = makeItem(m_tab, QStringLiteral("scan 10"), 1, 1, 0, 0, 0);
        QSciImage* fixed = makeItem(m_tab, QStringLiteral("fixed"), 1, 1, 0, 0, 0);
        QSciImage* x9 = makeItem(m_tab, QStringLiteral("scan 9"), 1, 1, 0, 0, 0);
        QSciImage* plain = makeItem(m_tab, QStringLiteral("a plain"), 1, 1, 0, 0, 0);
        ItemArrangement::sortByNumber(*m_project, { x10, x9, plain });
        QCOMPARE(names(m_tab->items()), QStringList({ "scan 9", "fixed", "scan 10", "a plain" }));
        ItemArrangement::sortByName(*m_project, { x10, x9, plain });
        QCOMPARE(names(m_tab->items()), QStringList({ "a plain", "fixed", "scan 10", "scan 9" }));
        x9->setCreationTime(QDateTime::fromSecsSinceEpoch(1));
        plain->setCreationTime(QDateTime::fromSecsSinceEpoch(3));
        x10->setCreationTime(QDateTime::fromSecsSinceEpoch(2));
        ItemArrangement::sortByCreationTime(*m_project, { x10, x9, plain });
        QCOMPARE(names(m_tab->items()), QStringList({ "scan 9", "fixed", "scan 10", "a plain" }));
        Q_UNUSED(fixed)
    }

    void alignAndMove()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 4, 2, 3, 5, 0);
        QSciImage* b = makeItem(m_tab, QStringLiteral("b"), 2, 6, 10, 1, 0);
        ItemArrangement::align(*m_project, { a, b }, ItemArrangement::Edge::Top);
        QCOMPARE(a->top(), 1);
        QCOMPARE(b->top(), 1);
        ItemArrangement::align(*m_project, { a, b }, ItemArrangement::Edge::Right);
        QCOMPARE(a->right(), 11);
        QCOMPARE(b->right(), 11);
        ItemArrangement::alignAdvanced(*m_project, { a, b }, ItemArrangement::Layout::RowByBottom, 3);
        QCOMPARE(b->left(), a->right() + 1 + 3);
        QCOMPARE(b->bottom(), a->bottom());
        ItemArrangement::moveBy(*m_project, { a }, 0, -8);
        QCOMPARE(a->top(), 1 - 8);
    }

    void clipboardCutAndPaste()
    {
        QSciImage* a = makeItem(m_tab, QStringLiteral("a"), 2, 2, 0, 0, 7);
        ItemClipboard clipboard;
        clipboard.cut(*m_project, { a });
        QCOMPARE(m_tab->count(), 0);
        const QList<QSciImage*> pasted = clipboard.paste(*m_project, m_tab);
        QCOMPARE(pasted.size(), 1);
        QCOMPARE(pasted.first()->z(1, 1), 18.0);
        clipboard.paste(*m_project, m_tab);
        QCOMPARE(m_tab->count(), 2);
        QVERIFY(m_project->isModified());
    }

private:
    std::unique_ptr<Project> m_project;
    CollectionTab* m_tab = nullptr;
};

QTEST_GUILESS_MAIN(TestItemOperations)
#include "tst_itemoperations.moc"
