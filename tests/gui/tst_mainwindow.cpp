#include "../support/scopedsettings.h"
#include <memory>

#include <QAction>
#include <QCheckBox>
#include <QDockWidget>
#include <QFile>
#include <QGraphicsView>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "core/settings/options.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/fatalerror.h"
#include "gui/app/itemcontextmenu.h"
#include "gui/app/mainwindow.h"
#include "gui/app/outputpage.h"

namespace {

/** A window whose project claims unsaved changes and whose quit question is answered by the test. */
class ScriptedQuitWindow final : public MainWindow {
public:
    QMessageBox::StandardButton answer = QMessageBox::Cancel;
    int questionsAsked = 0;

protected:
    bool projectHasUnsavedChanges() const override { return true; }
    QMessageBox::StandardButton askSaveProjectOnQuit() override
    {
        ++questionsAsked;
        return answer;
    }
};

template <typename T> T* child(const QObject& parent, const char* name)
{
    T* found = parent.findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}

bool stored(const char* field)
{
    return Options::getBool(QLatin1String("MainWindow.") + QLatin1String(field), false);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ScopedSettings> m_settings;

private slots:
    // Every test starts like a first start: an empty settings folder of its own.
    void init()
    {
        m_settings = std::make_unique<ScopedSettings>();
        QVERIFY(m_settings->isValid());
    }

    void cleanup() { m_settings.reset(); }

    void firstStartShowsDefaults()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.windowTitle(), QStringLiteral("Velmora"));

        QVERIFY(child<QDockWidget>(window, "dockTools")->isVisible());
        QVERIFY(child<QDockWidget>(window, "dockComponents")->isVisible());
        QVERIFY(!child<QDockWidget>(window, "dockScripting")->isVisible());
        QVERIFY(window.statusBar()->isVisible());
        QVERIFY(child<QAction>(window, "actionToolbox")->isChecked());
        QVERIFY(!child<QAction>(window, "actionDocuments")->isChecked());
        QVERIFY(child<QAction>(window, "actionStatusbar")->isChecked());

        QVERIFY(child<QToolButton>(window, "pbHistoryOnOff")->isChecked());
        QVERIFY(child<QCheckBox>(window, "cbWordWrapOutput")->isChecked());
        QCOMPARE(child<QSpinBox>(window, "sbTableSizeRowCount")->value(), 100);
        QCOMPARE(child<QSpinBox>(window, "sbTableSizeColCount")->value(), 20);
        QVERIFY(child<QCheckBox>(window, "cbApplyFormulaToSelectedCells")->isChecked());
        QVERIFY(!child<QCheckBox>(window, "cbCaseSensitive")->isChecked());
        QVERIFY(child<QAction>(window, "actionItem_Info_Window")->isChecked());

        const QList<QToolBar*> bars = window.findChildren<QToolBar*>();
        QStringList titles;
        for (QToolBar* bar : bars)
            titles << bar->windowTitle();
        QCOMPARE(titles,
            (QStringList { QStringLiteral("File menu"), QStringLiteral("History"), QStringLiteral("Zoom"),
                QStringLiteral("Item properties"), QStringLiteral("Info && Settings") }));

