#include "tablespanel.h"

#include "tableview.h"

#include "core/base/atomicfile.h"
#include "core/base/messages.h"
#include "core/settings/options.h"
#include "core/tables/columnstatistics.h"
#include "core/tables/formulaevaluator.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tablefile.h"
#include "core/tables/tablereshape.h"
#include "core/tables/tabletext.h"
#include "gui/app/documentsdock.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

TablesPanel::TablesPanel(DocumentsDock* dock)
    : QWidget(dock->tablesPage())
    , m_dock(dock)
    , m_tabs(new QTabWidget(this))
    , m_statistics(new QLabel(this))
    , m_statisticsTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("tablesPanel"));
    m_tabs->setObjectName(QStringLiteral("twTables"));
    m_tabs->setDocumentMode(true);
    m_statistics->setObjectName(QStringLiteral("lbColumnStatistics"));
    m_statistics->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_statisticsTimer->setSingleShot(true);
    m_statisticsTimer->setInterval(50);
    connect(m_statisticsTimer, &QTimer::timeout, this, &TablesPanel::updateStatistics);
    connect(m_tabs, &QTabWidget::currentChanged, this, &TablesPanel::scheduleStatistics);

    chooseFile = [this](bool save, const QString& title, const QString& folder, const QString& filter) {
        return save ? QFileDialog::getSaveFileName(this, title, folder, filter)
                    : QFileDialog::getOpenFileName(this, title, folder, filter);
    };
    showMessage = [this](const QString& text) { QMessageBox::warning(this, tr("Tables"), text, QMessageBox::Ok); };
    askOnFailure = [this](const QString& result) {
        const auto answer = QMessageBox::question(this, tr("Error evaluation expression"),
            result + QLatin1Char('\n') + tr("Continue evaluation?"),
            QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No, QMessageBox::Yes);
        return answer == QMessageBox::Yes     ? TableFormulaRun::Decision::Skip
            : answer == QMessageBox::YesToAll ? TableFormulaRun::Decision::SkipAll
                                              : TableFormulaRun::Decision::Stop;
    };

    buildToolBar();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_toolBar);
    layout->addWidget(buildFormulaBar());
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_statistics);

    // The page was built with a stretch where the tables go; the panel takes that place.
    DocumentsDock::fillPage(dock->tablesPage(), this);
    updateStatistics();
}

