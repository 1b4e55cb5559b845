#include "mainwindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDataStream>
#include <QDateTime>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>

#include "busycursor.h"
#include "centralarea.h"
#include "collectiontabpage.h"
#include "componentsdock.h"
#include "core/base/tempfiles.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"
#include "core/processing/syntheticfield.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/itemclipboard.h"
#include "core/processing/latticeanalysis.h"
#include "core/processing/qscieffect.h"
#include "core/project/itemoperations.h"
#include "core/project/spectrumoperations.h"
#include "core/project/project.h"
#include "core/settings/options.h"
#include "documentsdock.h"
#include "formadvancedalignment.h"
#include "formitemproperties.h"
#include "formnewimage.h"
#include "formrecalibratez.h"
#include "gui/analysis/objectanalysisactions.h"
#include "gui/analysis/segmentationactions.h"
#include "gui/processing/compositionactions.h"
#include "gui/processing/formfouriertransform.h"
#include "gui/processing/formimageprocessing.h"
#include "gui/processing/formroughness.h"
#include "gui/import/fileimport.h"
#include "gui/import/formbrowse.h"
#include "gui/display/formchoosecolorgradient.h"
#include "gui/display/formcolorrange.h"
#include "gui/help/forminfo.h"
#include "gui/help/helpbrowser.h"
#include "gui/tools/toolbox.h"
#include "itemcontextmenu.h"
#include "iteminfowidget.h"
#include "mainactions.h"
#include "maintoolbars.h"
#include "outputpage.h"
#include "searchreplacebar.h"
#include "toolsdock.h"
#include "undoredomenu.h"
#include "gui/tables/tablespanel.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tabletext.h"
#include "gui/tables/textspanel.h"
#include "gui/script/scriptspanel.h"

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
// One Ctrl+wheel notch zooms by a quarter.
constexpr double zoomStepFactor = 1.25;

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , m_busyCursor(std::make_unique<BusyCursor>())
    , m_project(new Project(this))
    , m_clipboard(new ItemClipboard(this))
{
    BusyIndicator::install(m_busyCursor.get());
    // Files a run that ended abnormally left behind; the settings folder may have changed since the last window.
    QSciHistoryManager* history = QSciHistoryManager::instance();
    history->reloadSettings();
    history->cleanDirectory();
    m_project->addTab();

    buildForm();
    createToolBars();
    wireActions();
    connect(m_project, &Project::modifiedChanged, this, &MainWindow::updateWindowTitle);
    updateWindowTitle();
    QListWidget* imageList = m_componentsDock->imageList();
    connect(imageList, &QListWidget::itemSelectionChanged, this, &MainWindow::onImageList_updateSelectionAndVisibility);
    connect(imageList, &QListWidget::itemChanged, this, &MainWindow::imageList_changed);
    // The dialogs and panels of the other subsystems are created here, once, parented to the window.
    m_formNewImage = new FormNewImage(this);
    m_formRecalibrateZ = new FormRecalibrateZ(this);
    m_formImageProcessing = new FormImageProcessing(this);
    m_formImageProcessing->setProject(m_project, [this] { return selectedItems(); });
    connect(m_formImageProcessing, &FormImageProcessing::messageRequested, this, &MainWindow::showMessage);
    auto* objects = new ObjectAnalysisActions(this, m_actions, m_formImageProcessing);
    connect(objects, &ObjectAnalysisActions::messageRequested, this, &MainWindow::showMessage);
    auto* segmentation = new SegmentationActions(this, m_actions);
    connect(segmentation, &SegmentationActions::messageRequested, this, &MainWindow::showMessage);
    auto* composition = new CompositionActions(this, m_actions);
    connect(composition, &CompositionActions::messageRequested, this, &MainWindow::showMessage);
    const std::pair<const char*, QString> pages[] = {
        { "actionPlane_correction", QStringLiteral("PlaneCorrectionPanel") },
        { "actionDrift_correction", QStringLiteral("DriftCorrectionPanel") },
        { "actionDerivative", QStringLiteral("DerivativePanel") },
        { "actionDenoise", QStringLiteral("DenoisePanel") },
        { "actionZ_Matrix_manipulation", QStringLiteral("ZFormulaPanel") },
    };
    for (const auto& page : pages)
        m_actions->wire(page.first, this, [this, name = page.second] { m_formImageProcessing->showPanel(name); });
    // Each entry opens the filters page at its own filter; the list follows the order of QSciFilter::Kind.
    const char* const filters[]
        = { "actionGaussian_Blur", "actionSharpen", "actionUnsharp_Mask", "actionMatrix_Convolution",
              "actionSobel_Edge_Detect", "actionSmoothen", "actionPeak_and_Surface_manipulation" };
    for (int kind = 0; kind < int(std::size(filters)); ++kind)
        m_actions->wire(filters[kind], this, [this, kind] { m_formImageProcessing->showFilter(kind); });
    m_actions->wire("actionThinning", this, [this] {
        const QList<QSciImage*> items = selectedItems();
        if (std::none_of(items.cbegin(), items.cend(), [](const QSciImage* i) { return i->maskSelectedCount() > 0; }))
            return showMessage(tr("Thinning"), QSciEffect::nothingSelectedText());
        ItemOperations::thinMask(*m_project, items);
    });
    m_actions->wire("actionLattice", this, [this] {
        QSciImage* item = currentItem();
        LatticeAnalysis::Result lattice;
        QString message;
        if (!item)
            return;
        if (!LatticeAnalysis::find(*item, &lattice, &message))
            return showMessage(tr("Lattice"), message);
        const QString text = item->name() + QStringLiteral(": ") + LatticeAnalysis::describe(lattice);
        appendOutput(text.toHtmlEscaped());
        statusBar()->showMessage(text, 10000);
    });
    m_formFourierTransform = new FormFourierTransform(this);
    m_actions->wire("actionFourier_transformation", this, [this] {
        const QList<QSciImage*> items = selectedItems();
        if (items.isEmpty())
            return showMessage(tr("Fourier transformation"), tr("Select the items to transform."));
        // With two items, the one whose mask selects frequencies is the spectrum, the other the item to filter.
        const int spectrum = items.size() == 2 && items.at(0)->maskSelectedCount() > 0 ? 0 : 1;
        m_formFourierTransform->offerFilter(
            items.size() == 2, items.size() == 2 && items.at(spectrum)->maskSelectedCount() > 0);
        if (runDialog(m_formFourierTransform) != QDialog::Accepted)
            return;
        QString message;
        if (!m_formFourierTransform->filtering())
            SpectrumOperations::addSpectra(*m_project, items, m_formFourierTransform->mode());
        else if (!SpectrumOperations::filter(*m_project, items.at(1 - spectrum), *items.at(spectrum), &message))
            showMessage(tr("Fourier filter"), message);
    });
    m_formRoughness = new FormRoughness(this);
    connect(m_formRoughness, &FormRoughness::outputRequested, this, &MainWindow::appendOutput);
    connect(m_formRoughness, &FormRoughness::messageRequested, this, &MainWindow::showMessage);
    m_formRoughness->addTable = [this](const QVector<QStringList>& rows, const QString& title) {
        if (auto model = TableText::toModel(rows, rows.isEmpty() ? 0 : rows.first().size()))
            m_tablesPanel->addTable(std::move(model), title);
    };
    m_actions->wire("actionRoughness_analysis", this, [this] {
        if (QSciImage* item = currentItem())
            m_formRoughness->showFor(item);
    });
    m_formAdvancedAlignment = new FormAdvancedAlignment(this);
    m_formChooseColorGradient = new FormChooseColorGradient(this);
    m_formItemProperties = new FormItemProperties(this);
    m_helpBrowser = new HelpBrowser(this);
    m_formInfo = new FormInfo(this);
    wireHelpActions();
    m_fileImport = new FileImport(this);
    m_formBrowse = new FormBrowse(this);
    connect(m_formBrowse, &FormBrowse::openRequested, this, &MainWindow::openBrowsedFiles);
    m_formColorRange = new FormColorRange(this);
    setAcceptDrops(true);
    createTimers();
    readSettings();
    readLastProject();
    wireHistory();
    addFirstStartDemo();
    m_project->setModified(false);
    updateWindowTitle();
    updateItemActions();

    // Work that needs a visible window runs as soon as the event loop has started.
    m_creationTimer = new QTimer(this);
    m_creationTimer->setSingleShot(true);
    connect(m_creationTimer, &QTimer::timeout, this, &MainWindow::creationTimerEvent);
    m_creationTimer->start(1);
}

