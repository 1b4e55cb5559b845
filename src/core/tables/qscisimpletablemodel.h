#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QVector>

/**
 * A table item's cells: a grid of texts whose size is fixed for the life of the model. Numbers are kept as
 * their text; reshaping a table means building a new model (see TableReshape).
 */
class QSciSimpleTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    /** The most cells a table may have: far beyond any real measurement table, well within memory. */
    static constexpr qint64 MaxCells = 20000000;

    /** Negative sizes are taken as 0; the caller keeps rows x columns within MaxCells. */
    QSciSimpleTableModel(int rows, int columns, QObject* parent = nullptr);
    ~QSciSimpleTableModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /** Stores the value's text for EditRole and ignores other roles; reports success either way. */
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /** Orders whole rows by the numeric value of @p column (0 for a text that is no number); stable. */
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    bool contains(int row, int column) const { return row >= 0 && column >= 0 && row < m_rows && column < m_columns; }
    /** The text of a cell inside the table; an empty text outside it. */
    const QString& cellText(int row, int column) const;
    /** Writes one cell and tells the views; a cell outside the table is ignored. */
    void setCellText(int row, int column, const QString& text);
    /** The cell's number, or 0 when its text is no number ("Infinity" and "-Infinity" included). */
    double cellValue(int row, int column) const;
    /** Replaces every cell at once, row-major; a vector of another size is ignored. */
    void setAllCells(const QVector<QString>& cells);
    const QVector<QString>& allCells() const { return m_cells; }

    /** Reads a cell's text as a number the way formulas and sorting do: C locale, infinities as scripts print them. */
    static double toNumber(const QString& text, bool* ok = nullptr);

private:
    int m_rows;
    int m_columns;
    QVector<QString> m_cells;
};
