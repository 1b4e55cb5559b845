#include "mainwindow.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDataStream>
#include <QDockWidget>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include "centralarea.h"
#include "collectiontabpage.h"
#include "componentsdock.h"
#include "core/base/tempfiles.h"
#include "core/settings/options.h"
#include "documentsdock.h"
#include "itemcontextmenu.h"
#include "iteminfowidget.h"
#include "mainactions.h"
#include "maintoolbars.h"
#include "outputpage.h"
#include "searchreplacebar.h"
#include "toolsdock.h"

namespace {

QString key(const char* field)
{
    return QLatin1String("MainWindow.") + QLatin1String(field);
}

// Fast enough to follow the mouse, slow enough to cost nothing while idle.
constexpr int updateZValuesIntervalMs = 100;
constexpr int selectionIntervalMs = 100;
constexpr int updateStatusBarIntervalMs = 250;
constexpr int updateSelectionStatusIntervalMs = 250;

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
{
    buildForm();
    createToolBars();
    setWindowTitle(tr("Velmora"));
    QListWidget* imageList = m_componentsDock->imageList();
    connect(imageList, &QListWidget::itemSelectionChanged, this, &MainWindow::onImageList_updateSelectionAndVisibility);
    connect(imageList, &QListWidget::itemChanged, this, &MainWindow::imageList_changed);
    // The dialogs and panels of the other subsystems are created here, once, parented to the window.
    createTimers();
    readSettings();
    readLastProject();

    // Work that needs a visible window runs as soon as the event loop has started.
    m_creationTimer = new QTimer(this);
    m_creationTimer->setSingleShot(true);
    connect(m_creationTimer, &QTimer::timeout, this, &MainWindow::creationTimerEvent);
    m_creationTimer->start(1);
}

MainWindow::~MainWindow()
{
    TempFiles::removeFfmpegLeftovers(Options::tempDir());
}

void MainWindow::buildForm()
{
    setObjectName(QStringLiteral("MainWindow"));
    m_actions = new MainActions(this);
    m_actions->buildMenus(menuBar());

    m_central = new CentralArea(this);
    setCentralWidget(m_central);
    connect(m_central, &CentralArea::currentPageChanged, this, &MainWindow::onCurrentTabChanged);
    connect(m_central, &CentralArea::contextMenuRequested, this, &MainWindow::showItemContextMenu);

    m_toolsDock = new ToolsDock(this);
    addDockWidget(Qt::LeftDockWidgetArea, m_toolsDock);
    m_componentsDock = new ComponentsDock(this);
    addDockWidget(Qt::RightDockWidgetArea, m_componentsDock);
    connect(m_componentsDock, &ComponentsDock::contextMenuRequested, this, &MainWindow::showItemContextMenu);
    m_documentsDock = new DocumentsDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, m_documentsDock);

    m_statusLabel = new QLabel(this);
    m_statusLabel->setObjectName(QStringLiteral("lbStatus"));
    statusBar()->addWidget(m_statusLabel, 1);

    m_contextMenu = new ItemContextMenu(this, this);
    connect(m_contextMenu, &QMenu::aboutToShow, this, &MainWindow::popupImageList_aboutToShow);
    for (const char* working : { "on_pbZoom100Percent_clicked", "popupImageList_zoomIn", "popupImageList_zoomOut" })
        m_contextMenu->setEntryEnabled(working, true);

    addCollectionTab();
    wireActions();
}

void MainWindow::createToolBars()
{
    m_toolBars = new MainToolBars(this, *m_actions);
    for (QToolBar* bar : m_toolBars->bars())
        connect(bar, &QToolBar::visibilityChanged, this, &MainWindow::onToolbarVisibilityChanged);
    wireViewToggle("actionFile_menu", m_toolBars->bar(MainToolBars::FileBar));
    wireViewToggle("actionHistory", m_toolBars->bar(MainToolBars::HistoryBar));
    wireViewToggle("actionZoom", m_toolBars->bar(MainToolBars::ZoomBar));
    wireViewToggle("actionInfo_Settings", m_toolBars->bar(MainToolBars::InfoSettingsBar));
    onToolbarVisibilityChanged(true);

    connect(m_toolBars->zoomBox(), QOverload<int>::of(&QSpinBox::valueChanged), this, &MainWindow::setCurrentZoom);
    connect(m_toolBars->zoom100Button(), &QToolButton::clicked, this, &MainWindow::on_pbZoom100Percent_clicked);
}

void MainWindow::wireActions()
{
    m_actions->wire("actionTab", this, [this] { addCollectionTab(); });
    m_actions->wire("actionQuit", this, &QWidget::close);

    wireViewToggle("actionToolbox", m_toolsDock);
    wireViewToggle("actionComponents", m_componentsDock);
    wireViewToggle("actionDocuments", m_documentsDock);
    wireViewToggle("actionStatusbar", statusBar());

    QAction* itemInfo = m_actions->get("actionItem_Info_Window");
    itemInfo->setEnabled(true);
    connect(itemInfo, &QAction::toggled, m_central->itemInfo(), &QWidget::setVisible);
    connect(itemInfo, &QAction::triggered, this,
        [](bool on) { Options::setBool(QStringLiteral("MainWindow.showItemInfoWidget"), on); });
}

