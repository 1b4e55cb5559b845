// The item context menu, the matching tool bar buttons and undo/redo: each entry gathers the selected items
// and calls one operation of the project.

#include "mainwindow.h"

#include <algorithm>

#include <QAction>
#include <QStatusBar>
#include <QToolButton>

#include "componentsdock.h"
#include "core/project/itemproperties.h"
#include "formadvancedalignment.h"
#include "formitemproperties.h"
#include "formrecalibratez.h"
#include "gui/analysis/objectanalysisactions.h"
#include "gui/processing/formimageprocessing.h"
#include "gui/display/formchoosecolorgradient.h"
#include "gui/display/formcolorrange.h"
#include "core/history/qscihistorymanager.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/itemclipboard.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"
#include "core/settings/options.h"
#include "itemcontextmenu.h"
#include "mainactions.h"
#include "maintoolbars.h"
#include "progressdialogsink.h"
#include "undoredomenu.h"

namespace {

enum ListedSelection { SelectAll, DeselectAll, ToggleSelection };

// Long enough to be read, short enough not to outlive its occasion.
constexpr int StatusNoteMs = 8000;

/** The selected items an entry needs before it can do anything. */
struct Requirement {
    const char* slot;
    int selected;
};

// clang-format off
const Requirement requirements[] = {
    { "popupImageList_cut", 1 }, { "popupImageList_copy", 1 }, { "popupImageList_delete", 1 },
    { "popupImageList_show", 1 }, { "popupImageList_hide", 1 },
    { "popupImageList_bringToFront", 1 }, { "popupImageList_sendToBack", 1 },
    { "popupImageList_stackFromFirstSelectedImage", 2 }, { "popupImageList_stackToLastSelectedImage", 2 },
    { "popupImageList_revertOrder", 2 }, { "popupImageList_sortByName", 2 },
    { "popupImageList_sortByCreationTimestamp", 2 }, { "popupImageList_sortByNumber", 2 },
    { "popupImageList_alignTop", 2 }, { "popupImageList_alignRight", 2 }, { "popupImageList_alignBottom", 2 },
    { "popupImageList_alignLeft", 2 }, { "popupImageList_alignCentered", 2 },
    { "popupImageList_moveUp", 1 }, { "popupImageList_moveRight", 1 }, { "popupImageList_moveDown", 1 },
    { "popupImageList_moveLeft", 1 }, { "popupImageList_moveUp8", 1 }, { "popupImageList_moveRight8", 1 },
    { "popupImageList_moveDown8", 1 }, { "popupImageList_moveLeft8", 1 },
    { "popupImageList_cutToOverlap", 2 }, { "popupImageList_ExpandToBorder_zMin", 2 },
    { "popupImageList_ExpandToBorder_zMax", 2 }, { "popupImageList_mergeImages_zMin", 2 },
    { "popupImageList_mergeImages_zMax", 2 }, { "popupImageList_cutToMaskBorder", 1 },
    { "popupImageList_flipHorizontal", 1 }, { "popupImageList_flipVertical", 1 },
    { "popupImageList_rotatePlus90", 1 }, { "popupImageList_rotateMinus90", 1 }, { "popupImageList_rotate180", 1 },
    { "popupImageList_mapZToPic", 1 }, { "popupImageList_mapPicToZ", 1 },
    { "popupImageList_clearPicture", 1 }, { "popupImageList_clearObjects", 1 }, { "popupImageList_clearMask", 1 },
    { "popupImageList_duplicate", 1 }, { "popupImageList_alignAdvanced", 2 },
    { "popupImageList_recalibrateZ", 1 }, { "popupImageList_imageProcessing", 1 }, { "popupImageList_selectColorGradient", 1 },
    { "popupImageList_selectColorRange", 1 },
    { "popupImageList_DisplayInfo", 1 }, { "popupImageList_info", 1 },
    { "on_tb3dPlot_clicked", 1 }, { "on_pb3dplotOpenGL_clicked", 1 },
};

// Tool bar buttons that open an entry's dialog for the selected items.
const struct {
    const char* button;
    const char* slot;
} itemButtons[] = {
    { "tbColorGradient", "popupImageList_selectColorGradient" },
    { "tbDisplayProperties", "popupImageList_DisplayInfo" },
    { "tbAdvancedProperties", "popupImageList_info" },
    { "tb3dPlot", "on_tb3dPlot_clicked" },
    { "pb3dplotOpenGL", "on_pb3dplotOpenGL_clicked" },
};
// clang-format on

} // namespace

