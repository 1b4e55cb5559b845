#include "scriptedwindow.h"

#include "../support/scopedsettings.h"

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/processing/syntheticfield.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/analysis/formobjectproperties.h"
#include "gui/processing/effectpanel.h"
#include "gui/processing/formimageprocessing.h"
#include "gui/tables/tablespanel.h"
#include "gui/tools/qtoolanalyseobject.h"
#include "gui/tools/qtooleditobject.h"
#include "gui/tools/toolbox.h"

class TestObjectAnalysis : public QObject {
    Q_OBJECT

private slots:
    void init() { m_settings = std::make_unique<ScopedSettings>(); }
    void cleanup()
    {
        m_window.reset();
        m_settings.reset();
    }

    void recogniseFromTheDialogShowHideAndEdit()
    {
        m_window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 760));
        auto* item = new QSciImage(160, 160, Qt::white);
        SyntheticField::Parameters p;
        p.width = p.height = 160;
        p.grains = 6;
        p.seed = 5;
        QVERIFY(item->setZMatrix(SyntheticField::generate(p)));
        item->setName(QStringLiteral("grains"));
        m_window->project()->currentTab()->addItem(item);
        item->setSelected(true);

        m_window->findChild<QAction*>(QStringLiteral("actionObject_recognition"))->trigger();
        auto* form = m_window->findChild<FormImageProcessing*>();
        QCOMPARE(form->currentPanel()->objectName(), QStringLiteral("ObjectRecognitionPanel"));
        form->findChild<QCheckBox*>(QStringLiteral("chkDeltaZMin"))->setChecked(true);
        form->findChild<QDoubleSpinBox*>(QStringLiteral("dsbDeltaZMin"))->setValue(5);
        form->findChild<QPushButton*>(QStringLiteral("pbApply"))->click();
        const int found = item->objects().size();
        QVERIFY(found > 0);
        QVERIFY(form->findChild<QProgressBar*>()->format().contains(QString::number(found)));
        QCOMPARE(QSciHistoryManager::instance()->undoNames().value(0), QStringLiteral("Object recognition"));
        QCOMPARE(m_window->tablesPanel()->allTables().size(), 1);

        // Object properties: the list holds every object; hiding them all is one undo step.
        m_window->findChild<QAction*>(QStringLiteral("actionObject_properties"))->trigger();
        auto* properties = m_window->findChild<FormObjectProperties*>();
        QCOMPARE(properties->list()->rowCount(), found);
        properties->setObjectsVisible({}, false);
        QVERIFY(std::none_of(
            item->objects().cbegin(), item->objects().cend(), [](const QSciSingleObject& o) { return o.visible; }));
        QCOMPARE(properties->list()->item(0, 0)->checkState(), Qt::Unchecked);
        m_window->findChild<QAction*>(QStringLiteral("actionUndo"))->trigger();
        item = m_window->project()->currentTab()->items().value(0);
        QVERIFY(item->objects().first().visible);

        // Analyse: a click on an object's point reports it; edit: a stroke from it adds points.
        const QSciSingleObject first = item->objects().first();
        const QPoint at(first.fillPixels.first().x(), item->height() - 1 - first.fillPixels.first().y());
        auto* analyse = qobject_cast<QToolAnalyseObject*>(m_window->toolBox()->tool(QStringLiteral("FIND_OBJECTS")));
        analyse->setTarget(nullptr, item);
        analyse->beginDrag(at, Qt::LeftButton);
        analyse->endDrag(at, Qt::LeftButton);
        QCOMPARE(analyse->lastObject(), first.numberAt(0));

        auto* edit = m_window->toolBox()->tool(QStringLiteral("EDIT_OBJECT"));
        edit->setProject(m_window->project());
        edit->setTarget(nullptr, item);
        const int step = at.x() < item->width() / 2 ? 1 : -1;
        edit->beginDrag(at, Qt::LeftButton);
        edit->updateDrag(at + QPoint(40 * step, 0));
        edit->endDrag(at + QPoint(41 * step, 0), Qt::LeftButton);
        QCOMPARE(QSciHistoryManager::instance()->undoNames().last(), QStringLiteral("Edit object"));
        QCOMPARE(item->objects().first().fillPixels.size(), first.fillPixels.size() + 2);
        QVERIFY(item->objects().first().width > first.width);
    }

private:
    std::unique_ptr<ScopedSettings> m_settings;
    std::unique_ptr<ScriptedWindow> m_window;
};

QTEST_MAIN(TestObjectAnalysis)
#include "tst_objectanalysis.moc"