void MainWindow::wireViewToggle(const char* actionName, QWidget* widget)
{
    QAction* action = m_actions->get(actionName);
    action->setEnabled(true);
    action->setChecked(!widget->isHidden());
    connect(action, &QAction::triggered, widget, &QWidget::setVisible);
    // isHidden, not the signal's argument: a dock tabbed behind another is not visible, yet open.
    if (auto* dock = qobject_cast<QDockWidget*>(widget))
        connect(
            dock, &QDockWidget::visibilityChanged, action, [action, dock] { action->setChecked(!dock->isHidden()); });
}

void MainWindow::createTimers()
{
    const auto makeTimer = [this](int intervalMs, void (MainWindow::*slot)()) {
        auto* timer = new QTimer(this);
        timer->setInterval(intervalMs);
        connect(timer, &QTimer::timeout, this, slot);
        return timer;
    };
    m_updateZValuesTimer = makeTimer(updateZValuesIntervalMs, &MainWindow::updateZValuesTimerEvent);
    m_selectionTimer = makeTimer(selectionIntervalMs, &MainWindow::selectionTimerEvent);
    m_updateStatusBarTimer = makeTimer(updateStatusBarIntervalMs, &MainWindow::updateStatusBarTimerEvent);
    m_updateSelectionStatusTimer
        = makeTimer(updateSelectionStatusIntervalMs, &MainWindow::updateSelectionStatusTimerEvent);
}

void MainWindow::readSettings()
{
    const QByteArray packed = QByteArray::fromBase64(Options::getString(key("geometry"), QString()).toLatin1());
    QByteArray geometry;
    QByteArray state;
    QDataStream in(packed);
    in >> geometry >> state;
    if (packed.isEmpty() || in.status() != QDataStream::Ok || !restoreGeometry(geometry))
        resize(1280, 800);
    if (!state.isEmpty())
        restoreState(state);

    // After the state: these keys decide over what the stored layout says.
    m_toolsDock->setVisible(Options::getBool(key("dockToolsVisible"), true));
    m_componentsDock->setVisible(Options::getBool(key("dockComponentsVisible"), true));
    m_documentsDock->setVisible(Options::getBool(key("dockDocumentsVisible"), false));
    statusBar()->setVisible(Options::getBool(key("statusbarVisible"), true));
    m_actions->get("actionToolbox")->setChecked(!m_toolsDock->isHidden());
    m_actions->get("actionComponents")->setChecked(!m_componentsDock->isHidden());
    m_actions->get("actionDocuments")->setChecked(!m_documentsDock->isHidden());
    m_actions->get("actionStatusbar")->setChecked(!statusBar()->isHidden());
    onToolbarVisibilityChanged(true);

    m_toolBars->historyButton()->setChecked(Options::getBool(key("historyOn"), true));
    m_documentsDock->outputPage()->setWordWrap(Options::getBool(key("wordWrapOutput"), true));
    QAction* itemInfo = m_actions->get("actionItem_Info_Window");
    itemInfo->setChecked(Options::getBool(key("showItemInfoWidget"), true));
    m_central->itemInfo()->setVisible(itemInfo->isChecked());
    m_documentsDock->searchBar()->caseSensitive()->setChecked(Options::getBool(key("searchCaseSensitive"), false));
    m_documentsDock->tableRowCount()->setValue(Options::getInt(key("tableSizeRowCount"), 100));
    m_documentsDock->tableColCount()->setValue(Options::getInt(key("tableSizeColCount"), 20));
    m_documentsDock->onlySelectedCells()->setChecked(Options::getBool(key("applyFormulaToSelectedCells"), true));
}

void MainWindow::writeSettings() const
{
    QByteArray packed;
    QDataStream out(&packed, QIODevice::WriteOnly);
    out << saveGeometry() << saveState();
    Options::setString(key("geometry"), QString::fromLatin1(packed.toBase64()));

    Options::setBool(key("dockToolsVisible"), !m_toolsDock->isHidden());
    Options::setBool(key("dockComponentsVisible"), !m_componentsDock->isHidden());
    Options::setBool(key("dockDocumentsVisible"), !m_documentsDock->isHidden());
    Options::setBool(key("statusbarVisible"), !statusBar()->isHidden());
    Options::setBool(key("historyOn"), m_toolBars->historyButton()->isChecked());
    Options::setBool(key("wordWrapOutput"), m_documentsDock->outputPage()->wordWrap());
    Options::setBool(key("searchCaseSensitive"), m_documentsDock->searchBar()->caseSensitive()->isChecked());
    Options::setInt(key("tableSizeRowCount"), m_documentsDock->tableRowCount()->value());
    Options::setInt(key("tableSizeColCount"), m_documentsDock->tableColCount()->value());
    Options::setBool(key("applyFormulaToSelectedCells"), m_documentsDock->onlySelectedCells()->isChecked());
}

