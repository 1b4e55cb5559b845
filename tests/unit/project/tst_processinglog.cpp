#include "core/history/historylog.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/itemfile.h"
#include "core/items/processinglog.h"
#include "core/items/qsciimage.h"
#include "core/processing/qscidenoise.h"
#include "core/processing/qscilevelling.h"
#include "core/project/collectiontab.h"
#include "core/project/effectoperations.h"
#include "core/project/itemoperations.h"
#include "core/project/itemproperties.h"
#include "core/project/objectoperations.h"
#include "core/project/project.h"
#include "core/settings/options.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QSciHistoryManager* history()
{
    return QSciHistoryManager::instance();
}

QSciImage* tiltedItem(CollectionTab* tab, const QString& name)
{
    auto* item = new QSciImage(14, 12, Qt::white);
    for (int x = 0; x < 14; ++x)
        for (int y = 0; y < 12; ++y)
            item->setZ(x, y, 0.5 * x - 0.25 * y + ((x * 7 + y) % 3));
    item->setName(name);
    tab->addItem(item);
    return item;
}

} // namespace

class TestProcessingLog : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        Options::initialize(m_dir.path());
        HistoryLog::setQuiet(true);
        history()->reloadSettings();
        history()->setEnabled(true);
    }

    void init() { m_project = std::make_unique<Project>(); }
    void cleanup() { m_project.reset(); }

    void levelDenoiseObjectsAreLoggedInOrderAndUndoneOneByOne()
    {
        QSciImage* item = tiltedItem(m_project->addTab(), QStringLiteral("scan"));
        LevellingOptions level;
        level.method = LevellingOptions::Method::Polynomial;
        level.order = 2;
        DenoiseOptions denoise;
        denoise.radius = 2;
        denoise.loops = 3;
        QCOMPARE(
            EffectOperations::apply(*m_project, { item }, QSciLevelling(level)), EffectOperations::Outcome::Applied);
        QCOMPARE(
            EffectOperations::apply(*m_project, { item }, QSciDenoise(denoise)), EffectOperations::Outcome::Applied);
        ObjectRecognitionOptions objects;
        objects.fillFactor = 40;
        QCOMPARE(ObjectOperations::recognise(*m_project, { item }, objects), ObjectOperations::Outcome::Applied);

        const QStringList log = item->processingLog();
        QCOMPARE(log.size(), 3);
        const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d  "));
        for (const QString& line : log)
            QVERIFY2(stamp.match(line).hasMatch(), qPrintable(line));
        QVERIFY2(log.at(0).contains(QSciLevelling(level).name() + QStringLiteral("  order=2")), qPrintable(log.at(0)));
        QVERIFY2(log.at(1).contains(QStringLiteral("Denoise  radius=2, loops=3")), qPrintable(log.at(1)));
        QVERIFY2(log.at(2).contains(QStringLiteral("Object recognition  type=0, protrusions, fill=40")),
            qPrintable(log.at(2)));

        const QString path = m_dir.filePath(QStringLiteral("logged.img.velm"));
        QVERIFY(ItemFile::save(*item, path));
        QSciImage loaded;
        QVERIFY(ItemFile::load(loaded, path));
        QCOMPARE(loaded.processingLog(), log);
        QCOMPARE(ProcessingLog::commentLines(loaded).mid(1),
            QStringList({ QStringLiteral("# ") + log.at(0), QStringLiteral("# ") + log.at(1),
                QStringLiteral("# ") + log.at(2) }));

        QVERIFY(history()->undo());
        QCOMPARE(item->processingLog(), log.mid(0, 2));
        QVERIFY(history()->undo());
        QCOMPARE(item->processingLog(), log.mid(0, 1));
        QVERIFY(history()->redo());
        QCOMPARE(item->processingLog(), log.mid(0, 2));
    }

    void onlyChangesOfDataAreLoggedOncePerItem()
    {
        CollectionTab* tab = m_project->addTab();
        QSciImage* a = tiltedItem(tab, QStringLiteral("a"));
        QSciImage* b = tiltedItem(tab, QStringLiteral("b"));
        ItemOperations::mapZToPicture(*m_project, { a, b });
        ItemOperations::setColorGradient(*m_project, { a, b }, ColorGradient::builtIn(4));
        ColorRange range;
        QVERIFY(ColorRange::parseCut(QStringLiteral("2"), &range));
        ItemOperations::setColorRange(*m_project, { a, b }, range);
        DenoiseOptions selectionOnly;
        selectionOnly.selectionOnly = true; // nothing selected: refused before anything changes
        QCOMPARE(
            EffectOperations::apply(*m_project, { a }, QSciDenoise(selectionOnly)), EffectOperations::Outcome::Refused);
        QCOMPARE(a->processingLog(), QStringList());

        QVERIFY(ItemOperations::recalibrateZ(*m_project, { a, b }, 2, -1));
        for (const QSciImage* item : { a, b }) {
            QCOMPARE(item->processingLog().size(), 1);
            QVERIFY2(item->processingLog().first().endsWith(QStringLiteral("Recalibrate z-matrix  multiply=2, add=-1")),
                qPrintable(item->processingLog().first()));
        }
    }

    void theUserTrimsTheLogAsAnUndoableEdit()
    {
        QSciImage* item = tiltedItem(m_project->addTab(), QStringLiteral("trim"));
        ItemOperations::flipHorizontal(*m_project, { item });
        ItemOperations::invertMask(*m_project, { item });
        const QStringList full = item->processingLog();
        QCOMPARE(full.size(), 2);
        ItemProperties properties = ItemProperties::of(*item);
        properties.processingLog.removeFirst();
        ItemOperations::setProperties(*m_project, item, properties);
        QCOMPARE(item->processingLog(), full.mid(1));
        QVERIFY(history()->undo());
        QCOMPARE(item->processingLog(), full);
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Project> m_project;
};

QTEST_GUILESS_MAIN(TestProcessingLog)
#include "tst_processinglog.moc"
