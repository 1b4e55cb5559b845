#include "core/base/progresssink.h"
#include "core/display/colorgradient.h"
#include "core/history/historylog.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/itemclipboard.h"
#include "core/project/itemoperations.h"
#include "core/project/operationscope.h"
#include "core/project/project.h"
#include "core/settings/options.h"

#include <QDir>
#include <QLockFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <cstring>
#include <functional>

namespace {

QSciImage* makeItem(CollectionTab* tab, const QString& name, int w, int h, int left, int top, quint32 seed)
{
    auto* item = new QSciImage(w, h, Qt::white);
    QRandomGenerator random(seed);
    for (int x = 0; x < w; ++x) {
        for (int y = 0; y < h; ++y) {
            item->setZ(x, y, random.generateDouble() * 100 - 20);
            item->setPixel(x, y, random.generate() | 0xff000000u);
            item->setPixelSelected(x, y, random.bounded(3) == 0);
        }
    }
    QSciSingleObject object;
    object.area = 3;
    object.fillPixels = { QPoint(0, 0), QPoint(1, 0), QPoint(0, 1) };
    item->setObjects({ object });
    item->setInstrumentHeader({ { QStringLiteral("Bias"), QStringLiteral("0.5 V") } });
    item->setTextLines({ QStringLiteral("line one") });
    item->setName(name);
    item->setPosition(left, top);
    tab->addItem(item);
    return item;
}

/** Everything undo must bring back, compared bit for bit. */
bool sameItem(const QSciImage& a, const QSciImage& b, QString* why)
{
    const auto fail = [why](const char* text) {
        *why = QString::fromLatin1(text);
        return false;
    };
    if (a.size() != b.size())
        return fail("size");
    if (std::memcmp(a.zData(), b.zData(), sizeof(double) * size_t(a.width()) * size_t(a.height())) != 0)
        return fail("z-matrix");
    if (std::memcmp(a.maskData(), b.maskData(), size_t(a.width()) * size_t(a.height())) != 0)
        return fail("mask");
    if (a.picture() != b.picture())
        return fail("picture");
    if (!(a.objects() == b.objects()))
        return fail("objects");
    if (!(a.sciValues() == b.sciValues()) || a.zCalibrateMultiply() != b.zCalibrateMultiply()
        || a.zCalibrateAdd() != b.zCalibrateAdd())
        return fail("calibration");
    if (a.instrumentHeader() != b.instrumentHeader() || a.textLines() != b.textLines() || a.name() != b.name())
        return fail("header");
    if (a.tabRect() != b.tabRect() || a.isVisible() != b.isVisible())
        return fail("place");
    if (a.colorGradient() != b.colorGradient() || a.colorRange() != b.colorRange())
        return fail("gradient");
    if (a.processingLog() != b.processingLog())
        return fail("processing log");
    return true;
}

struct Snapshot {
    QList<QSciImage*> copies;
    QStringList order;
};

QStringList namesOf(const CollectionTab* tab)
{
    QStringList names;
    for (const QSciImage* item : tab->items())
        names.append(item->name());
    return names;
}

Snapshot snapshot(const CollectionTab* tab)
{
    Snapshot s;
    for (const QSciImage* item : tab->items())
        s.copies.append(item->duplicate());
    s.order = namesOf(tab);
    return s;
}

bool matches(const Snapshot& s, const CollectionTab* tab, QString* why)
{
    if (namesOf(tab) != s.order) {
        *why = QStringLiteral("order ") + namesOf(tab).join(QLatin1Char(','));
        return false;
    }
    for (int i = 0; i < s.copies.size(); ++i) {
        if (!sameItem(*s.copies.at(i), *tab->items().at(i), why)) {
            *why += QStringLiteral(" of ") + s.order.at(i);
            return false;
        }
    }
    return true;
}

using Operation = std::function<void(Project&, CollectionTab*)>;

QList<QSciImage*> firstTwo(CollectionTab* tab)
{
    return tab->items().mid(0, 2);
}

} // namespace

