#include "tablereshape.h"

#include "qscisimpletablemodel.h"

namespace {

/** The old index that new index @p i shows after @p shift cells were inserted (> 0) or removed (< 0) at @p at. */
int source(int i, int at, int shift)
{
    if (i < at)
        return i;
    if (shift >= 0)
        return i < at + shift ? -1 : i - shift;
    return i - shift;
}

bool fits(qint64 rows, qint64 columns)
{
    return rows > 0 && columns > 0 && rows * columns <= QSciSimpleTableModel::MaxCells;
}

} // namespace

std::unique_ptr<QSciSimpleTableModel> TableReshape::remap(
    const QSciSimpleTableModel& table, int rows, int columns, int rowAt, int rowShift, int columnAt, int columnShift)
{
    if (!fits(rows, columns))
        return nullptr;
    QVector<QString> cells(qsizetype(rows) * columns);
    for (int r = 0; r < rows; ++r) {
        const int from = source(r, rowAt, rowShift);
        if (from < 0 || from >= table.rows())
            continue;
        for (int c = 0; c < columns; ++c) {
            const int fromColumn = source(c, columnAt, columnShift);
            if (fromColumn >= 0 && fromColumn < table.columns())
                cells[qsizetype(r) * columns + c] = table.cellText(from, fromColumn);
        }
    }
    auto model = std::make_unique<QSciSimpleTableModel>(rows, columns);
    model->setAllCells(cells);
    return model;
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::insertRows(const QSciSimpleTableModel& table, int at, int count)
{
    at = qBound(0, at, table.rows());
    return count < 0 ? nullptr : remap(table, table.rows() + count, table.columns(), at, count, 0, 0);
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::removeRows(const QSciSimpleTableModel& table, int at, int count)
{
    if (at < 0 || count < 0 || at + count > table.rows())
        return nullptr;
    return remap(table, table.rows() - count, table.columns(), at, -count, 0, 0);
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::insertColumns(const QSciSimpleTableModel& table, int at, int count)
{
    at = qBound(0, at, table.columns());
    return count < 0 ? nullptr : remap(table, table.rows(), table.columns() + count, 0, 0, at, count);
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::removeColumns(const QSciSimpleTableModel& table, int at, int count)
{
    if (at < 0 || count < 0 || at + count > table.columns())
        return nullptr;
    return remap(table, table.rows(), table.columns() - count, 0, 0, at, -count);
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::resized(const QSciSimpleTableModel& table, int rows, int columns)
{
    return remap(table, rows, columns, rows, 0, columns, 0);
}

std::unique_ptr<QSciSimpleTableModel> TableReshape::transposed(const QSciSimpleTableModel& table)
{
    if (!fits(table.columns(), table.rows()))
        return nullptr;
    QVector<QString> cells(table.allCells().size());
    for (int r = 0; r < table.rows(); ++r)
        for (int c = 0; c < table.columns(); ++c)
            cells[qsizetype(c) * table.rows() + r] = table.cellText(r, c);
    auto model = std::make_unique<QSciSimpleTableModel>(table.columns(), table.rows());
    model->setAllCells(cells);
    return model;
}