void MainWindow::wireItemActions()
{
    for (const auto& b : itemButtons) {
        auto* button = findChild<QToolButton*>(QLatin1String(b.button));
        connect(button, &QToolButton::clicked, m_contextMenu->entry(b.slot), &QAction::trigger);
    }
    connect(m_toolBars->saveSelectionButton(), &QToolButton::clicked, this, [this] {
        if (selectedItems().isEmpty())
            saveItemsOnCurrentTab();
        else
            saveSelectedItems();
    });
}

void MainWindow::wireHistory()
{
    m_undoAction = new QAction(tr("Undo"), this);
    m_undoAction->setObjectName(QStringLiteral("actionUndo"));
    m_undoAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    m_redoAction = new QAction(tr("Redo"), this);
    m_redoAction->setObjectName(QStringLiteral("actionRedo"));
    m_redoAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Y));
    addAction(m_undoAction);
    addAction(m_redoAction);
    connect(m_undoAction, &QAction::triggered, this, &MainWindow::popupImageList_undo);
    connect(m_redoAction, &QAction::triggered, this, &MainWindow::popupImageList_redo);
    m_toolBars->undoButton()->setDefaultAction(m_undoAction);
    m_toolBars->redoButton()->setDefaultAction(m_redoAction);
    connect(m_undoRedoMenu, &UndoRedoMenu::undoRequested, this, &MainWindow::undoSteps);
    connect(m_undoRedoMenu, &UndoRedoMenu::redoRequested, this, &MainWindow::redoSteps);

    QToolButton* onOff = m_toolBars->historyButton();
    setHistoryOn(onOff->isChecked());
    connect(onOff, &QToolButton::toggled, this, &MainWindow::setHistoryOn);
    connect(QSciHistoryManager::instance(), &QSciHistoryManager::changed, this, &MainWindow::updateHistoryActions);
    connect(QSciHistoryManager::instance(), &QSciHistoryManager::recordFailed, this,
        [this](const QString& message) { showMessage(tr("History"), message); });
    updateHistoryActions();
}

void MainWindow::setHistoryOn(bool on)
{
    QSciHistoryManager* history = QSciHistoryManager::instance();
    history->setEnabled(on);
    // Steps recorded before a gap without history would restore states that no longer fit.
    if (!on)
        history->forget(m_project);
    Options::setBool(QStringLiteral("MainWindow.historyOn"), on);
}

void MainWindow::updateHistoryActions()
{
    const QSciHistoryManager* history = QSciHistoryManager::instance();
    const bool canUndo = !history->undoNames().isEmpty();
    const bool canRedo = !history->redoNames().isEmpty();
    m_undoAction->setEnabled(canUndo);
    m_redoAction->setEnabled(canRedo);
    m_contextMenu->setEntryEnabled("popupImageList_undo", canUndo);
    m_contextMenu->setEntryEnabled("popupImageList_redo", canRedo);
}