class TestHistory : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        Options::initialize(m_dir.path());
        HistoryLog::setQuiet(true);
        history()->reloadSettings();
    }

    void init()
    {
        history()->setEnabled(true);
        history()->setMaximumSize(quint64(1024) << 20);
        m_project = std::make_unique<Project>();
        m_tab = m_project->addTab();
        makeItem(m_tab, QStringLiteral("item 3"), 5, 4, 0, 0, 1);
        makeItem(m_tab, QStringLiteral("item 1"), 3, 6, 2, 3, 2);
        makeItem(m_tab, QStringLiteral("item 2"), 4, 4, 20, 1, 3);
        for (QSciImage* item : m_tab->items())
            item->setSelected(true);
    }

    void cleanup()
    {
        m_project.reset();
        QCOMPARE(history()->undoNames(), QStringList());
        QCOMPARE(history()->currentSize(), quint64(0));
    }

    void undoRestoresAndRedoReapplies_data()
    {
        QTest::addColumn<int>("operation");
        const QStringList names = operationNames();
        for (int i = 0; i < names.size(); ++i)
            QTest::newRow(qPrintable(names.at(i))) << i;
    }

    void undoRestoresAndRedoReapplies()
    {
        QFETCH(int, operation);
        const Snapshot before = snapshot(m_tab);
        operations().at(operation)(*m_project, m_tab);
        const Snapshot after = snapshot(m_tab);
        QCOMPARE(history()->undoNames().size(), 1);
        QString why;
        QVERIFY(history()->undo());
        QVERIFY2(matches(before, m_tab, &why), qPrintable(why));
        QVERIFY(history()->redo());
        QVERIFY2(matches(after, m_tab, &why), qPrintable(why));
        QVERIFY(history()->undo());
        QVERIFY2(matches(before, m_tab, &why), qPrintable(why));
        qDeleteAll(before.copies);
        qDeleteAll(after.copies);
    }

    void emptyListsSayNothingToUndo()
    {
        QString message;
        QVERIFY(!history()->undo(&message));
        QCOMPARE(message, QStringLiteral("Nothing to undo"));
        QVERIFY(!history()->redo(&message));
        QCOMPARE(message, QStringLiteral("Nothing to redo"));
    }

    void newActionAfterUndoDeletesRedoFiles()
    {
        ItemOperations::flipHorizontal(*m_project, m_tab->items());
        QVERIFY(history()->undo());
        const QStringList filesAfterUndo = historyFiles();
        QVERIFY(!filesAfterUndo.isEmpty());
        ItemOperations::clearMask(*m_project, firstTwo(m_tab));
        QCOMPARE(history()->redoNames(), QStringList());
        for (const QString& file : filesAfterUndo)
            QVERIFY2(!historyFiles().contains(file), qPrintable(file));
        QCOMPARE(history()->undoNames(), QStringList({ QStringLiteral("Clear mask") }));
    }

    void sizeCheckTrimsToNinetyPercent()
    {
        Options::setInt(QStringLiteral("history.maxHistoryMB"), 1);
        history()->reloadSettings();
        QCOMPARE(history()->maximumSize(), quint64(1) << 20);
        QSciImage* big = makeItem(m_tab, QStringLiteral("big"), 512, 512, 0, 0, 9);
        QSciImage* small = m_tab->items().first();
        ItemOperations::apply(*m_project, { small }, QStringLiteral("small"), QSciImage::ZPart, [](QSciImage&) {});
        ItemOperations::apply(*m_project, { big }, QStringLiteral("big"), QSciImage::ZPart, [](QSciImage&) {});
        // The 2 MiB commit alone is over the limit: it goes as well.
        QCOMPARE(history()->undoNames(), QStringList());
        QVERIFY(history()->currentSize() <= quint64(0.9 * (1 << 20)));
        QVERIFY(historyFiles().isEmpty());

        history()->setMaximumSize(quint64(3) << 20);
        ItemOperations::apply(*m_project, { big }, QStringLiteral("first"), QSciImage::ZPart, [](QSciImage&) {});
        ItemOperations::apply(*m_project, { big }, QStringLiteral("second"), QSciImage::ZPart, [](QSciImage&) {});
        QCOMPARE(history()->undoNames(), QStringList({ QStringLiteral("second") }));
        QVERIFY(history()->currentSize() <= quint64(0.9 * (3 << 20)));
        history()->forget();
        Options::remove(QStringLiteral("history.maxHistoryMB"));
        history()->reloadSettings();
    }

    void offRecordsNothing()
    {
        history()->setEnabled(false);
        ItemOperations::flipVertical(*m_project, m_tab->items());
        ItemArrangement::remove(*m_project, firstTwo(m_tab));
        QCOMPARE(history()->undoNames(), QStringList());
        QVERIFY(historyFiles().isEmpty());
        QCOMPARE(m_tab->count(), 1);
    }

    void cancelledTransactionLeavesNoTrace()
    {
        const Snapshot before = snapshot(m_tab);
        {
            OperationScope scope(m_project.get(), m_tab, QStringLiteral("never committed"));
            QVERIFY(scope.record(m_tab->items().first(), QSciImage::AllParts));
            QVERIFY(scope.recordRemoval(m_tab->items().last()));
            QVERIFY(!historyFiles().isEmpty());
        }
        QVERIFY(historyFiles().isEmpty());
        QCOMPARE(history()->undoNames(), QStringList());
        QVERIFY(!history()->inTransaction());
        QString why;
        QVERIFY2(matches(before, m_tab, &why), qPrintable(why));
        qDeleteAll(before.copies);
    }

    void cleaningKeepsOtherFiles()
    {
        QDir dir(history()->directory());
        for (const char* name : { "velmorahist7.tmp.img.velm", "stale.TMP.img.velm.keep", "notes.txt", "x.img.velm" }) {
            QFile file(dir.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        history()->cleanDirectory();
        QStringList left = dir.entryList(QDir::Files);
        left.removeAll(QStringLiteral("history.lock"));
        left.sort();
        QCOMPARE(left, QStringList({ "notes.txt", "stale.TMP.img.velm.keep", "x.img.velm" }));
        for (const QString& name : left)
            dir.remove(name);
    }

    void cancelledOperationLeavesItemsAndHistoryAsBefore()
    {
        struct CancelAfterFirst final : ProgressSink {
            int done = 0;
            void begin(const QString&, int) override { }
            void step(int d) override { done = d; }
            void end() override { }
            bool isCancelled() const override { return done >= 1; }
        } sink;
        const Snapshot before = snapshot(m_tab);
        for (QSciImage* item : m_tab->items())
            item->setColorGradient(ColorGradient::builtIn(13));
        ItemOperations::mapZToPicture(*m_project, m_tab->items(), &sink);
        QCOMPARE(sink.done, 1);
        QCOMPARE(history()->undoNames(), QStringList());
        QString why;
        for (int i = 0; i < before.copies.size(); ++i)
            QVERIFY2(before.copies.at(i)->picture() == m_tab->items().at(i)->picture(), "picture changed");
        QVERIFY(historyFiles().isEmpty());
        qDeleteAll(before.copies);
    }

    void undoKeepsTheSelectionTheUserMadeSince()
    {
        QSciImage* a = m_tab->items().first();
        ItemOperations::flipHorizontal(*m_project, { a });
        a->setSelected(false);
        QVERIFY(history()->undo());
        QVERIFY(!a->isSelected());
        QVERIFY(history()->redo());
        QVERIFY(!a->isSelected());
    }

    void stepsThatChangeNothingKeepTheRedoList()
    {
        ItemOperations::flipVertical(*m_project, { m_tab->items().first() });
        QVERIFY(history()->undo());
        ItemArrangement::moveToTab(*m_project, { m_tab->items().first() }, m_tab); // already there
        QCOMPARE(history()->redoNames().size(), 1);
        QCOMPARE(history()->undoNames().size(), 0);
    }

    void laterStepsReachAnItemMovedBackAndForth()
    {
        CollectionTab* other = m_project->addTab();
        QSciImage* a = m_tab->items().first();
        ItemArrangement::moveToTab(*m_project, { a }, other);
        ItemOperations::clearMask(*m_project, { other->items().first() });
        QVERIFY(history()->undo());
        QVERIFY(history()->undo());
        QCOMPARE(other->count(), 0);
        QVERIFY(m_tab->items().first()->maskSelectedCount() > 0);
        QVERIFY(history()->redo());
        QVERIFY(history()->redo());
        QCOMPARE(other->count(), 1);
        QCOMPARE(other->items().first()->maskSelectedCount(), qsizetype(0));
    }

    void secondProgramOnTheSameFolderWritesElsewhere()
    {
        QTemporaryDir settings;
        Options::initialize(settings.path());
        QLockFile other(Options::historyDir() + QStringLiteral("history.lock"));
        QVERIFY(other.tryLock(0));
        history()->reloadSettings();
        QVERIFY(history()->directory().startsWith(Options::historyDir() + QStringLiteral("run-")));
        other.unlock();
        Options::initialize(m_dir.path());
        history()->reloadSettings();
        QCOMPARE(history()->directory(), Options::historyDir());
    }

    void withoutAWritableHistoryFolderNothingIsChanged()
    {
        QTemporaryDir settings;
        Options::initialize(settings.path());
        const QString blocker = settings.filePath(QStringLiteral("blocker"));
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        Options::setString(QStringLiteral("history.historyDir"), blocker + QStringLiteral("/history"));
        Options::initialize(settings.path());
        history()->reloadSettings();
        QSignalSpy failures(history(), &QSciHistoryManager::recordFailed);

        QSciImage* a = m_tab->items().first();
        const QImage picture = a->picture();
        ItemArrangement::remove(*m_project, { a });
        ItemOperations::flipHorizontal(*m_project, m_tab->items());
        QCOMPARE(m_tab->count(), 3);
        QCOMPARE(a->picture(), picture);
        QCOMPARE(failures.count(), 2);
        QCOMPARE(history()->undoNames(), QStringList());

        Options::initialize(m_dir.path());
        history()->reloadSettings();
    }

    void undoAcrossDeleteAndLaterChange()
    {
        // A deleted item comes back as a new object; older steps must reach it.
        QSciImage* a = m_tab->items().first();
        const Snapshot before = snapshot(m_tab);
        ItemOperations::flipHorizontal(*m_project, { a });
        ItemArrangement::remove(*m_project, { a });
        QCOMPARE(m_tab->count(), 2);
        QVERIFY(history()->undo());
        QVERIFY(history()->undo());
        QString why;
        QVERIFY2(matches(before, m_tab, &why), qPrintable(why));
        QVERIFY(history()->redo());
        QVERIFY(history()->redo());
        QCOMPARE(m_tab->count(), 2);
        QVERIFY(history()->undo());
        QVERIFY(history()->undo());
        QVERIFY2(matches(before, m_tab, &why), qPrintable(why));
        qDeleteAll(before.copies);
    }

private:
    static QSciHistoryManager* history() { return QSciHistoryManager::instance(); }

    QStringList historyFiles() const
    {
        history()->currentSize(); // waits for background saves
        return QDir(history()->directory()).entryList({ QStringLiteral("*.tmp.img.velm") }, QDir::Files);
    }

    static QStringList operationNames()
    {
        return { "map z to picture", "map picture to z", "recalibrate", "flip h", "flip v", "rotate +90", "rotate -90",
            "rotate 180", "cut to mask border", "clear picture", "clear objects", "clear mask", "invert mask",
            "gradient", "cut to overlap", "expand", "merge", "duplicate", "delete", "cut", "paste", "bring to front",
            "send to back", "sort by name", "revert order", "move 8 up", "align left", "hide", "move to other tab" };
    }

    QList<Operation> operations()
    {
        ItemClipboard* clipboard = &m_clipboard;
        return {
            [](Project& p, CollectionTab* t) { ItemOperations::mapZToPicture(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::mapPictureToZ(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::recalibrateZ(p, t->items(), 2.5, -1); },
            [](Project& p, CollectionTab* t) { ItemOperations::flipHorizontal(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::flipVertical(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::rotate(p, t->items(), 90); },
            [](Project& p, CollectionTab* t) { ItemOperations::rotate(p, t->items(), -90); },
            [](Project& p, CollectionTab* t) { ItemOperations::rotate(p, t->items(), 180); },
            [](Project& p, CollectionTab* t) { ItemOperations::cutToMaskBorder(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::clearPicture(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::clearObjects(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::clearMask(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemOperations::invertMask(p, t->items()); },
            [](Project& p, CollectionTab* t) {
                ItemOperations::setColorGradient(p, t->items(), ColorGradient::builtIn(13));
            },
            [](Project& p, CollectionTab* t) { QVERIFY(ItemOperations::cutToOverlap(p, firstTwo(t))); },
            [](Project& p, CollectionTab* t) { ItemOperations::expandToBorder(p, t->items(), true); },
            [](Project& p, CollectionTab* t) { QVERIFY(ItemOperations::merge(p, t->items(), false)); },
            [](Project& p, CollectionTab* t) { ItemOperations::duplicate(p, firstTwo(t)); },
            [](Project& p, CollectionTab* t) { ItemArrangement::remove(p, firstTwo(t)); },
            [clipboard](Project& p, CollectionTab* t) { clipboard->cut(p, { t->items().at(1) }); },
            [clipboard](Project& p, CollectionTab* t) {
                clipboard->copy({ t->items().at(1) });
                clipboard->paste(p, t);
            },
            [](Project& p, CollectionTab* t) { ItemArrangement::bringToFront(p, firstTwo(t)); },
            [](Project& p, CollectionTab* t) { ItemArrangement::sendToBack(p, { t->items().last() }); },
            [](Project& p, CollectionTab* t) { ItemArrangement::sortByName(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemArrangement::revertOrder(p, t->items()); },
            [](Project& p, CollectionTab* t) { ItemArrangement::moveBy(p, t->items(), 0, -8); },
            [](Project& p, CollectionTab* t) { ItemArrangement::align(p, t->items(), ItemArrangement::Edge::Left); },
            [](Project& p, CollectionTab* t) { ItemArrangement::setVisible(p, firstTwo(t), false); },
            [](Project& p, CollectionTab* t) { ItemArrangement::moveToTab(p, firstTwo(t), p.addTab()); },
        };
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Project> m_project;
    CollectionTab* m_tab = nullptr;
    ItemClipboard m_clipboard;
};

QTEST_GUILESS_MAIN(TestHistory)
#include "tst_history.moc"
