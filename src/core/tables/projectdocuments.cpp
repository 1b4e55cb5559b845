#include "projectdocuments.h"

#include "qscisimpletablemodel.h"
#include "tablefile.h"
#include "textdocumentfile.h"

#include "core/base/messages.h"

#include <QDir>
#include <QSet>

namespace {

const QString TablesFolder = QStringLiteral("tables");
const QString TextsFolder = QStringLiteral("texts");

QString numbered(const char* stem, int i, const QString& suffix)
{
    return QLatin1String(stem) + QStringLiteral("-%1").arg(i + 1, 3, 10, QLatin1Char('0')) + suffix;
}

/** Removes the files with @p suffix in @p dir that are not in @p keep. */
void removeStale(const QDir& dir, const QString& suffix, const QSet<QString>& keep)
{
    for (const QString& name : dir.entryList({ QLatin1Char('*') + suffix }, QDir::Files))
        if (!keep.contains(name))
            QFile::remove(dir.filePath(name));
}

} // namespace

bool ProjectDocuments::save(
    const QString& folder, const QVector<TableRef>& tables, const QVector<Text>& texts, QString* message)
{
    const QString tableSuffix = QStringLiteral(".table.velm");
    const QString textSuffix = TextDocumentFile::suffix(TextDocumentFile::Kind::Text);
    QDir root(folder);
    for (const QString& sub : { TablesFolder, TextsFolder }) {
        if (!root.mkpath(sub)) {
            *message = Messages::unableToWriteFile(root.filePath(sub));
            return false;
        }
    }
    const QDir tableDir(root.filePath(TablesFolder)), textDir(root.filePath(TextsFolder));
    QSet<QString> tableNames, textNames;
    for (int i = 0; i < tables.size(); ++i) {
        const QString name = numbered("table", i, tableSuffix);
        if (!TableFile::write(tableDir.filePath(name), *tables.at(i).second, tables.at(i).first, message))
            return false;
        tableNames.insert(name);
    }
    for (int i = 0; i < texts.size(); ++i) {
        const QString name = numbered("text", i, textSuffix);
        if (!TextDocumentFile::write(
                textDir.filePath(name), TextDocumentFile::Kind::Text, texts.at(i).first, texts.at(i).second, message))
            return false;
        textNames.insert(name);
    }
    // Stale files go only once every new one is written, so that a failed save never loses a document.
    removeStale(tableDir, tableSuffix, tableNames);
    removeStale(textDir, textSuffix, textNames);
    return true;
}

void ProjectDocuments::load(
    const QString& folder, std::vector<LoadedTable>* tables, QVector<Text>* texts, QStringList* problems)
{
    const QDir root(folder);
    const QDir tableDir(root.filePath(TablesFolder)), textDir(root.filePath(TextsFolder));
    for (const QString& name : tableDir.entryList({ QStringLiteral("*.table.velm") }, QDir::Files, QDir::Name)) {
        LoadedTable loaded;
        QString message;
        loaded.table = TableFile::read(tableDir.filePath(name), &loaded.title, &message);
        if (loaded.table)
            tables->push_back(std::move(loaded));
        else
            problems->append(message);
    }
    for (const QString& name : textDir.entryList({ QStringLiteral("*.text.velm") }, QDir::Files, QDir::Name)) {
        Text text;
        QString message;
        if (TextDocumentFile::read(
                textDir.filePath(name), TextDocumentFile::Kind::Text, &text.first, &text.second, &message))
            texts->append(text);
        else
            problems->append(message);
    }
}