void MainWindow::updateItemActions()
{
    if (!m_project || !m_contextMenu)
        return;
    const QList<QSciImage*> selected = selectedItems();
    const int count = selected.size();
    for (const Requirement& r : requirements)
        m_contextMenu->setEntryEnabled(r.slot, count >= r.selected);
    const bool listed = !m_componentsDock->listedItems().isEmpty();
    for (const char* slot :
        { "popupImageList_selectAll", "popupImageList_deselectAll", "popupImageList_toggleSelection" })
        m_contextMenu->setEntryEnabled(slot, listed);
    CollectionTab* tab = m_project->currentTab();
    m_contextMenu->setEntryEnabled("popupImageList_paste", tab && !m_clipboard->isEmpty());
    m_contextMenu->setEntryEnabled(
        "popupImageList_ChangeParent", tab && std::any_of(selected.cbegin(), selected.cend(), [tab](QSciImage* item) {
            return !tab->contains(item);
        }));

    m_actions->get("actionSave_selected_items")->setEnabled(count > 0);
    // Without a selection the exports take the current item, so that a first export needs no selecting first.
    for (const char* name :
        { "actionZ_Matrices", "actionMasks", "actionPictures_without_display_elements", "actionPictures_s",
            "actionPictures_with_display_elements", "actionPdf_files", "actionPostscript_ps_files" })
        m_actions->get(name)->setEnabled(count > 0 || currentItem());
    m_actions->get("actionLaTeX_Codes")->setEnabled(count > 0 || currentItem());
    for (const char* name : ObjectAnalysisActions::exportActions())
        m_actions->get(name)->setEnabled(count > 0);
    m_actions->get("actionSave_items_on_current_tab")->setEnabled(tab && tab->count() > 0);
    for (const auto& b : itemButtons)
        findChild<QToolButton*>(QLatin1String(b.button))->setEnabled(m_contextMenu->entry(b.slot)->isEnabled());
    QToolButton* saveButton = m_toolBars->saveSelectionButton();
    saveButton->setText(count > 0 ? tr("Save selected images") : tr("Save items on current tab"));
    saveButton->setEnabled(count > 0 || (tab && tab->count() > 0));
}

void MainWindow::undoSteps(int steps)
{
    for (int i = 0; i < steps; ++i)
        popupImageList_undo();
}

void MainWindow::redoSteps(int steps)
{
    for (int i = 0; i < steps; ++i)
        popupImageList_redo();
}

void MainWindow::popupImageList_undo()
{
    QString message;
    ProgressDialogSink progress(this, tr("Undo"));
    progress.setCancellable(false);
    if (!QSciHistoryManager::instance()->undo(&message, &progress))
        statusBar()->showMessage(message, 4000);
}

void MainWindow::popupImageList_redo()
{
    QString message;
    ProgressDialogSink progress(this, tr("Redo"));
    progress.setCancellable(false);
    if (!QSciHistoryManager::instance()->redo(&message, &progress))
        statusBar()->showMessage(message, 4000);
}

// ---- clipboard and visibility ----------------------------------------------------------------------------------

void MainWindow::popupImageList_cut()
{
    m_clipboard->cut(*m_project, selectedItems());
}

void MainWindow::popupImageList_copy()
{
    m_clipboard->copy(selectedItems());
}

void MainWindow::popupImageList_paste()
{
    m_clipboard->paste(*m_project, m_project->currentTab());
}

void MainWindow::popupImageList_delete()
{
    ItemArrangement::remove(*m_project, selectedItems());
}

void MainWindow::popupImageList_show()
{
    ItemArrangement::setVisible(*m_project, selectedItems(), true);
}

void MainWindow::popupImageList_hide()
{
    ItemArrangement::setVisible(*m_project, selectedItems(), false);
}

void MainWindow::setListedSelection(int mode)
{
    // Selection is a view state, not a change of items: no history step.
    for (QSciImage* item : m_componentsDock->listedItems())
        item->setSelected(mode == SelectAll || (mode == ToggleSelection && !item->isSelected()));
}

void MainWindow::popupImageList_selectAll()
{
    setListedSelection(SelectAll);
}

void MainWindow::popupImageList_deselectAll()
{
    setListedSelection(DeselectAll);
}

void MainWindow::popupImageList_toggleSelection()
{
    setListedSelection(ToggleSelection);
}

// ---- stacking order ----------------------------------------------------------------------------------------------

void MainWindow::popupImageList_bringToFront()
{
    ItemArrangement::bringToFront(*m_project, selectedItems());
}

void MainWindow::popupImageList_sendToBack()
{
    ItemArrangement::sendToBack(*m_project, selectedItems());
}

void MainWindow::popupImageList_stackFromFirstSelectedImage()
{
    ItemArrangement::stackUnderFirst(*m_project, selectedItems());
}

void MainWindow::popupImageList_stackToLastSelectedImage()
{
    ItemArrangement::stackOntoLast(*m_project, selectedItems());
}