void TablesPanel::buildToolBar()
{
    // A row of buttons rather than a QToolBar (the main window's tool bars are its own five); the editing
    // commands sit in one menu, also the tables' context menu, so that the row stays narrow in a small dock.
    m_toolBar = new QWidget(this);
    m_toolBar->setObjectName(QStringLiteral("wTableTools"));
    auto* row = new QHBoxLayout(m_toolBar);
    row->setContentsMargins(2, 0, 2, 0);
    row->setSpacing(1);
    auto action = [this](const QString& text, const char* name, auto slot) {
        auto* created = new QAction(text, this);
        created->setObjectName(QLatin1String(name));
        connect(created, &QAction::triggered, this, slot);
        addAction(created);
        return created;
    };
    auto button = [this, row](QAction* shown) {
        auto* created = new QToolButton(m_toolBar);
        created->setDefaultAction(shown);
        created->setAutoRaise(true);
        row->addWidget(created);
        return created;
    };
    button(action(tr("New table"), "actionNewTable", [this] { newTable(); }));
    button(action(tr("Open..."), "actionOpenTable", &TablesPanel::openAsked));
    button(action(tr("Import..."), "actionImportTable", &TablesPanel::importAsked));
    button(action(tr("Save..."), "actionSaveTable", &TablesPanel::saveAsked));
    button(action(tr("Export CSV..."), "actionExportTable", &TablesPanel::exportAsked));

    m_editMenu = new QMenu(tr("Edit"), this);
    m_editMenu->addAction(action(tr("Copy"), "actionCopyCells", [this] {
        if (TableView* view = currentTable())
            view->copyToClipboard();
    }));
    m_editMenu->addAction(action(tr("Paste"), "actionPasteCells", [this] {
        if (TableView* view = currentTable())
            view->pasteFromClipboard();
    }));
    m_editMenu->addAction(action(tr("Deleting selected table cells"), "actionClearCells", [this] {
        if (TableView* view = currentTable())
            view->clearSelectedCells();
    }));
    m_editMenu->addSeparator();
    m_editMenu->addAction(action(tr("Insert rows"), "actionInsertRows", &TablesPanel::insertRows));
    m_editMenu->addAction(action(tr("Delete rows"), "actionDeleteRows", &TablesPanel::deleteRows));
    m_editMenu->addAction(action(tr("Insert columns"), "actionInsertColumns", &TablesPanel::insertColumns));
    m_editMenu->addAction(action(tr("Delete columns"), "actionDeleteColumns", &TablesPanel::deleteColumns));
    m_editMenu->addAction(action(
        tr("Change table to new row and column settings"), "actionResizeTable", &TablesPanel::resizeToPageSettings));
    m_editMenu->addAction(action(tr("Switch rows and columns"), "actionTransposeTable", &TablesPanel::transpose));
    m_editMenu->addSeparator();
    m_editMenu->addAction(
        action(tr("Sort ascending"), "actionSortAscending", [this] { sortCurrent(Qt::AscendingOrder); }));
    m_editMenu->addAction(
        action(tr("Sort descending"), "actionSortDescending", [this] { sortCurrent(Qt::DescendingOrder); }));
    auto* edit = new QToolButton(m_toolBar);
    edit->setObjectName(QStringLiteral("tbTableEdit"));
    edit->setText(tr("Edit"));
    edit->setMenu(m_editMenu);
    edit->setPopupMode(QToolButton::InstantPopup);
    edit->setAutoRaise(true);
    row->addWidget(edit);
    button(action(tr("Close"), "actionCloseTable", &TablesPanel::closeCurrent));
    row->addStretch(1);
}

QWidget* TablesPanel::buildFormulaBar()
{
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(4, 0, 4, 0);
    m_formula = new QLineEdit(bar);
    m_formula->setObjectName(QStringLiteral("leFormula"));
    m_formula->setPlaceholderText(tr("Apply formula, e.g.: sin($row)+cell($row-1,$col)-3+$rows"));
    m_apply = new QPushButton(tr("Apply formula"), bar);
    m_apply->setObjectName(QStringLiteral("pbApplyFormula"));
    m_stop = new QPushButton(tr("Stop execution of formula"), bar);
    m_stop->setObjectName(QStringLiteral("pbStopFormula"));
    m_stop->hide();
    m_progress = new QProgressBar(bar);
    m_progress->setObjectName(QStringLiteral("pbFormulaProgress"));
    m_progress->hide();

    auto* functions = new QToolButton(bar);
    functions->setObjectName(QStringLiteral("tbFormulaFunctions"));
    functions->setText(tr("f(x)"));
    functions->setToolTip(tr("Default functions and variables"));
    functions->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(functions);
    menu->setTitle(tr("Default functions and variables"));
    for (const QString& entry : FormulaEvaluator::functionHelp())
        menu->addAction(entry, this, [this, entry] { m_formula->insert(entry); });
    functions->setMenu(menu);

    row->addWidget(new QLabel(QStringLiteral("cell(row,col)="), bar));
    row->addWidget(m_formula, 1);
    row->addWidget(functions);
    row->addWidget(m_apply);
    row->addWidget(m_stop);
    row->addWidget(m_progress);
    connect(m_apply, &QPushButton::clicked, this, [this] { applyFormula(); });
    connect(m_formula, &QLineEdit::returnPressed, this, [this] {
        if (!m_running)
            applyFormula();
    });
    connect(m_stop, &QPushButton::clicked, this, [this] { m_stopRequested = true; });
    return bar;
}

TableView* TablesPanel::currentTable() const
{
    return qobject_cast<TableView*>(m_tabs->currentWidget());
}

int TablesPanel::tableCount() const
{
    return m_tabs->count();
}

