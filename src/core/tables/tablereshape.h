#pragma once

#include <memory>

class QSciSimpleTableModel;

/**
 * A table's size never changes, so inserting, deleting, resizing and transposing build a new model with the
 * cells carried over. Each returns nullptr when the result would be empty or exceed the size limit.
 */
class TableReshape final {
public:
    static std::unique_ptr<QSciSimpleTableModel> insertRows(const QSciSimpleTableModel& table, int at, int count);
    static std::unique_ptr<QSciSimpleTableModel> removeRows(const QSciSimpleTableModel& table, int at, int count);
    static std::unique_ptr<QSciSimpleTableModel> insertColumns(const QSciSimpleTableModel& table, int at, int count);
    static std::unique_ptr<QSciSimpleTableModel> removeColumns(const QSciSimpleTableModel& table, int at, int count);
    /** Cells outside the new size are dropped; new cells are empty. */
    static std::unique_ptr<QSciSimpleTableModel> resized(const QSciSimpleTableModel& table, int rows, int columns);
    static std::unique_ptr<QSciSimpleTableModel> transposed(const QSciSimpleTableModel& table);

private:
    /** Copies the cells into a rows x columns table, shifting rows at rowAt and columns at columnAt. */
    static std::unique_ptr<QSciSimpleTableModel> remap(const QSciSimpleTableModel& table, int rows, int columns,
        int rowAt, int rowShift, int columnAt, int columnShift);
};
