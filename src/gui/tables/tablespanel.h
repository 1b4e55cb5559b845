#pragma once

#include "core/tables/tableformularun.h"

#include <QWidget>
#include <functional>
#include <memory>

class DocumentsDock;
class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QSciSimpleTableModel;
class QTabWidget;
class QTimer;
class TableView;

/**
 * The table pages of the "Tables" tab: tables made new, opened, imported or handed over by other parts of the
 * program, their editing tools, the formula bar and the statistics of the current column.
 */
class TablesPanel final : public QWidget {
    Q_OBJECT

public:
    /** Takes its place on @p dock's Tables page, above the size boxes of new tables. */
    explicit TablesPanel(DocumentsDock* dock);

    /** What the panel asks the user; tests replace them. */
    std::function<QString(bool save, const QString& title, const QString& folder, const QString& filter)> chooseFile;
    std::function<void(const QString& text)> showMessage;
    std::function<TableFormulaRun::Decision(const QString& result)> askOnFailure;

    TableView* currentTable() const;
    int tableCount() const;

    /** A table of the size the Tables page asks for. */
    TableView* newTable();
    /** Shows @p model on a new page titled @p title (e.g. an object measures table). */
    TableView* addTable(std::unique_ptr<QSciSimpleTableModel> model, const QString& title);
    [[nodiscard]] bool openTableFile(const QString& path, QString* message);
    [[nodiscard]] bool importText(const QString& path, QString* message);
    [[nodiscard]] bool saveCurrent(const QString& path, QString* message);
    [[nodiscard]] bool exportCurrent(const QString& path, QString* message);

    /** Every table with its title, in page order. */
    QVector<QPair<QString, const QSciSimpleTableModel*>> allTables() const;
    void closeAll();

    /** Runs the formula line over the current table, as "Apply formula" does. */
    TableFormulaRun::Outcome applyFormula();
    void setFormula(const QString& formula);
    bool isRunning() const { return m_running; }
    QString statisticsText() const;

signals:
    /** A table was added, closed, reshaped or edited. */
    void documentsChanged();

private:
    void buildToolBar();
    QWidget* buildFormulaBar();
    void openAsked();
    void importAsked();
    void saveAsked();
    void exportAsked();
    void closeCurrent();
    void insertRows();
    void deleteRows();
    void insertColumns();
    void deleteColumns();
    void resizeToPageSettings();
    void transpose();
    void sortCurrent(Qt::SortOrder order);
    void replaceTable(std::unique_ptr<QSciSimpleTableModel> model);
    void scheduleStatistics();
    void updateStatistics();
    void setRunning(bool running);
    QString chooseWithKey(bool save, const char* key, const QString& title, const QString& filter);

    DocumentsDock* m_dock;
    QWidget* m_toolBar = nullptr;
    QMenu* m_editMenu = nullptr;
    QTabWidget* m_tabs;
    QLineEdit* m_formula = nullptr;
    QPushButton* m_apply = nullptr;
    QPushButton* m_stop = nullptr;
    QProgressBar* m_progress = nullptr;
    QLabel* m_statistics;
    QTimer* m_statisticsTimer;
    int m_created = 0;
    bool m_running = false;
    bool m_stopRequested = false;
};