void MainWindow::readLastProject()
{
    m_lastProjectFilename = Options::getString(key("lastProjectFilename"), QString());
    // Opening projects is not built yet: the entry shows the stored project but has nothing to run.
    QAction* reopen = m_actions->get("action_reopen_last_project");
    reopen->setEnabled(!m_lastProjectFilename.isEmpty());
    if (!m_lastProjectFilename.isEmpty())
        reopen->setText(tr("(Re-)open") + QStringLiteral(": ") + m_lastProjectFilename);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // First, so that even a cancelled quit has kept the layout and choices.
    writeSettings();
    if (projectHasUnsavedChanges() && askSaveProjectOnQuit() == QMessageBox::Cancel) {
        event->ignore();
        return;
    }
    // Yes would save the project here; until the project can be saved nothing is unsaved, so Yes
    // and No both quit.
    event->accept();
}

bool MainWindow::projectHasUnsavedChanges() const
{
    return false;
}

QMessageBox::StandardButton MainWindow::askSaveProjectOnQuit()
{
    return QMessageBox::question(this, tr("Quit program"), tr("Do you want to save the current project?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
}

void MainWindow::appendOutput(const QString& html)
{
    m_documentsDock->outputPage()->appendOutput(html);
}

CollectionTabPage* MainWindow::addCollectionTab(const QString& name)
{
    return m_central->addTab(name);
}

CollectionTabPage* MainWindow::currentCollectionTab() const
{
    return m_central->currentPage();
}

void MainWindow::creationTimerEvent()
{
    m_updateZValuesTimer->start();
    m_selectionTimer->start();
    m_updateStatusBarTimer->start();
    m_updateSelectionStatusTimer->start();
    updateStatusBarTimerEvent();
}

void MainWindow::updateZValuesTimerEvent()
{
    // Shows the z value under the cursor once items can be shown on a tab.
}

void MainWindow::selectionTimerEvent()
{
    // Redraws the animated selection outline once selections exist.
}

void MainWindow::updateStatusBarTimerEvent()
{
    const QTabWidget* tabs = m_central->tabs();
    const CollectionTabPage* page = m_central->currentPage();
    const QString text = page ? tr("Tab \"%1\" (%2 of %3), zoom %4%")
                                    .arg(tabs->tabText(tabs->currentIndex()))
                                    .arg(tabs->currentIndex() + 1)
                                    .arg(tabs->count())
                                    .arg(page->zoomPercent())
                              : QString();
    if (m_statusLabel->text() != text)
        m_statusLabel->setText(text);
}

void MainWindow::updateSelectionStatusTimerEvent()
{
    // Shows the size of the current selection once the selection tools exist.
}

void MainWindow::onToolbarVisibilityChanged(bool)
{
    const struct {
        const char* action;
        MainToolBars::Bar bar;
    } toggles[] = { { "actionFile_menu", MainToolBars::FileBar }, { "actionHistory", MainToolBars::HistoryBar },
        { "actionZoom", MainToolBars::ZoomBar }, { "actionInfo_Settings", MainToolBars::InfoSettingsBar } };
    for (const auto& t : toggles)
        m_actions->get(t.action)->setChecked(!m_toolBars->bar(t.bar)->isHidden());
}

void MainWindow::onImageList_updateSelectionAndVisibility()
{
    // The project mirrors the list's selection onto the items of the tabs.
}

void MainWindow::imageList_changed(QListWidgetItem*)
{
    // The project renames and shows or hides the item of an edited list entry.
}

void MainWindow::popupImageList_aboutToShow()
{
    m_contextMenu->setSelectedCount(m_componentsDock->imageList()->selectedItems().count());
}

void MainWindow::showItemContextMenu(const QPoint& globalPos)
{
    m_contextMenu->popup(globalPos);
}

void MainWindow::on_pbZoom100Percent_clicked()
{
    setCurrentZoom(100);
}

void MainWindow::popupImageList_zoomIn()
{
    if (const CollectionTabPage* page = m_central->currentPage())
        setCurrentZoom(page->zoomPercent() * 2);
}

void MainWindow::popupImageList_zoomOut()
{
    if (const CollectionTabPage* page = m_central->currentPage())
        setCurrentZoom(page->zoomPercent() / 2);
}

void MainWindow::setCurrentZoom(int percent)
{
    // The tab keeps its zoom; the box only shows it, so both are set even when the box already agrees.
    QSpinBox* zoom = m_toolBars->zoomBox();
    const int bounded = qBound(zoom->minimum(), percent, zoom->maximum());
    if (CollectionTabPage* page = m_central->currentPage())
        page->setZoomPercent(bounded);
    zoom->setValue(bounded);
}

void MainWindow::onCurrentTabChanged(CollectionTabPage* page)
{
    if (page && m_toolBars)
        m_toolBars->zoomBox()->setValue(page->zoomPercent());
}
