#pragma once

#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <memory>

#include "core/items/qsciimage.h"

class BusyCursor;
class CentralArea;
class CollectionTab;
class CollectionTabPage;
class ComponentsDock;
class DocumentsDock;
class TablesPanel;
class TextsPanel;
class FileImport;
class FormBrowse;
class FormColorRange;
class FormAdvancedAlignment;
class FormChooseColorGradient;
class FormItemProperties;
class FormNewImage;
class FormInfo;
class FormRecalibrateZ;
class FormImageProcessing;
class FormFourierTransform;
class FormRoughness;
class HelpBrowser;
class ItemClipboard;
class ItemContextMenu;
class MainActions;
class MainToolBars;
class Project;
class QLabel;
class QDialog;
class QListWidgetItem;
class QPrinter;
class QSciImage;
class QTimer;
class ScriptsPanel;
class ToolBox;
class ToolMouseSink;
class ToolsDock;
class UndoRedoMenu;

/**
 * The program's one main window: collection tabs, the three docks, the tool bars and menus, the
 * item context menu and the status bar. Owns the project; every menu entry gathers its input and calls
 * the project's operations. Reads its `MainWindow.*` settings when built and writes them when closed;
 * on destruction it removes the "ffmpeg" leftovers from the temporary folder.
 */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /** The help window, made once; the Help menu and the help buttons show their pages in it. */
    HelpBrowser* helpBrowser() const { return m_helpBrowser; }

    /** Appends @p html to the output page, for any subsystem that reports to the user. */
    void appendOutput(const QString& html);

    /** Adds a collection tab (a numbered default name when @p name is empty) and makes it current. */
    CollectionTabPage* addCollectionTab(const QString& name = QString());
    CollectionTabPage* currentCollectionTab() const;
    CollectionTabPage* pageFor(const CollectionTab* tab) const;

    Project* project() const { return m_project; }
    ItemClipboard* itemClipboard() const { return m_clipboard; }
    QString lastProjectFilename() const { return m_lastProjectFilename; }

    /** The selected items the menus act on, in list order: the current tab's, or all tabs' while the list shows all. */
    QList<QSciImage*> selectedItems() const;
    /** The item the info strip describes: the topmost selected item of the current tab, else its topmost item. */
    QSciImage* currentItem() const;

    /** Mouse gestures on every tab go to @p sink first (nullptr: only the default pointer). */
    void setToolMouseSink(ToolMouseSink* sink);
    /** Whether the default pointer may drag items, on every tab. */
    void setItemsMovable(bool movable);
    /** The tools of the "Toolbox" dock; they take the tabs' mouse while one other than the pointer is chosen. */
    ToolBox* toolBox() const { return m_toolBox; }
    TablesPanel* tablesPanel() const { return m_tablesPanel; }
    TextsPanel* textsPanel() const { return m_textsPanel; }
    ScriptsPanel* scriptsPanel() const { return m_scriptsPanel; }
    /** Opens instrument, picture, raw and ASCII files, with the dialogs that ask about them. */
    FileImport* fileImport() const { return m_fileImport; }

    /** Opens a native item file (or another format an importer reads) onto the current tab, or a project. */
    [[nodiscard]] bool openFile(const QString& path, QString* message);
    /** Replaces the project by the one in @p folder and remembers it as the last project. */
    [[nodiscard]] bool openProject(const QString& folder, QString* message);
    /** Saves the project into @p folder and remembers it as the last project. */
    [[nodiscard]] bool saveProject(const QString& folder, QString* message);
    /** An empty project with one tab, without asking. */
    void clearProject();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    /** Whether closing should offer to save the project; a test overrides it to reach the quit question. */
    virtual bool projectHasUnsavedChanges() const;
    /** Asks "Quit program"; a test overrides it to answer without a modal box. */
    virtual QMessageBox::StandardButton askSaveProjectOnQuit();

    enum class FileChoice { OpenFiles, OpenFolder, SaveFile, ChooseFolder };
    /**
     * Asks the user for files or a folder starting in @p folder; empty when cancelled. The one place that
     * opens file dialogs, so that a test can answer them.
     */
    virtual QStringList chooseFiles(
        FileChoice kind, const QString& title, const QString& folder, const QString& filter);
    /** Shows @p text in a message box with Ok; a test overrides it to collect the text. */
    virtual void showMessage(const QString& title, const QString& text);
    /** Asks Yes, No or Cancel (Yes the default); a test overrides it. */
    virtual QMessageBox::StandardButton askQuestion(const QString& title, const QString& text);
    /** Lets the user set up @p printer; false when cancelled. */
    virtual bool choosePrinter(QPrinter* printer);
    /** Runs one of the window's dialogs modally and returns its result; a test overrides it to fill the dialog in. */
    virtual int runDialog(QDialog* dialog);

