#include "tableview.h"

#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tablereshape.h"
#include "core/tables/tabletext.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

TableView::TableView(std::unique_ptr<QSciSimpleTableModel> model, QWidget* parent)
    : QTableView(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    // Long numbers are cut at the right, not wrapped into an unreadable "1...." at their first point.
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    horizontalHeader()->setDefaultSectionSize(110);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    setTable(std::move(model));
}

void TableView::setTable(std::unique_ptr<QSciSimpleTableModel> model)
{
    const QModelIndex current = currentIndex();
    QSciSimpleTableModel* old = m_table;
    m_table = model.release();
    m_table->setParent(this);
    setModel(m_table);
    delete old;
    if (current.isValid())
        setCurrentIndex(
            m_table->index(qMin(current.row(), m_table->rows() - 1), qMin(current.column(), m_table->columns() - 1)));
    emit tableReplaced();
}

QSet<QPair<int, int>> TableView::selectedCells() const
{
    QSet<QPair<int, int>> cells;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        cells.insert({ index.row(), index.column() });
    return cells;
}

namespace {

QList<int> distinct(QList<int> values, int fallback)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    if (values.isEmpty() && fallback >= 0)
        values.append(fallback);
    return values;
}

} // namespace

QList<int> TableView::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        rows.append(index.row());
    return distinct(rows, currentIndex().row());
}

QList<int> TableView::selectedColumns() const
{
    QList<int> columns;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        columns.append(index.column());
    return distinct(columns, currentIndex().column());
}

QString TableView::selectionText() const
{
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    if (indexes.isEmpty())
        return QString();
    int top = INT_MAX, left = INT_MAX, bottom = -1, right = -1;
    for (const QModelIndex& index : indexes) {
        top = qMin(top, index.row());
        bottom = qMax(bottom, index.row());
        left = qMin(left, index.column());
        right = qMax(right, index.column());
    }
    const QSet<QPair<int, int>> selected = selectedCells();
    QVector<QStringList> rows;
    for (int r = top; r <= bottom; ++r) {
        QStringList row;
        for (int c = left; c <= right; ++c)
            row.append(selected.contains({ r, c }) ? m_table->cellText(r, c) : QString());
        rows.append(row);
    }
    return TableText::joinTabSeparated(rows);
}

void TableView::pasteText(const QString& text)
{
    const QVector<QStringList> rows
        = TableText::split(text, text.contains(QLatin1Char('\t')) ? QChar(QLatin1Char('\t')) : TableText::Whitespace);
    if (rows.isEmpty())
        return;
    const QModelIndex current = currentIndex();
    const int top = current.isValid() ? current.row() : 0, left = current.isValid() ? current.column() : 0;
    int width = 0;
    for (const QStringList& row : rows)
        width = qMax(width, int(row.size()));
    const int needRows = top + int(rows.size()), needColumns = left + width;
    if (needRows > m_table->rows() || needColumns > m_table->columns()) {
        auto grown
            = TableReshape::resized(*m_table, qMax(needRows, m_table->rows()), qMax(needColumns, m_table->columns()));
        if (grown)
            setTable(std::move(grown));
    }
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < rows.at(r).size(); ++c)
            m_table->setCellText(top + r, left + c, rows.at(r).at(c));
}

void TableView::clearSelectedCells()
{
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        m_table->setCellText(index.row(), index.column(), QString());
}

void TableView::copyToClipboard() const
{
    QApplication::clipboard()->setText(selectionText());
}

void TableView::pasteFromClipboard()
{
    pasteText(QApplication::clipboard()->text());
}

void TableView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copyToClipboard();
    } else if (event->matches(QKeySequence::Paste)) {
        pasteFromClipboard();
    } else if (event->matches(QKeySequence::Delete) && state() != QAbstractItemView::EditingState) {
        clearSelectedCells();
    } else {
        QTableView::keyPressEvent(event);
    }
}