MainWindow::~MainWindow()
{
    BusyIndicator::install(nullptr);
    m_scriptsPanel->shutdown();
    // The project goes first, while the pages and the list that show it can still let go of its items.
    delete m_project;
    m_project = nullptr;
    TempFiles::removeFfmpegLeftovers(Options::tempDir());
}

void MainWindow::buildForm()
{
    setObjectName(QStringLiteral("MainWindow"));
    m_actions = new MainActions(this);
    m_actions->buildMenus(menuBar());

    m_central = new CentralArea(this);
    setCentralWidget(m_central);
    m_central->setProject(m_project);
    connect(m_central, &CentralArea::currentPageChanged, this, &MainWindow::onCurrentTabChanged);
    connect(m_central, &CentralArea::contextMenuRequested, this, &MainWindow::showItemContextMenu);
    connect(m_central, &CentralArea::pointHovered, this, &MainWindow::onPointHovered);
    connect(m_central, &CentralArea::itemsDragged, this, [this](const QList<QSciImage*>& items, int dx, int dy) {
        ItemOperations::apply(*m_project, items, tr("Move items"), QSciImage::PositionPart,
            [dx, dy](QSciImage& item) { item.moveBy(dx, dy); });
    });
    connect(m_central, &CentralArea::zoomStepRequested, this, [this](int steps) {
        const CollectionTabPage* page = m_central->currentPage();
        if (!page)
            return;
        // At small zooms a quarter rounds away; one percent is the least step.
        const int now = page->zoomPercent();
        setCurrentZoom(
            steps > 0 ? qMax(now + 1, qRound(now * zoomStepFactor)) : qMin(now - 1, qRound(now / zoomStepFactor)));
    });

    m_toolsDock = new ToolsDock(this);
    addDockWidget(Qt::LeftDockWidgetArea, m_toolsDock);
    m_toolBox = new ToolBox(m_toolsDock, this);
    m_toolBox->setProject(m_project);
    m_central->passMenuKeys(m_toolsDock->toolList());
    setToolMouseSink(m_toolBox);
    connect(m_toolBox, &ToolBox::itemsMovableChanged, this, &MainWindow::setItemsMovable);
    connect(m_toolBox, &ToolBox::outputRequested, this, &MainWindow::appendOutput);
    connect(m_toolBox, &ToolBox::statusMessageRequested, this,
        [this](const QString& text) { statusBar()->showMessage(text, 8000); });
    m_componentsDock = new ComponentsDock(this);
    addDockWidget(Qt::RightDockWidgetArea, m_componentsDock);
    m_componentsDock->setProject(m_project);
    connect(m_componentsDock, &ComponentsDock::contextMenuRequested, this, &MainWindow::showItemContextMenu);
    connect(m_componentsDock, &ComponentsDock::itemStateChanged, this, &MainWindow::updateItemActions);
    connect(m_clipboard, &ItemClipboard::changed, this, &MainWindow::updateItemActions);
    m_documentsDock = new DocumentsDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, m_documentsDock);
    m_tablesPanel = new TablesPanel(m_documentsDock);
    m_textsPanel = new TextsPanel(m_documentsDock);
    connect(m_tablesPanel, &TablesPanel::documentsChanged, this, [this] { m_project->setModified(true); });
    connect(m_textsPanel, &TextsPanel::documentsChanged, this, [this] { m_project->setModified(true); });
    m_scriptsPanel = new ScriptsPanel(m_documentsDock, m_project, m_textsPanel);
    m_scriptsPanel->setMessageHandler([this](const QString& title, const QString& text) { showMessage(title, text); });

    m_statusLabel = new QLabel(this);
    m_statusLabel->setObjectName(QStringLiteral("lbStatus"));
    statusBar()->addWidget(m_statusLabel, 1);

    m_contextMenu = new ItemContextMenu(this, this);
    connect(m_contextMenu, &QMenu::aboutToShow, this, &MainWindow::popupImageList_aboutToShow);
    for (const char* working : { "on_pbZoom100Percent_clicked", "popupImageList_zoomIn", "popupImageList_zoomOut" })
        m_contextMenu->setEntryEnabled(working, true);

    m_undoRedoMenu = new UndoRedoMenu(this);
    menuBar()->insertMenu(menuBar()->actions().value(1), m_undoRedoMenu);
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
    m_central->returnFocusOnEnter(m_toolBars->zoomBox());
    connect(m_toolBars->zoom100Button(), &QToolButton::clicked, this, &MainWindow::on_pbZoom100Percent_clicked);
}