TableView* TablesPanel::newTable()
{
    const int rows = m_dock->tableRowCount()->value(), columns = m_dock->tableColCount()->value();
    if (qint64(rows) * columns > QSciSimpleTableModel::MaxCells) {
        showMessage(tr("A table may hold at most %1 cells.").arg(QSciSimpleTableModel::MaxCells));
        return nullptr;
    }
    return addTable(std::make_unique<QSciSimpleTableModel>(rows, columns), tr("Table %1").arg(++m_created));
}

TableView* TablesPanel::addTable(std::unique_ptr<QSciSimpleTableModel> model, const QString& title)
{
    auto* view = new TableView(std::move(model), m_tabs);
    view->setTitle(title);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this,
        [this, view](const QPoint& at) { m_editMenu->exec(view->viewport()->mapToGlobal(at)); });
    auto watch = [this, view]() {
        QSciSimpleTableModel* table = view->table();
        connect(table, &QAbstractItemModel::dataChanged, this, &TablesPanel::scheduleStatistics);
        connect(table, &QAbstractItemModel::dataChanged, this, &TablesPanel::documentsChanged);
        connect(table, &QAbstractItemModel::layoutChanged, this, &TablesPanel::documentsChanged);
        connect(table, &QAbstractItemModel::modelReset, this, &TablesPanel::documentsChanged);
        connect(table, &QAbstractItemModel::layoutChanged, this, &TablesPanel::scheduleStatistics);
        connect(table, &QAbstractItemModel::modelReset, this, &TablesPanel::scheduleStatistics);
        connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this, &TablesPanel::scheduleStatistics);
        scheduleStatistics();
    };
    watch();
    connect(view, &TableView::tableReplaced, this, watch);
    m_tabs->setCurrentIndex(m_tabs->addTab(view, title));
    emit documentsChanged();
    return view;
}

QVector<QPair<QString, const QSciSimpleTableModel*>> TablesPanel::allTables() const
{
    QVector<QPair<QString, const QSciSimpleTableModel*>> tables;
    for (int i = 0; i < m_tabs->count(); ++i)
        if (auto* view = qobject_cast<TableView*>(m_tabs->widget(i)))
            tables.append({ view->title(), view->table() });
    return tables;
}

void TablesPanel::closeAll()
{
    while (m_tabs->count() > 0)
        delete m_tabs->widget(0);
    m_created = 0;
}

