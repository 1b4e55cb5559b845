#pragma once

#include <QString>
#include <memory>

class QSciSimpleTableModel;
class TaggedTextNode;

/** A table and its title, as kept in one ".table.velm" file; empty cells are not stored. */
class TableFile final {
public:
    static QString type() { return QStringLiteral("table"); }
    static bool isTableFileName(const QString& path);

    [[nodiscard]] static bool write(
        const QString& path, const QSciSimpleTableModel& table, const QString& title, QString* message);
    /** On failure nothing is returned and @p message says why. */
    [[nodiscard]] static std::unique_ptr<QSciSimpleTableModel> read(
        const QString& path, QString* title, QString* message);
    /** The table inside a parsed document's content chapter; nullptr when any part of it is out of bounds. */
    static std::unique_ptr<QSciSimpleTableModel> fromContent(const TaggedTextNode& content, QString* title);
};