private slots:
    void creationTimerEvent();
    void updateZValuesTimerEvent();
    void selectionTimerEvent();
    void updateStatusBarTimerEvent();
    void updateSelectionStatusTimerEvent();

    void onToolbarVisibilityChanged(bool visible);
    void onImageList_updateSelectionAndVisibility();
    void imageList_changed(QListWidgetItem* item);

    void popupImageList_aboutToShow();
    void on_pbZoom100Percent_clicked();
    void popupImageList_zoomIn();
    void popupImageList_zoomOut();

    void popupImageList_undo();
    void popupImageList_redo();
    void popupImageList_cut();
    void popupImageList_copy();
    void popupImageList_paste();
    void popupImageList_delete();
    void popupImageList_show();
    void popupImageList_hide();
    void popupImageList_selectAll();
    void popupImageList_deselectAll();
    void popupImageList_toggleSelection();
    void popupImageList_bringToFront();
    void popupImageList_sendToBack();
    void popupImageList_stackFromFirstSelectedImage();
    void popupImageList_stackToLastSelectedImage();
    void popupImageList_revertOrder();
    void popupImageList_sortByName();
    void popupImageList_sortByCreationTimestamp();
    void popupImageList_sortByNumber();
    void popupImageList_alignTop();
    void popupImageList_alignRight();
    void popupImageList_alignBottom();
    void popupImageList_alignLeft();
    void popupImageList_alignCentered();
    void popupImageList_alignAdvanced();
    void popupImageList_moveUp();
    void popupImageList_moveRight();
    void popupImageList_moveDown();
    void popupImageList_moveLeft();
    void popupImageList_moveUp8();
    void popupImageList_moveRight8();
    void popupImageList_moveDown8();
    void popupImageList_moveLeft8();
    void popupImageList_cutToOverlap();
    void popupImageList_ExpandToBorder_zMin();
    void popupImageList_ExpandToBorder_zMax();
    void popupImageList_mergeImages_zMin();
    void popupImageList_mergeImages_zMax();
    void popupImageList_cutToMaskBorder();
    void popupImageList_flipHorizontal();
    void popupImageList_flipVertical();
    void popupImageList_rotatePlus90();
    void popupImageList_rotateMinus90();
    void popupImageList_rotate180();
    void popupImageList_mapZToPic();
    void popupImageList_mapPicToZ();
    void popupImageList_recalibrateZ();
    void popupImageList_imageProcessing();
    void popupImageList_selectColorGradient();
    void popupImageList_selectColorRange();
    void popupImageList_clearPicture();
    void popupImageList_clearObjects();
    void popupImageList_clearMask();
    void popupImageList_duplicate();
    void popupImageList_ChangeParent();
    void on_tb3dPlot_clicked();
    void on_pb3dplotOpenGL_clicked();
    void popupImageList_DisplayInfo();
    void popupImageList_info();

    // File menu.
    void openItems();
    /** Opens what the file browser hands over onto the current tab. */
    void openBrowsedFiles(const QStringList& paths);
    void newBlankItem();
    void saveSelectedItems();
    void saveItemsOnCurrentTab();
    void newProjectAsked();
    void openProjectAsked();
    void saveProjectAsked();
    void saveProjectAsAsked();
    void reopenLastProject();
    void exportZMatrices();
    void exportMasks();
    void exportPictures();
    void exportLatexCodes();
    void exportVisibleAreaPng();
    void exportVisibleAreaPdf();
    void exportVisibleAreaPostScript();
    void printVisibleArea();

