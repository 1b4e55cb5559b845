#include "qscisimpletablemodel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

QSciSimpleTableModel::QSciSimpleTableModel(int rows, int columns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_rows(qMax(0, rows))
    , m_columns(qMax(0, columns))
    , m_cells(qsizetype(m_rows) * m_columns)
{
}

QSciSimpleTableModel::~QSciSimpleTableModel() = default;

int QSciSimpleTableModel::rowCount(const QModelIndex&) const
{
    return m_rows;
}

int QSciSimpleTableModel::columnCount(const QModelIndex&) const
{
    return m_columns;
}

QVariant QSciSimpleTableModel::data(const QModelIndex& index, int role) const
{
    if ((role != Qt::DisplayRole && role != Qt::EditRole) || !contains(index.row(), index.column()))
        return QVariant();
    return cellText(index.row(), index.column());
}

bool QSciSimpleTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role == Qt::EditRole)
        setCellText(index.row(), index.column(), value.toString());
    return true;
}

Qt::ItemFlags QSciSimpleTableModel::flags(const QModelIndex& index) const
{
    return QAbstractTableModel::flags(index) | Qt::ItemIsEditable;
}

const QString& QSciSimpleTableModel::cellText(int row, int column) const
{
    static const QString none;
    return contains(row, column) ? m_cells.at(qsizetype(row) * m_columns + column) : none;
}

void QSciSimpleTableModel::setCellText(int row, int column, const QString& text)
{
    if (!contains(row, column))
        return;
    m_cells[qsizetype(row) * m_columns + column] = text;
    const QModelIndex changed = index(row, column);
    emit dataChanged(changed, changed, { Qt::DisplayRole, Qt::EditRole });
}

double QSciSimpleTableModel::toNumber(const QString& text, bool* ok)
{
    bool converted = false;
    double value = text.toDouble(&converted);
    if (!converted) {
        // Formulas that overflow leave the script's spelling in the cell; reading it back must work.
        const QString trimmed = text.trimmed();
        if (trimmed == QLatin1String("Infinity") || trimmed == QLatin1String("+Infinity")) {
            value = std::numeric_limits<double>::infinity();
            converted = true;
        } else if (trimmed == QLatin1String("-Infinity")) {
            value = -std::numeric_limits<double>::infinity();
            converted = true;
        } else {
            value = 0;
        }
    }
    if (ok)
        *ok = converted;
    return value;
}

double QSciSimpleTableModel::cellValue(int row, int column) const
{
    return toNumber(cellText(row, column));
}

void QSciSimpleTableModel::setAllCells(const QVector<QString>& cells)
{
    if (cells.size() != m_cells.size())
        return;
    beginResetModel();
    m_cells = cells;
    endResetModel();
}

void QSciSimpleTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= m_columns || m_rows < 2)
        return;
    QVector<double> keys(m_rows);
    for (int r = 0; r < m_rows; ++r)
        keys[r] = cellValue(r, column);
    QVector<int> rows(m_rows);
    std::iota(rows.begin(), rows.end(), 0);
    // NaN keys would break the strict weak order; they cannot come from toNumber, but stay safe.
    auto key = [&](int r) { return std::isnan(keys[r]) ? 0.0 : keys[r]; };
    if (order == Qt::AscendingOrder)
        std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) { return key(a) < key(b); });
    else
        std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) { return key(a) > key(b); });

    emit layoutAboutToBeChanged();
    QVector<QString> sorted(m_cells.size());
    for (int r = 0; r < m_rows; ++r)
        std::copy_n(m_cells.constBegin() + qsizetype(rows[r]) * m_columns, m_columns,
            sorted.begin() + qsizetype(r) * m_columns);
    m_cells.swap(sorted);
    QModelIndexList from, to;
    for (const QModelIndex& persistent : persistentIndexList()) {
        from.append(persistent);
        const int newRow = int(std::find(rows.cbegin(), rows.cend(), persistent.row()) - rows.cbegin());
        to.append(index(newRow, persistent.column()));
    }
    changePersistentIndexList(from, to);
    emit layoutChanged();
}
