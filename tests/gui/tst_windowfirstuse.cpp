// The window as a new user meets it: menus that say what can be chosen, help, the title, the keyboard focus,
// remembered folders, the gradient dialog's start, busy work and a canvas that follows its items.

#include "../support/scopedsettings.h"
#include "scriptedwindow.h"

#include <QAction>
#include <functional>
#include <QApplication>
#include <QDir>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextBrowser>
#include <QtTest>

#include "core/display/colorgradient.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/progressdialogsink.h"
#include "gui/display/formchoosecolorgradient.h"
#include "gui/help/forminfo.h"
#include "gui/help/helpbrowser.h"

namespace {

QMenu* menu(const QMainWindow& window, const char* name)
{
    auto* found = window.menuBar()->findChild<QMenu*>(QLatin1String(name));
    if (!found)
        qWarning("no menu %s", name);
    return found;
}

QMenu* subMenu(const QMenu* parent, const QString& title)
{
    for (QAction* action : parent->actions()) {
        if (action->menu() && action->text() == title)
            return action->menu();
    }
    qWarning("no sub-menu %s", qPrintable(title));
    return nullptr;
}

QSciImage* addItem(MainWindow& window, int width, int height)
{
    auto* item = new QSciImage(width, height, Qt::white);
    item->setName(QStringLiteral("probe"));
    window.project()->currentTab()->addItem(item);
    return item;
}

} // namespace

class TestWindowFirstUse : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;