        // Actions are enabled once wired to their work.
        QVERIFY(child<QAction>(window, "actionBrowse")->isEnabled());
        QVERIFY(child<QAction>(window, "actionTab")->isEnabled());
        QCOMPARE(child<QAction>(window, "actionPlane_correction")->shortcut(),
            QKeySequence(Qt::ALT | Qt::Key_I, Qt::ALT | Qt::Key_P));
    }

    void brokenSettingsFileStillStartsWithDefaults()
    {
        const QString path = m_settings->filePath(QStringLiteral("settings.db"));
        Options::shutdown();
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QByteArray(8192, 'x'));
        file.close();
        Options::initialize(m_settings->path());

        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(child<QDockWidget>(window, "dockTools")->isVisible());
        QVERIFY(!child<QDockWidget>(window, "dockScripting")->isVisible());
        QCOMPARE(child<QSpinBox>(window, "sbTableSizeRowCount")->value(), 100);
        QVERIFY(child<QToolButton>(window, "pbHistoryOnOff")->isChecked());
        window.close();
        // Nothing of the user's file is replaced.
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray(8192, 'x'));
    }

    void settingsSurviveACancelledQuit()
    {
        ScriptedQuitWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        child<QSpinBox>(window, "sbTableSizeRowCount")->setValue(55);
        child<QSpinBox>(window, "sbTableSizeColCount")->setValue(7);
        child<QCheckBox>(window, "cbWordWrapOutput")->setChecked(false);
        child<QToolButton>(window, "pbHistoryOnOff")->click();
        child<QCheckBox>(window, "cbCaseSensitive")->setChecked(true);
        child<QAction>(window, "actionDocuments")->trigger();
        child<QAction>(window, "actionStatusbar")->trigger();

        QVERIFY(!window.close());
        QCOMPARE(window.questionsAsked, 1);
        QVERIFY(window.isVisible());

        QCOMPARE(Options::getInt(QStringLiteral("MainWindow.tableSizeRowCount"), 0), 55);
        QCOMPARE(Options::getInt(QStringLiteral("MainWindow.tableSizeColCount"), 0), 7);
        QVERIFY(!stored("wordWrapOutput"));
        QVERIFY(!stored("historyOn"));
        QVERIFY(stored("searchCaseSensitive"));
        QVERIFY(stored("dockDocumentsVisible"));
        QVERIFY(!stored("statusbarVisible"));
        QVERIFY(stored("dockToolsVisible"));
        QVERIFY(!Options::getString(QStringLiteral("MainWindow.geometry"), QString()).isEmpty());

        window.answer = QMessageBox::No;
        QVERIFY(window.close());
    }

    void storedSettingsComeBackAtTheNextStart()
    {
        Options::setBool(QStringLiteral("MainWindow.dockDocumentsVisible"), true);
        Options::setBool(QStringLiteral("MainWindow.dockToolsVisible"), false);
        Options::setBool(QStringLiteral("MainWindow.wordWrapOutput"), false);
        Options::setInt(QStringLiteral("MainWindow.tableSizeRowCount"), 12);
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(child<QDockWidget>(window, "dockScripting")->isVisible());
        QVERIFY(!child<QDockWidget>(window, "dockTools")->isVisible());
        QVERIFY(!child<QAction>(window, "actionToolbox")->isChecked());
        QCOMPARE(child<QTextEdit>(window, "textOutput")->lineWrapMode(), QTextEdit::NoWrap);
        QCOMPARE(child<QSpinBox>(window, "sbTableSizeRowCount")->value(), 12);
    }

    void reopenLastProjectFollowsTheStoredPath()
    {
        {
            MainWindow window;
            QAction* reopen = child<QAction>(window, "action_reopen_last_project");
            QVERIFY(!reopen->isEnabled());
            QCOMPARE(reopen->text(), QStringLiteral("(Re-)open last project"));
            QCOMPARE(reopen->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_R));
        }
        const QString path = QStringLiteral("/data/run 7/sample.project.velm");
        Options::setString(QStringLiteral("MainWindow.lastProjectFilename"), path);
        MainWindow window;
        QAction* reopen = child<QAction>(window, "action_reopen_last_project");
        QVERIFY(reopen->isEnabled());
        QCOMPARE(reopen->text(), QStringLiteral("(Re-)open: ") + path);
        QCOMPARE(window.lastProjectFilename(), path);
    }

    void newTabAndRenameTab()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto* tabs = child<QTabWidget>(window, "mainTabs");
        QCOMPARE(tabs->count(), 1);
        QVERIFY(qobject_cast<CollectionTabPage*>(tabs->widget(0))->view()->scene());

        QTest::keyClick(&window, Qt::Key_T, Qt::ControlModifier);
        QCOMPARE(tabs->count(), 2);
        QCOMPARE(tabs->currentIndex(), 1);
        auto* page = qobject_cast<CollectionTabPage*>(tabs->currentWidget());
        QVERIFY(page && page != tabs->widget(0));
        QVERIFY(page->scene() != qobject_cast<CollectionTabPage*>(tabs->widget(0))->scene());

        auto* name = child<QLineEdit>(window, "leTabMainName");
        QCOMPARE(name->text(), tabs->tabText(1));
        name->setText(QStringLiteral("  Terraces  "));
        child<QPushButton>(window, "pbRenameTabMain")->click();
        QCOMPARE(tabs->tabText(1), QStringLiteral("Terraces"));
        QCOMPARE(tabs->tabText(0), QStringLiteral("Tab 1"));
        name->setText(QStringLiteral("   "));
        child<QPushButton>(window, "pbRenameTabMain")->click();
        QCOMPARE(tabs->tabText(1), QStringLiteral("Terraces"));
        tabs->setCurrentIndex(0);
        QCOMPARE(name->text(), QStringLiteral("Tab 1"));
    }

    void zoomIsKeptPerTab()
    {
        MainWindow window;
        auto* zoom = child<QSpinBox>(window, "sbZoom");
        auto* tabs = child<QTabWidget>(window, "mainTabs");
        zoom->setValue(250);
        QCOMPARE(window.currentCollectionTab()->view()->transform().m11(), 2.5);
        window.addCollectionTab(QStringLiteral("second"));
        QCOMPARE(zoom->value(), 100);
        tabs->setCurrentIndex(0);
        QCOMPARE(zoom->value(), 250);
        child<QToolButton>(window, "pbZoom100Percent")->click();
        QCOMPARE(window.currentCollectionTab()->zoomPercent(), 100);
    }

    void contextMenuEntriesAndFirstLine()
    {
        MainWindow window;
        auto* menu = child<ItemContextMenu>(window, "popupImageList");
        QVERIFY2(menu->missingSlots().isEmpty(), qPrintable(menu->missingSlots().join(QLatin1Char(' '))));
        QCOMPARE(menu->selectionLine()->text(), QStringLiteral("0 selected images"));

        QCOMPARE(menu->entry("popupImageList_cutToOverlap")->text(), QStringLiteral("Cut all images to overlap"));
        auto* group = qobject_cast<QMenu*>(menu->entry("popupImageList_cutToOverlap")->parent());
        QVERIFY(group && group != menu);
        QCOMPARE(group->title(), QStringLiteral("Cut, Merge and Resize"));
        QCOMPARE(menu->entry("popupImageList_duplicate")->parent(), menu);
        QVERIFY(!menu->entry("popupImageList_flipHorizontal")->isEnabled());
        QVERIFY(!menu->entry("popupImageList_undo")->isEnabled());
        QVERIFY(!group->menuAction()->isEnabled());
        QVERIFY(qobject_cast<QMenu*>(menu->entry("popupImageList_zoomIn")->parent())->menuAction()->isEnabled());

        CollectionTab* tab = window.project()->currentTab();
        for (const char* name : { "a", "b", "c" }) {
            auto* item = new QSciImage(4, 4, Qt::white);
            item->setName(QLatin1String(name));
            tab->addItem(item);
        }
        auto* list = child<QListWidget>(window, "imageListWidget");
        list->item(list->count() - 3)->setSelected(true);
        list->item(list->count() - 1)->setSelected(true);
        emit menu->aboutToShow();
        QCOMPARE(menu->selectionLine()->text(), QStringLiteral("2 selected images"));

        window.currentCollectionTab()->setZoomPercent(300);
        menu->entry("on_pbZoom100Percent_clicked")->trigger();
        QCOMPARE(window.currentCollectionTab()->zoomPercent(), 100);
        menu->entry("popupImageList_zoomIn")->trigger();
        QCOMPARE(window.currentCollectionTab()->zoomPercent(), 200);
    }

    void toolbarTogglesFollowTheBars()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* zoomBar = child<QToolBar>(window, "toolBarZoom");
        QAction* toggle = child<QAction>(window, "actionZoom");
        QVERIFY(toggle->isChecked());
        zoomBar->hide();
        QTRY_VERIFY(!toggle->isChecked());
        toggle->trigger();
        QVERIFY(zoomBar->isVisible());
        QVERIFY(toggle->isChecked());
    }

    void outputPageSavesPlainText()
    {
        MainWindow window;
        window.appendOutput(QStringLiteral("<b>Grains:</b> 42"));
        window.appendOutput(QStringLiteral("Größe &lt;1 nm"));
        auto* page = child<OutputPage>(window, "tabOutput");
        QVERIFY(page->textEdit()->isReadOnly());
        QVERIFY(page->textEdit()->font().family().startsWith(QLatin1String("Courier New"))
            || page->textEdit()->fontInfo().fixedPitch());

        const QString path = m_settings->filePath(QStringLiteral("output.txt"));
        QString message;
        QVERIFY2(page->saveTo(path, &message), qPrintable(message));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), QStringLiteral("Grains: 42\nGröße <1 nm"));

        QVERIFY(!page->saveTo(m_settings->filePath(QStringLiteral("missing/dir/output.txt")), &message));
        QVERIFY(message.section(QLatin1Char('\n'), 0, 0).endsWith(QLatin1String("missing/dir/output.txt")));

        child<QPushButton>(window, "pbClearOutput")->click();
        QVERIFY(page->textEdit()->toPlainText().isEmpty());
    }

    void destructionRemovesFfmpegLeftovers()
    {
        const QString temp = Options::tempDir();
        const QStringList doomed { QStringLiteral("ffmpeg_frame1.png"), QStringLiteral("FFmpegList.txt") };
        const QStringList kept { QStringLiteral("frame_ffmpeg.png"), QStringLiteral("ffmpe.txt") };
        for (const QString& name : doomed + kept) {
            QFile file(temp + name);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        delete new MainWindow;
        for (const QString& name : doomed)
            QVERIFY2(!QFile::exists(temp + name), qPrintable(name));
        for (const QString& name : kept)
            QVERIFY2(QFile::exists(temp + name), qPrintable(name));
    }

    void fatalRoutineReportsAndEnds()
    {
        bool ended = false;
        const FatalError::Ending previous = FatalError::setEnding([&ended] { ended = true; });
        QString boxText;
        QTimer::singleShot(0, this, [&boxText] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                boxText = box->text();
                box->accept();
            }
        });
        FatalError::terminate(QStringLiteral("Tried to read unvalid widget cell"));
        FatalError::setEnding(previous);
        QCOMPARE(boxText, QStringLiteral("Critical error: program terminated."));
        QVERIFY(ended);
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
