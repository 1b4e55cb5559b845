#pragma once

#include <QChar>
#include <QString>
#include <QStringList>
#include <QVector>
#include <memory>

class QSciSimpleTableModel;

/**
 * Tables as plain text: import of what instruments and spreadsheets write (tab, ";", "," or blank separated,
 * quoted fields, decimal commas), CSV export and the tab-separated text other programs exchange through the
 * clipboard.
 */
class TableText final {
public:
    /** Whitespace: fields are split at any run of blanks and tabs, as in .asc matrices. */
    static constexpr QChar Whitespace = QChar(0);

    struct Parsed {
        QVector<QStringList> rows;
        int columns = 0;
        QChar separator = Whitespace;
        bool decimalComma = false;
    };

    /** Splits @p text into rows and fields, guessing the separator and the decimal mark; empty lines are dropped. */
    static Parsed parse(const QString& text);
    /** Splits with a known separator; quoted fields may hold separators, quotes ("") and line breaks. */
    static QVector<QStringList> split(const QString& text, QChar separator);
    static QChar detectSeparator(const QString& text);

    /** A model just large enough for @p rows; nullptr when that would exceed the table size limit. */
    static std::unique_ptr<QSciSimpleTableModel> toModel(const QVector<QStringList>& rows, int columns);

    /** Comma-separated text of a block of cells, quoting fields that need it; one line per row. */
    static QString toCsv(const QSciSimpleTableModel& table);
    static QString joinCsv(const QVector<QStringList>& rows);
    /** Tab-separated text as spreadsheets put on the clipboard; tabs and line breaks inside cells become blanks. */
    static QString joinTabSeparated(const QVector<QStringList>& rows);
};
