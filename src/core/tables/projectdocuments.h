#pragma once

#include <QPair>
#include <QString>
#include <QVector>
#include <memory>
#include <vector>

class QSciSimpleTableModel;

/**
 * The tables and texts of a project, kept beside its items in the project folder: "tables/" holds one
 * ".table.velm" per table and "texts/" one ".text.velm" per text, numbered in page order.
 */
class ProjectDocuments final {
public:
    using TableRef = QPair<QString, const QSciSimpleTableModel*>; ///< title and table
    using Text = QPair<QString, QString>; ///< title and text
    struct LoadedTable {
        QString title;
        std::unique_ptr<QSciSimpleTableModel> table;
    };

    /** Writes every document and then removes the files of documents that are gone. */
    [[nodiscard]] static bool save(
        const QString& folder, const QVector<TableRef>& tables, const QVector<Text>& texts, QString* message);
    /** Reads what the folder holds; a file that cannot be read is left out and named in @p problems. */
    static void load(
        const QString& folder, std::vector<LoadedTable>* tables, QVector<Text>* texts, QStringList* problems);
};