void MainWindow::wireActions()
{
    m_actions->wire("actionTab", this, [this] { addCollectionTab(); });
    m_actions->wire("actionQuit", this, &QWidget::close);
    m_actions->wire("actionTable", this, [this] {
        m_documentsDock->show();
        m_documentsDock->pages()->setCurrentWidget(m_documentsDock->tablesPage());
        m_tablesPanel->newTable();
    });
    m_actions->wire("actionText", this, [this] {
        m_documentsDock->show();
        m_documentsDock->pages()->setCurrentWidget(m_documentsDock->textsPage());
        m_textsPanel->newText();
    });
    wireItemActions();
    wireFileActions();
    wirePlotActions();

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

void MainWindow::wireHelpActions()
{
    const QString index = QStringLiteral("Index.html");
    m_actions->wire("actionIntroduction", this, [this, index] { m_helpBrowser->showPage(index); });
    m_actions->wire("actionIndex", this, [this, index] { m_helpBrowser->showPage(index); });
    m_actions->wire("actionContext_Help", this, [this] { m_helpBrowser->showPage(contextHelpPage()); });
    m_actions->get("actionContext_Help")->setShortcut(QKeySequence::HelpContents);
    m_actions->wire("actionInfo", this, [this] { runDialog(m_formInfo); });
}

QString MainWindow::contextHelpPage() const
{
    const QWidget* focus = QApplication::focusWidget();
    const auto within = [focus](const QWidget* area) { return focus && area && area->isAncestorOf(focus); };
    if (within(m_componentsDock))
        return QStringLiteral("Componentlist.html");
    if (within(m_toolsDock) || within(m_central))
        return QStringLiteral("Defaultcursor.html");
    if (within(m_documentsDock))
        return QStringLiteral("Outputpage.html");
    return QStringLiteral("Index.html");
}

void MainWindow::updateWindowTitle()
{
    const QString folder = m_project->fileName();
    // A fresh start with nothing done yet is just the program.
    if (folder.isEmpty() && !m_project->isModified()) {
        setWindowTitle(tr("Velmora"));
        return;
    }
    const QString name = folder.isEmpty() ? tr("New project") : QFileInfo(folder).fileName();
    setWindowTitle(tr("%1%2 - Velmora").arg(name, m_project->isModified() ? QStringLiteral("*") : QString()));
}

void MainWindow::readLastProject()
{
    m_lastProjectFilename = Options::getPath(key("lastProjectFilename"), QString());
    QAction* reopen = m_actions->get("action_reopen_last_project");
    reopen->setEnabled(!m_lastProjectFilename.isEmpty());
    if (!m_lastProjectFilename.isEmpty())
        reopen->setText(tr("(Re-)open") + QStringLiteral(": ") + m_lastProjectFilename);
}

void MainWindow::rememberLastProject(const QString& folder)
{
    Options::setString(key("lastProjectFilename"), folder);
    readLastProject();
    updateWindowTitle();
}

void MainWindow::addFirstStartDemo()
{
    // A first start shows something to try the tools on; later starts never again, even when it was deleted.
    if (!m_lastProjectFilename.isEmpty() || Options::getBool(key("firstStartDone"), false))
        return;
    Options::setBool(key("firstStartDone"), true);
    SyntheticField::Parameters parameters;
    auto* demo = new QSciImage(parameters.width, parameters.height, Qt::white);
    if (!demo->setZMatrix(SyntheticField::generate(parameters))) {
        delete demo;
        return;
    }
    QSciImage::SciValues values;
    values.xUnit = values.yUnit = values.zUnit = QStringLiteral("nm");
    values.sizeX = parameters.width;
    values.sizeY = parameters.height;
    demo->setSciValues(values);
    demo->setColorGradient(ColorGradient::builtIn(13));
    demo->mapZToPicture();
    demo->setDrawSwitches(true, true, true, true);
    demo->setName(tr("Demo"));
    demo->setCreationTime(QDateTime::currentDateTime());
    m_project->currentTab()->addItem(demo);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // First, so that even a cancelled quit has kept the layout and choices.
    writeSettings();
    if (projectHasUnsavedChanges()) {
        const QMessageBox::StandardButton answer = askSaveProjectOnQuit();
        if (answer == QMessageBox::Cancel) {
            event->ignore();
            return;
        }
        if (answer == QMessageBox::Yes) {
            const QString folder = chooseOne(
                FileChoice::SaveFile, "saveMainDialogPath", tr("Save project as"), tr("project directory (*)"));
            QString message;
            // An empty choice saves nothing and still quits; a failed save keeps the work open.
            if (!folder.isEmpty() && !saveProject(folder, &message)) {
                showMessage(tr("Save project"), message);
                event->ignore();
                return;
            }
        }
    }
    // A normal end leaves no history files behind.
    QSciHistoryManager* history = QSciHistoryManager::instance();
    history->forget(m_project);
    history->cleanDirectory();
    event->accept();
}

bool MainWindow::projectHasUnsavedChanges() const
{
    return m_project->isModified();
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

CollectionTabPage* MainWindow::pageFor(const CollectionTab* tab) const
{
    return m_central->pageFor(tab);
}

void MainWindow::setToolMouseSink(ToolMouseSink* sink)
{
    m_central->setToolMouseSink(sink);
}

void MainWindow::setItemsMovable(bool movable)
{
    m_central->setItemsMovable(movable);
}

QList<QSciImage*> MainWindow::selectedItems() const
{
    return m_project->selectedItems(m_componentsDock->usesOnlyActiveTab());
}

QSciImage* MainWindow::currentItem() const
{
    const CollectionTab* tab = m_project->currentTab();
    if (!tab || tab->count() == 0)
        return nullptr;
    const QList<QSciImage*> selected = tab->selectedItems();
    return selected.isEmpty() ? tab->items().last() : selected.last();
}

void MainWindow::creationTimerEvent()
{
    m_updateZValuesTimer->start();
    m_selectionTimer->start();
    m_updateStatusBarTimer->start();
    m_updateSelectionStatusTimer->start();
    updateStatusBarTimerEvent();
    m_central->focusImageArea();
}

void MainWindow::onPointHovered(QSciImage* item, const QPoint& point)
{
    m_hoverItem = item;
    m_hoverPoint = point;
}

void MainWindow::updateZValuesTimerEvent()
{
    m_hoverText = hoverText();
}

QString MainWindow::hoverText() const
{
    const QSciImage* item = m_hoverItem;
    if (!item || m_hoverPoint.x() < 0 || m_hoverPoint.y() < 0 || m_hoverPoint.x() >= item->width()
        || m_hoverPoint.y() >= item->height())
        return QString();
    // The view counts rows from the top; the item's points count them from the bottom.
    const int x = m_hoverPoint.x();
    const int y = item->height() - 1 - m_hoverPoint.y();
    const QSciImage::SciValues& sci = item->sciValues();
    const auto withUnit = [](double value, const QString& unit) {
        return unit.isEmpty() ? QString::number(value, 'g', 6)
                              : QString::number(value, 'g', 6) + QLatin1Char(' ') + unit;
    };
    return tr("%1: x %2, y %3 (%4, %5), z %6")
        .arg(item->name())
        .arg(x)
        .arg(y)
        .arg(withUnit(sci.offsetX + x * sci.xUnitPerPixel, sci.xUnit),
            withUnit(sci.offsetY + y * sci.yUnitPerPixel, sci.yUnit), withUnit(item->z(x, y), sci.zUnit));
}

void MainWindow::selectionTimerEvent()
{
    // Redraws the animated selection outline once selections exist.
}

void MainWindow::updateStatusBarTimerEvent()
{
    const QTabWidget* tabs = m_central->tabs();
    const CollectionTabPage* page = m_central->currentPage();
    QString text = page ? tr("Tab \"%1\" (%2 of %3), zoom %4%")
                              .arg(tabs->tabText(tabs->currentIndex()))
                              .arg(tabs->currentIndex() + 1)
                              .arg(tabs->count())
                              .arg(page->zoomPercent())
                        : QString();
    if (!m_hoverText.isEmpty())
        text += QStringLiteral("   ") + m_hoverText;
    if (m_statusLabel->text() != text)
        m_statusLabel->setText(text);
}

void MainWindow::updateSelectionStatusTimerEvent()
{
    updateItemActions();
    updateItemInfo();
}

void MainWindow::updateItemInfo()
{
    QSciImage* item = currentItem();
    if (item != m_infoItem) {
        m_formImageProcessing->setCurrentItem(item);
        if (m_infoItem)
            disconnect(m_infoItem, nullptr, this, nullptr);
        m_infoItem = item;
        if (item)
            connect(item, &QSciImage::contentChanged, this, [this] { m_itemInfoDirty = true; });
        m_itemInfoDirty = true;
    }
    if (!m_itemInfoDirty)
        return;
    m_itemInfoDirty = false;
    if (!item) {
        m_central->itemInfo()->setInfo(QString());
        return;
    }
    double low = 0, high = 0;
    item->zRange(&low, &high);
    const QSciImage::SciValues& sci = item->sciValues();
    // A size never set follows from the points and their calibration.
    const double sizeX = sci.sizeX > 0 ? sci.sizeX : item->width() * sci.xUnitPerPixel;
    const double sizeY = sci.sizeY > 0 ? sci.sizeY : item->height() * sci.yUnitPerPixel;
    m_central->itemInfo()->setInfo(tr("%1: %2 x %3 points, %4 x %5 %6, z %7 to %8 %9")
                                       .arg(item->name())
                                       .arg(item->width())
                                       .arg(item->height())
                                       .arg(sizeX, 0, 'g', 6)
                                       .arg(sizeY, 0, 'g', 6)
                                       .arg(sci.xUnit)
                                       .arg(low, 0, 'g', 6)
                                       .arg(high, 0, 'g', 6)
                                       .arg(sci.zUnit)
                                       .trimmed());
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
    m_componentsDock->applyListSelection();
}

void MainWindow::imageList_changed(QListWidgetItem* row)
{
    QSciImage* item = m_componentsDock->itemOf(row);
    if (!item)
        return;
    const bool visible = row->checkState() == Qt::Checked;
    if (visible != item->isVisible())
        ItemArrangement::setVisible(*m_project, { item }, visible);
    const QString name = row->text().trimmed();
    if (!name.isEmpty() && name != item->name())
        ItemOperations::apply(*m_project, { item }, tr("Rename"), QSciImage::HeaderPart,
            [name](QSciImage& renamed) { renamed.setName(name); });
}

void MainWindow::popupImageList_aboutToShow()
{
    updateItemActions();
    m_contextMenu->setSelectedCount(selectedItems().size());
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
    m_itemInfoDirty = true;
}