QString TablesPanel::chooseWithKey(bool save, const char* key, const QString& title, const QString& filter)
{
    const QString fullKey = QLatin1String("MainWindow.") + QLatin1String(key);
    QString folder = Options::getString(fullKey, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    const QString chosen = chooseFile(save, title, folder, filter);
    if (!chosen.isEmpty())
        Options::setString(fullKey, QFileInfo(chosen).absolutePath());
    return chosen;
}

void TablesPanel::openAsked()
{
    const QString path
        = chooseWithKey(false, "openTablePath", tr("Open table"), tr("Velmora tables (*.table.velm);;All files (*)"));
    QString message;
    if (!path.isEmpty() && !openTableFile(path, &message))
        showMessage(message);
}

void TablesPanel::importAsked()
{
    const QString path = chooseWithKey(
        false, "openTablePath", tr("Import table"), tr("Text tables (*.txt *.csv *.asc);;All files (*)"));
    QString message;
    if (!path.isEmpty() && !importText(path, &message))
        showMessage(message);
}

void TablesPanel::saveAsked()
{
    if (!currentTable())
        return;
    QString path = chooseWithKey(true, "saveTablePath", tr("Save table"), tr("Velmora tables (*.table.velm)"));
    if (path.isEmpty())
        return;
    if (!TableFile::isTableFileName(path))
        path += QLatin1String(".table.velm");
    QString message;
    if (!saveCurrent(path, &message))
        showMessage(message);
}

void TablesPanel::exportAsked()
{
    if (!currentTable())
        return;
    const QString path
        = chooseWithKey(true, "saveTablePath", tr("Export table"), tr("CSV files (*.csv);;Tab-separated text (*.txt)"));
    QString message;
    if (!path.isEmpty() && !exportCurrent(path, &message))
        showMessage(message);
}

bool TablesPanel::openTableFile(const QString& path, QString* message)
{
    QString title;
    auto model = TableFile::read(path, &title, message);
    if (!model)
        return false;
    TableView* view = addTable(std::move(model), title.isEmpty() ? QFileInfo(path).fileName() : title);
    view->setFilePath(path);
    return true;
}

bool TablesPanel::importText(const QString& path, QString* message)
{
    if (!QFileInfo::exists(path)) {
        *message = Messages::fileDoesNotExist(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *message = Messages::unableToOpenFile(path);
        return false;
    }
    const TableText::Parsed parsed = TableText::parse(QString::fromUtf8(file.readAll()));
    auto model = TableText::toModel(parsed.rows, parsed.columns);
    if (!model) {
        *message = parsed.rows.isEmpty() ? Messages::withPath(tr("File holds no table"), path)
                                         : Messages::withPath(tr("Table too large"), path);
        return false;
    }
    addTable(std::move(model), QFileInfo(path).fileName());
    return true;
}

bool TablesPanel::saveCurrent(const QString& path, QString* message)
{
    TableView* view = currentTable();
    if (!view)
        return false;
    if (!TableFile::write(path, *view->table(), view->title(), message))
        return false;
    view->setFilePath(path);
    return true;
}

bool TablesPanel::exportCurrent(const QString& path, QString* message)
{
    TableView* view = currentTable();
    if (!view)
        return false;
    QString text;
    if (path.endsWith(QLatin1String(".txt"), Qt::CaseInsensitive)) {
        QVector<QStringList> rows;
        for (int r = 0; r < view->table()->rows(); ++r) {
            QStringList row;
            for (int c = 0; c < view->table()->columns(); ++c)
                row.append(view->table()->cellText(r, c));
            rows.append(row);
        }
        text = TableText::joinTabSeparated(rows);
    } else {
        text = TableText::toCsv(*view->table());
    }
    return AtomicFile::write(path, text.toUtf8(), message);
}

void TablesPanel::closeCurrent()
{
    if (TableView* view = currentTable()) {
        delete view;
        emit documentsChanged();
    }
}

void TablesPanel::replaceTable(std::unique_ptr<QSciSimpleTableModel> model)
{
    TableView* view = currentTable();
    if (!view)
        return;
    if (!model) {
        showMessage(tr("The table cannot take that shape: it would be empty or hold more than %1 cells.")
                        .arg(QSciSimpleTableModel::MaxCells));
        return;
    }
    view->setTable(std::move(model));
    emit documentsChanged();
}

namespace {

using Removal = std::unique_ptr<QSciSimpleTableModel> (*)(const QSciSimpleTableModel&, int, int);

/** The table without the rows (or columns) at @p indexes (ascending); null when one removal fails. */
std::unique_ptr<QSciSimpleTableModel> removeEach(
    const QSciSimpleTableModel& table, const QList<int>& indexes, Removal remove)
{
    std::unique_ptr<QSciSimpleTableModel> model;
    const QSciSimpleTableModel* source = &table;
    // From the last one back, so that the indexes still to go keep their meaning.
    for (auto it = indexes.crbegin(); it != indexes.crend(); ++it) {
        auto next = remove(*source, *it, 1);
        if (!next)
            return nullptr;
        model = std::move(next);
        source = model.get();
    }
    return model;
}

} // namespace

void TablesPanel::insertRows()
{
    if (TableView* view = currentTable()) {
        const QList<int> rows = view->selectedRows();
        replaceTable(TableReshape::insertRows(*view->table(), rows.value(0, 0), qMax(1, int(rows.size()))));
    }
}

void TablesPanel::deleteRows()
{
    TableView* view = currentTable();
    if (view && !view->selectedRows().isEmpty())
        replaceTable(removeEach(*view->table(), view->selectedRows(), &TableReshape::removeRows));
}

void TablesPanel::insertColumns()
{
    if (TableView* view = currentTable()) {
        const QList<int> columns = view->selectedColumns();
        replaceTable(TableReshape::insertColumns(*view->table(), columns.value(0, 0), qMax(1, int(columns.size()))));
    }
}

void TablesPanel::deleteColumns()
{
    TableView* view = currentTable();
    if (view && !view->selectedColumns().isEmpty())
        replaceTable(removeEach(*view->table(), view->selectedColumns(), &TableReshape::removeColumns));
}

void TablesPanel::resizeToPageSettings()
{
    if (TableView* view = currentTable())
        replaceTable(
            TableReshape::resized(*view->table(), m_dock->tableRowCount()->value(), m_dock->tableColCount()->value()));
}

void TablesPanel::transpose()
{
    if (TableView* view = currentTable())
        replaceTable(TableReshape::transposed(*view->table()));
}

void TablesPanel::sortCurrent(Qt::SortOrder order)
{
    if (TableView* view = currentTable()) {
        const int column = view->currentIndex().isValid() ? view->currentIndex().column() : 0;
        view->table()->sort(column, order);
    }
}

void TablesPanel::setFormula(const QString& formula)
{
    m_formula->setText(formula);
}

void TablesPanel::setRunning(bool running)
{
    m_running = running;
    m_apply->setEnabled(!running);
    m_formula->setEnabled(!running);
    m_toolBar->setEnabled(!running);
    for (QAction* action : actions())
        action->setEnabled(!running);
    if (auto* bar = m_tabs->findChild<QTabBar*>())
        bar->setEnabled(!running);
    m_stop->setVisible(running);
    m_progress->setVisible(running);
}

TableFormulaRun::Outcome TablesPanel::applyFormula()
{
    TableView* view = currentTable();
    if (!view || m_running)
        return {};
    const bool onlySelected = m_dock->onlySelectedCells()->isChecked();
    const QSet<QPair<int, int>> selection = onlySelected ? view->selectedCells() : QSet<QPair<int, int>>();
    QSciSimpleTableModel* table = view->table();

    setRunning(true);
    m_progress->setRange(0, int(qMin<qint64>(qint64(table->rows()) * table->columns(), INT_MAX)));
    m_progress->setValue(0);
    m_stopRequested = false;

    // Events run inside the loop: a new project or a paste that grows the table may delete the model. The run
    // then ends at once, before it touches the table again.
    const QPointer<QSciSimpleTableModel> alive(table);
    TableFormulaRun run;
    run.onFailure = [this, &alive](const TableFormulaRun::Failure& failure) {
        const TableFormulaRun::Decision decision = askOnFailure(failure.result);
        return alive ? decision : TableFormulaRun::Decision::Stop;
    };
    run.checkpoint = [this, &alive](qint64 visited) {
        if (visited % 100 == 0)
            m_progress->setValue(int(qMin<qint64>(visited, INT_MAX)));
        QCoreApplication::processEvents();
        return alive && !m_stopRequested;
    };
    const TableFormulaRun::Outcome outcome = run.apply(*table, m_formula->text(), onlySelected ? &selection : nullptr);
    setRunning(false);
    updateStatistics();
    return outcome;
}

void TablesPanel::scheduleStatistics()
{
    if (!m_running)
        m_statisticsTimer->start();
}

QString TablesPanel::statisticsText() const
{
    return m_statistics->text();
}

void TablesPanel::updateStatistics()
{
    TableView* view = currentTable();
    if (!view) {
        m_statistics->setText(tr("No table"));
        return;
    }
    const int column = view->currentIndex().isValid() ? view->currentIndex().column() : 0;
    const ColumnStatistics s = ColumnStatistics::of(*view->table(), column);
    if (s.count == 0) {
        m_statistics->setText(tr("Column %1: no numbers").arg(column + 1));
        return;
    }
    m_statistics->setText(tr("Column %1:   count %2   mean %3   sd %4   min %5   max %6")
                              .arg(column + 1)
                              .arg(s.count)
                              .arg(number(s.mean), number(s.standardDeviation), number(s.minimum), number(s.maximum)));
}