void MainWindow::popupImageList_revertOrder()
{
    ItemArrangement::revertOrder(*m_project, selectedItems());
}

void MainWindow::popupImageList_sortByName()
{
    ItemArrangement::sortByName(*m_project, selectedItems());
}

void MainWindow::popupImageList_sortByCreationTimestamp()
{
    ItemArrangement::sortByCreationTime(*m_project, selectedItems());
}

void MainWindow::popupImageList_sortByNumber()
{
    ItemArrangement::sortByNumber(*m_project, selectedItems());
}

// ---- alignment and moves -----------------------------------------------------------------------------------------

void MainWindow::popupImageList_alignTop()
{
    ItemArrangement::align(*m_project, selectedItems(), ItemArrangement::Edge::Top);
}

void MainWindow::popupImageList_alignRight()
{
    ItemArrangement::align(*m_project, selectedItems(), ItemArrangement::Edge::Right);
}

void MainWindow::popupImageList_alignBottom()
{
    ItemArrangement::align(*m_project, selectedItems(), ItemArrangement::Edge::Bottom);
}

void MainWindow::popupImageList_alignLeft()
{
    ItemArrangement::align(*m_project, selectedItems(), ItemArrangement::Edge::Left);
}

void MainWindow::popupImageList_alignCentered()
{
    ItemArrangement::align(*m_project, selectedItems(), ItemArrangement::Edge::Centered);
}

void MainWindow::popupImageList_alignAdvanced()
{
    if (runDialog(m_formAdvancedAlignment) == QDialog::Accepted)
        ItemArrangement::alignAdvanced(
            *m_project, selectedItems(), m_formAdvancedAlignment->layout(), m_formAdvancedAlignment->spacing());
}

void MainWindow::moveSelection(int dx, int dy)
{
    ItemArrangement::moveBy(*m_project, selectedItems(), dx, dy);
}

// Rows count from the top on a tab: up is a smaller top.
void MainWindow::popupImageList_moveUp()
{
    moveSelection(0, -1);
}

void MainWindow::popupImageList_moveRight()
{
    moveSelection(1, 0);
}

void MainWindow::popupImageList_moveDown()
{
    moveSelection(0, 1);
}

void MainWindow::popupImageList_moveLeft()
{
    moveSelection(-1, 0);
}

void MainWindow::popupImageList_moveUp8()
{
    moveSelection(0, -8);
}

void MainWindow::popupImageList_moveRight8()
{
    moveSelection(8, 0);
}

void MainWindow::popupImageList_moveDown8()
{
    moveSelection(0, 8);
}

void MainWindow::popupImageList_moveLeft8()
{
    moveSelection(-8, 0);
}

// ---- cut, merge and resize ---------------------------------------------------------------------------------------

void MainWindow::popupImageList_cutToOverlap()
{
    ProgressDialogSink progress(this, tr("Cut all images to overlap"));
    QString message;
    if (!ItemOperations::cutToOverlap(*m_project, selectedItems(), &progress, &message))
        showMessage(tr("Cut all images to overlap"), message);
}

void MainWindow::runExpand(bool fillWithMax)
{
    ProgressDialogSink progress(this, tr("Expand items to border"));
    QString message;
    if (!ItemOperations::expandToBorder(*m_project, selectedItems(), fillWithMax, &progress, &message))
        showMessage(tr("Expand items to border"), message);
}

void MainWindow::popupImageList_ExpandToBorder_zMin()
{
    runExpand(false);
}

void MainWindow::popupImageList_ExpandToBorder_zMax()
{
    runExpand(true);
}

void MainWindow::runMerge(bool fillWithMax)
{
    ProgressDialogSink progress(this, tr("Merge images"));
    QString message;
    if (!ItemOperations::merge(*m_project, selectedItems(), fillWithMax, &progress, &message) && !message.isEmpty())
        showMessage(tr("Merge images"), message);
}

void MainWindow::popupImageList_mergeImages_zMin()
{
    runMerge(false);
}

void MainWindow::popupImageList_mergeImages_zMax()
{
    runMerge(true);
}