private slots:
    void init()
    {
        m_settings = std::make_unique<ScopedSettings>();
        QVERIFY(m_settings->isValid());
    }

    void cleanup() { m_settings.reset(); }

    void menusWithNothingToChooseAreDisabled()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        // Every menu and sub-menu is enabled exactly when one of its entries is.
        const std::function<void(QMenu*)> check = [&check](QMenu* menu) {
            bool any = false;
            for (QAction* entry : menu->actions()) {
                if (entry->menu())
                    check(entry->menu());
                any = any || (!entry->isSeparator() && entry->isEnabled());
            }
            QVERIFY2(menu->menuAction()->isEnabled() == any, qPrintable(menu->title()));
        };
        for (QAction* top : window->menuBar()->actions()) {
            if (top->menu() && top->menu()->objectName() != QLatin1String("menuUndoRedo"))
                check(top->menu());
        }
        QVERIFY(menu(*window, "menuHelp")->menuAction()->isEnabled());
        QMenu* exports = menu(*window, "menuExport");
        // The object exports act on selected items: nothing is selected yet.
        QVERIFY(!subMenu(exports, QStringLiteral("Objects pixels"))->menuAction()->isEnabled());
        QVERIFY(subMenu(exports, QStringLiteral("Export visible area as..."))->menuAction()->isEnabled());

        // The text exports need an item, not a selection.
        QVERIFY(!window->findChild<QAction*>(QStringLiteral("actionZ_Matrices"))->isEnabled());
        addItem(*window, 3, 2);
        QTRY_VERIFY(window->findChild<QAction*>(QStringLiteral("actionZ_Matrices"))->isEnabled());
        QVERIFY(window->findChild<QAction*>(QStringLiteral("actionMasks"))->isEnabled());

        // Entries wired later, in sub-menus added later, bring their menus with them.
        QMenu* help = menu(*window, "menuHelp");
        QMenu* later = help->addMenu(QStringLiteral("later"));
        QAction* entry = later->addAction(QStringLiteral("entry"));
        entry->setEnabled(false);
        QVERIFY(!later->menuAction()->isEnabled());
        entry->setEnabled(true);
        QVERIFY(later->menuAction()->isEnabled());
    }

    void helpShowsOurPagesAndTheInfo()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        const QStringList pages = HelpBrowser::pages();
        for (const char* page :
            { "Index.html", "Componentlist.html", "Defaultcursor.html", "Outputpage.html", "Colorgradient.html" })
            QVERIFY2(pages.contains(QLatin1String(page)), page);

        window->findChild<QAction*>(QStringLiteral("actionIndex"))->trigger();
        HelpBrowser* help = window->helpBrowser();
        QTRY_VERIFY(help->isVisible());
        QCOMPARE(help->currentPage(), QStringLiteral("Index.html"));
        auto* text = help->findChild<QTextBrowser*>(QStringLiteral("tbHelp"));
        QVERIFY(text->toPlainText().contains(QStringLiteral("Ctrl+Z")));
        // Every page is reachable from the index, and has a text of its own.
        for (const QString& page : pages) {
            if (page == QLatin1String("Index.html"))
                continue;
            help->showPage(QStringLiteral("Index.html"));
            text->setSource(QUrl(page));
            QCOMPARE(help->currentPage(), page);
            QVERIFY2(text->toPlainText().size() > 300, qPrintable(page));
            QVERIFY(!text->documentTitle().isEmpty());
        }
        help->showPage(QStringLiteral("Nothing.html"));
        QCOMPARE(help->currentPage(), QStringLiteral("Index.html"));

        window->findChild<QAction*>(QStringLiteral("actionContext_Help"))->trigger();
        QVERIFY(HelpBrowser::pages().contains(help->currentPage()));

        const QString info = FormInfo::infoHtml();
        QVERIFY(info.contains(QStringLiteral(VELMORA_VERSION)));
        QVERIFY(info.contains(QString::fromLatin1(qVersion())));
        QVERIFY(info.contains(QStringLiteral("SQLite")) && info.contains(QStringLiteral("zlib")));
        QStringList shown;
        window->fillDialog = [&shown](QDialog* dialog) {
            shown << dialog->objectName();
            return true;
        };
        window->findChild<QAction*>(QStringLiteral("actionInfo"))->trigger();
        QCOMPARE(shown, QStringList { QStringLiteral("FormInfo") });
    }

    void titleNamesTheProjectAndUnsavedChanges()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        QCOMPARE(window->windowTitle(), QStringLiteral("Velmora"));
        QSciImage* item = addItem(*window, 4, 3);
        ItemOperations::flipHorizontal(*window->project(), { item });
        QCOMPARE(window->windowTitle(), QStringLiteral("New project* - Velmora"));
        const QString folder = m_settings->filePath(QStringLiteral("Grains 7"));
        QString message;
        QVERIFY2(window->saveProject(folder, &message), qPrintable(message));
        QCOMPARE(window->windowTitle(), QStringLiteral("Grains 7 - Velmora"));
        ItemOperations::flipVertical(*window->project(), { item });
        QCOMPARE(window->windowTitle(), QStringLiteral("Grains 7* - Velmora"));
    }

    void enterGivesTheFocusBackToTheImageArea()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        QApplication::setActiveWindow(window.get());
        QGraphicsView* view = window->currentCollectionTab()->view();
        auto* tabName = window->findChild<QLineEdit*>(QStringLiteral("leTabMainName"));
        QTRY_VERIFY(view->hasFocus());
        QVERIFY(!tabName->hasFocus());

        QSciImage* item = addItem(*window, 4, 3);
        ItemOperations::flipHorizontal(*window->project(), { item });
        auto* zoom = window->findChild<QSpinBox*>(QStringLiteral("sbZoom"));
        zoom->setFocus();
        QTest::keyClicks(zoom, QStringLiteral("0"));
        QTest::keyClick(zoom, Qt::Key_Return);
        QTRY_VERIFY(view->hasFocus());
        QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
        QTRY_VERIFY(QSciHistoryManager::instance()->undoNames().isEmpty());

        tabName->setFocus();
        tabName->setText(QStringLiteral("Scans"));
        QTest::keyClick(tabName, Qt::Key_Return);
        QTRY_VERIFY(view->hasFocus());
        QCOMPARE(window->findChild<QTabWidget*>(QStringLiteral("mainTabs"))->tabText(0), QStringLiteral("Scans"));
        QTest::keyClick(view, Qt::Key_Y, Qt::ControlModifier);
        QTRY_COMPARE(QSciHistoryManager::instance()->undoNames().size(), 1);
    }

    void fileDialogsStartWhereTheLastChoiceWas()
    {
        // A folder name beyond ASCII: the settings store hands such texts back as their UTF-8 bytes.
        const QString folder = m_settings->filePath(QStringLiteral("Messdaten Größe µm"));
        QVERIFY(QDir().mkpath(folder));
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        addItem(*window, 3, 2);
        window->files << folder;
        window->findChild<QAction*>(QStringLiteral("actionZ_Matrices"))->trigger();
        window->findChild<QAction*>(QStringLiteral("actionMasks"))->trigger();
        QCOMPARE(window->dialogFolders.size(), 2);
        QCOMPARE(window->dialogFolders.at(1), folder);
        QVERIFY(QFile::exists(folder + QStringLiteral("/probe.txt")));
        // Another dialog keeps a folder of its own.
        window->findChild<QAction*>(QStringLiteral("actionOpen_items"))->trigger();
        QCOMPARE(window->dialogFolders.at(2), QDir::homePath());
    }

    void gradientDialogOpensWithTheItemsGradient()
    {
        Options::setString(QStringLiteral("FormChooseColorGradient.gradient"), ColorGradient::builtIn(1).toString());
        QSciImage item(6, 5, Qt::white);
        item.setColorGradient(ColorGradient::builtIn(13));
        FormChooseColorGradient dialog;
        dialog.setPreviewItem(&item);
        dialog.show();
        QCOMPARE(dialog.gradient().toString(), ColorGradient::builtIn(13).toString());
        dialog.reject();
        dialog.setPreviewItem(nullptr);
        dialog.show();
        QCOMPARE(dialog.gradient().toString(), ColorGradient::builtIn(1).toString());
    }

    void longWorkShowsABusyCursor()
    {
        QWidget parent;
        {
            ProgressDialogSink progress(&parent, QStringLiteral("Undo"));
            progress.setCancellable(false);
            progress.begin(QStringLiteral("Undo"), 3);
            QVERIFY(QApplication::overrideCursor());
            QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
            progress.end();
            QVERIFY(!QApplication::overrideCursor());
            progress.begin(QStringLiteral("again"), 1);
        }
        // Gone with the sink, even when a pass did not end.
        QVERIFY(!QApplication::overrideCursor());
    }

    void canvasFitsItsItemsAfterTheyShrink()
    {
        auto window = shownWindowWithoutDemo<ScriptedWindow>(QSize(1000, 700));
        QSciImage* item = addItem(*window, 3000, 2000);
        CollectionTabPage* page = window->currentCollectionTab();
        QTRY_COMPARE(page->scene()->sceneRect(), QRectF(0, 0, 3000, 2000));
        page->view()->horizontalScrollBar()->setValue(page->view()->horizontalScrollBar()->maximum());
        item->resizeToRect(QRect(0, 0, 40, 30), 0);
        QTRY_COMPARE(page->scene()->sceneRect(), QRectF(0, 0, 40, 30));
        QTRY_VERIFY(page->visibleSceneRect().intersects(QRectF(0, 0, 40, 30)));
        delete window->project()->currentTab()->takeItem(item);
        QTRY_COMPARE(page->scene()->sceneRect(), QRectF(0, 0, 1, 1));
    }
};

QTEST_MAIN(TestWindowFirstUse)
#include "tst_windowfirstuse.moc"