private:
    void buildForm();
    void createToolBars();
    void wireActions();
    void wireItemActions();
    void wireFileActions();
    void wirePlotActions();
    /** Opens a 2D or 3D plot file in a window of its own; false with the message when it cannot. */
    bool openPlotFile(const QString& path, QString* message);
    /** A new, empty 2D plot window that takes its curves from the tables. */
    void newPlot2d();
    void wireHistory();
    void wireHelpActions();
    /** The help page of the part of the window that has the focus (the index when none has one). */
    QString contextHelpPage() const;
    /** "<project> - Velmora", with "*" behind the name while there are unsaved changes. */
    void updateWindowTitle();
    void wireViewToggle(const char* actionName, QWidget* widget);
    void createTimers();
    void readSettings();
    void writeSettings() const;
    void readLastProject();
    void rememberLastProject(const QString& folder);
    void addFirstStartDemo();
    void showItemContextMenu(const QPoint& globalPos);
    void setCurrentZoom(int percent);
    void onCurrentTabChanged(CollectionTabPage* page);
    void onPointHovered(QSciImage* item, const QPoint& point);
    void updateItemActions();
    void updateHistoryActions();
    void updateItemInfo();
    QString hoverText() const;

    // Helpers of the menu entries.
    void undoSteps(int steps);
    void redoSteps(int steps);
    void setHistoryOn(bool on);
    void moveSelection(int dx, int dy);
    void setListedSelection(int mode);
    void runMerge(bool fillWithMax);
    void runExpand(bool fillWithMax);
    /** chooseFiles() starting in the folder stored under `MainWindow.<pathKey>`, which the choice then updates. */
    QStringList chooseList(FileChoice kind, const char* pathKey, const QString& title, const QString& filter);
    QString chooseOne(FileChoice kind, const char* pathKey, const QString& title, const QString& filter);
    bool askToSaveModified(const QString& title);
    bool saveProjectInteractively(bool askForName);
    bool openProjectReportingErrors(const QString& folder);
    /** Replaces the table and text pages by those saved with the project in @p folder. */
    void loadProjectDocuments(const QString& folder, QString* message);
    void saveItems(const QList<QSciImage*>& items);
    void exportItems(int kind);
    void exportVisibleArea(int kind);
    /** Puts a new item on the current tab as one history step, where it hides nothing already there. */
    void addNewItem(QSciImage* item, const QString& operationName);
    /** The channels of a file that is not native, laid out on the current tab beside what is there. */
    bool openImported(const QString& path, QString* message);
    void runPropertiesDialog(int mode);

    std::unique_ptr<BusyCursor> m_busyCursor;
    Project* m_project = nullptr;
    ItemClipboard* m_clipboard = nullptr;
    MainActions* m_actions = nullptr;
    MainToolBars* m_toolBars = nullptr;
    CentralArea* m_central = nullptr;
    ToolsDock* m_toolsDock = nullptr;
    ToolBox* m_toolBox = nullptr;
    ComponentsDock* m_componentsDock = nullptr;
    DocumentsDock* m_documentsDock = nullptr;
    TablesPanel* m_tablesPanel = nullptr;
    TextsPanel* m_textsPanel = nullptr;
    ScriptsPanel* m_scriptsPanel = nullptr;
    ItemContextMenu* m_contextMenu = nullptr;
    UndoRedoMenu* m_undoRedoMenu = nullptr;
    FormNewImage* m_formNewImage = nullptr;
    FormRecalibrateZ* m_formRecalibrateZ = nullptr;
    FormImageProcessing* m_formImageProcessing = nullptr;
    FormFourierTransform* m_formFourierTransform = nullptr;
    FormRoughness* m_formRoughness = nullptr;
    FormAdvancedAlignment* m_formAdvancedAlignment = nullptr;
    FormChooseColorGradient* m_formChooseColorGradient = nullptr;
    FormItemProperties* m_formItemProperties = nullptr;
    HelpBrowser* m_helpBrowser = nullptr;
    FormInfo* m_formInfo = nullptr;
    FileImport* m_fileImport = nullptr;
    FormBrowse* m_formBrowse = nullptr;
    FormColorRange* m_formColorRange = nullptr;
    QAction* m_undoAction = nullptr;
    QAction* m_redoAction = nullptr;
    QLabel* m_statusLabel = nullptr;

    QTimer* m_updateZValuesTimer = nullptr;
    QTimer* m_selectionTimer = nullptr;
    QTimer* m_updateStatusBarTimer = nullptr;
    QTimer* m_updateSelectionStatusTimer = nullptr;
    QTimer* m_creationTimer = nullptr;

    QString m_lastProjectFilename;
    QPointer<QSciImage> m_hoverItem;
    QPoint m_hoverPoint;
    QString m_hoverText;
    bool m_itemInfoDirty = true;
    QPointer<QSciImage> m_infoItem;
};