void MainWindow::popupImageList_cutToMaskBorder()
{
    ItemOperations::cutToMaskBorder(*m_project, selectedItems());
}

// ---- flip and rotate ---------------------------------------------------------------------------------------------

void MainWindow::popupImageList_flipHorizontal()
{
    ItemOperations::flipHorizontal(*m_project, selectedItems());
}

void MainWindow::popupImageList_flipVertical()
{
    ItemOperations::flipVertical(*m_project, selectedItems());
}

void MainWindow::popupImageList_rotatePlus90()
{
    ItemOperations::rotate(*m_project, selectedItems(), 90);
}

void MainWindow::popupImageList_rotateMinus90()
{
    ItemOperations::rotate(*m_project, selectedItems(), -90);
}

void MainWindow::popupImageList_rotate180()
{
    ItemOperations::rotate(*m_project, selectedItems(), 180);
}

// ---- z-matrix, gradient, clear -----------------------------------------------------------------------------------

void MainWindow::popupImageList_mapZToPic()
{
    ProgressDialogSink progress(this, tr("Map z-matrix to picture"));
    ItemOperations::mapZToPicture(*m_project, selectedItems(), &progress);
}

void MainWindow::popupImageList_mapPicToZ()
{
    ItemOperations::mapPictureToZ(*m_project, selectedItems());
}

void MainWindow::popupImageList_imageProcessing()
{
    m_formImageProcessing->showPanel(QString());
}

void MainWindow::popupImageList_recalibrateZ()
{
    m_formRecalibrateZ->setItems(selectedItems());
    QString message;
    if (runDialog(m_formRecalibrateZ) == QDialog::Accepted
        && !ItemOperations::recalibrateZ(
            *m_project, selectedItems(), m_formRecalibrateZ->multiply(), m_formRecalibrateZ->add(), &message))
        showMessage(tr("Recalibrate z-matrix"), message);
}

void MainWindow::popupImageList_selectColorGradient()
{
    const QList<QSciImage*> items = selectedItems();
    m_formChooseColorGradient->setPreviewItem(items.value(0));
    if (runDialog(m_formChooseColorGradient) == QDialog::Accepted)
        ItemOperations::setColorGradient(*m_project, items, m_formChooseColorGradient->gradient());
    m_formChooseColorGradient->setPreviewItem(nullptr);
}

void MainWindow::popupImageList_selectColorRange()
{
    const QList<QSciImage*> items = selectedItems();
    m_formColorRange->setItems(items);
    if (runDialog(m_formColorRange) == QDialog::Accepted)
        ItemOperations::setColorRange(*m_project, items, m_formColorRange->range());
}

void MainWindow::popupImageList_clearPicture()
{
    const QList<QSciImage*> switched = ItemOperations::clearPicture(*m_project, selectedItems());
    if (!switched.isEmpty())
        statusBar()->showMessage(ItemOperations::pictureShownText(switched), StatusNoteMs);
}

void MainWindow::popupImageList_clearObjects()
{
    ItemOperations::clearObjects(*m_project, selectedItems());
}

void MainWindow::popupImageList_clearMask()
{
    ItemOperations::clearMask(*m_project, selectedItems());
}

void MainWindow::popupImageList_duplicate()
{
    ItemOperations::duplicate(*m_project, selectedItems());
}

void MainWindow::popupImageList_ChangeParent()
{
    ItemArrangement::moveToTab(*m_project, selectedItems(), m_project->currentTab());
}

void MainWindow::runPropertiesDialog(int mode)
{
    // The dialog edits one item; with several selected it comes up for each in turn until cancelled.
    for (QSciImage* item : selectedItems()) {
        m_formItemProperties->setItem(*item, FormItemProperties::Mode(mode));
        if (runDialog(m_formItemProperties) != QDialog::Accepted)
            return;
        ItemOperations::setProperties(*m_project, item, m_formItemProperties->properties());
    }
}

void MainWindow::popupImageList_DisplayInfo()
{
    runPropertiesDialog(int(FormItemProperties::Mode::Display));
}

void MainWindow::popupImageList_info()
{
    runPropertiesDialog(int(FormItemProperties::Mode::Advanced));
}
