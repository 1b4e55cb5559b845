#pragma once

#include <QMainWindow>
#include <QMessageBox>

class CentralArea;
class CollectionTabPage;
class ComponentsDock;
class DocumentsDock;
class ItemContextMenu;
class MainActions;
class MainToolBars;
class QLabel;
class QListWidgetItem;
class QTimer;
class ToolsDock;

/**
 * The program's one main window: collection tabs, the three docks, the tool bars and menus, the
 * item context menu and the status bar. Reads its `MainWindow.*` settings when built and writes them
 * when closed; on destruction it removes the "ffmpeg" leftovers from the temporary folder.
 */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /** Appends @p html to the output page, for any subsystem that reports to the user. */
    void appendOutput(const QString& html);

    /** Adds a collection tab (a numbered default name when @p name is empty) and makes it current. */
    CollectionTabPage* addCollectionTab(const QString& name = QString());
    CollectionTabPage* currentCollectionTab() const;

    QString lastProjectFilename() const { return m_lastProjectFilename; }

protected:
    void closeEvent(QCloseEvent* event) override;

    /**
     * Whether closing should offer to save the project. Always false until the project can be
     * saved; a test overrides it to reach the quit question.
     */
    virtual bool projectHasUnsavedChanges() const;
    /** Asks "Quit program"; a test overrides it to answer without a modal box. */
    virtual QMessageBox::StandardButton askSaveProjectOnQuit();

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

    // Entries of the item context menu whose item operations are not built yet. Their entries stay
    // disabled, so these are never reached; each gets its body with its operation.
    void popupImageList_undo() { }
    void popupImageList_redo() { }
    void popupImageList_cut() { }
    void popupImageList_copy() { }
    void popupImageList_paste() { }
    void popupImageList_delete() { }
    void popupImageList_show() { }
    void popupImageList_hide() { }
    void popupImageList_selectAll() { }
    void popupImageList_deselectAll() { }
    void popupImageList_toggleSelection() { }
    void popupImageList_bringToFront() { }
    void popupImageList_sendToBack() { }
    void popupImageList_stackFromFirstSelectedImage() { }
    void popupImageList_stackToLastSelectedImage() { }
    void popupImageList_revertOrder() { }
    void popupImageList_sortByName() { }
    void popupImageList_sortByCreationTimestamp() { }
    void popupImageList_sortByNumber() { }
    void popupImageList_alignTop() { }
    void popupImageList_alignRight() { }
    void popupImageList_alignBottom() { }
    void popupImageList_alignLeft() { }
    void popupImageList_alignCentered() { }
    void popupImageList_alignAdvanced() { }
    void popupImageList_moveUp() { }
    void popupImageList_moveRight() { }
    void popupImageList_moveDown() { }
    void popupImageList_moveLeft() { }
    void popupImageList_moveUp8() { }
    void popupImageList_moveRight8() { }
    void popupImageList_moveDown8() { }
    void popupImageList_moveLeft8() { }
    void popupImageList_cutToOverlap() { }
    void popupImageList_ExpandToBorder_zMin() { }
    void popupImageList_ExpandToBorder_zMax() { }
    void popupImageList_mergeImages_zMin() { }
    void popupImageList_mergeImages_zMax() { }
    void popupImageList_cutToMaskBorder() { }
    void popupImageList_flipHorizontal() { }
    void popupImageList_flipVertical() { }
    void popupImageList_rotatePlus90() { }
    void popupImageList_rotateMinus90() { }
    void popupImageList_rotate180() { }
    void popupImageList_mapZToPic() { }
    void popupImageList_mapPicToZ() { }
    void popupImageList_recalibrateZ() { }
    void popupImageList_selectColorGradient() { }
    void popupImageList_clearPicture() { }
    void popupImageList_clearObjects() { }
    void popupImageList_clearMask() { }
    void popupImageList_duplicate() { }
    void popupImageList_ChangeParent() { }
    void on_tb3dPlot_clicked() { }
    void on_pb3dplotOpenGL_clicked() { }
    void popupImageList_DisplayInfo() { }
    void popupImageList_info() { }

private:
    void buildForm();
    void createToolBars();
    void wireActions();
    void wireViewToggle(const char* actionName, QWidget* widget);
    void createTimers();
    void readSettings();
    void writeSettings() const;
    void readLastProject();
    void showItemContextMenu(const QPoint& globalPos);
    void setCurrentZoom(int percent);
    void onCurrentTabChanged(CollectionTabPage* page);

    MainActions* m_actions = nullptr;
    MainToolBars* m_toolBars = nullptr;
    CentralArea* m_central = nullptr;
    ToolsDock* m_toolsDock = nullptr;
    ComponentsDock* m_componentsDock = nullptr;
    DocumentsDock* m_documentsDock = nullptr;
    ItemContextMenu* m_contextMenu = nullptr;
    QLabel* m_statusLabel = nullptr;

    QTimer* m_updateZValuesTimer = nullptr;
    QTimer* m_selectionTimer = nullptr;
    QTimer* m_updateStatusBarTimer = nullptr;
    QTimer* m_updateSelectionStatusTimer = nullptr;
    QTimer* m_creationTimer = nullptr;

    QString m_lastProjectFilename;
};
