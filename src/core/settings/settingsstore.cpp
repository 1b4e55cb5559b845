#include "settingsstore.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QMutexLocker>

#include <sqlite3.h>
#include <atomic>

Q_LOGGING_CATEGORY(lcSettings, "velmora.settings")

namespace {

bool bindText(sqlite3_stmt* statement, int index, const QString& text)
{
    if (!statement)
        return false;
    const QByteArray utf8 = text.toUtf8();
    return sqlite3_bind_text(statement, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT) == SQLITE_OK;
}

QString columnLatin1(sqlite3_stmt* statement)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    return QString::fromLatin1(text, sqlite3_column_bytes(statement, 0));
}

} // namespace

QString SettingsStore::libraryVersion()
{
    return QString::fromLatin1(sqlite3_libversion());
}

SettingsStore::~SettingsStore()
{
    close();
}

void SettingsStore::logDbError(const char* line)
{
    // A read-only or broken database fails on every access; one report per run says it all.
    static std::atomic<bool> reported { false };
    if (reported.exchange(true))
        return;
    qCDebug(lcSettings).noquote() << QString::fromLatin1(line);
    qCDebug(lcSettings).noquote() << QString::fromUtf8(m_db ? sqlite3_errmsg(m_db) : "no database");
}

bool SettingsStore::open(const QString& fileName, bool create)
{
    close();
    m_fileName = fileName;
    if (!create && !QFileInfo::exists(fileName))
        return false;
    if (sqlite3_open(fileName.toUtf8().constData(), &m_db) != SQLITE_OK) {
        logDbError("Error opening settings db");
        sqlite3_close(m_db);
        m_db = nullptr;
        return false;
    }
    // The store counts as open from here: a broken file still gives a store that fails quietly.
    m_open = true;
    execute(QStringLiteral(
        "CREATE TABLE IF NOT EXISTS singleValue (name VARCHAR(120) PRIMARY KEY, value VARCHAR(4096) NOT NULL);"));
    execute(QStringLiteral("CREATE UNIQUE INDEX IF NOT EXISTS keyIndex ON singleValue(name ASC);"));
    execute(QStringLiteral("PRAGMA synchronous = 0;"));
    prepare("INSERT OR REPLACE INTO singleValue VALUES(?,?);", &m_insert, "Error preparing insert statement")
        && prepare("SELECT value FROM singleValue WHERE name=?;", &m_get, "Error preparing get statement")
        && prepare(
            "SELECT name FROM singleValue WHERE name LIKE ?;", &m_prefix, "Error preparing getPrefixedKeys statement")
        && prepare("DELETE FROM singleValue WHERE name=?;", &m_delete, "Error preparing Delete statement");
    return true;
}

bool SettingsStore::prepare(const char* sql, sqlite3_stmt** statement, const char* failureLine)
{
    if (sqlite3_prepare_v2(m_db, sql, -1, statement, nullptr) != SQLITE_OK) {
        *statement = nullptr;
        logDbError(failureLine);
        return false;
    }
    return true;
}

void SettingsStore::close()
{
    if (!m_open)
        return;
    QMutexLocker lock(&m_mutex);
    for (sqlite3_stmt** statement : { &m_insert, &m_get, &m_prefix, &m_delete }) {
        sqlite3_finalize(*statement);
        *statement = nullptr;
    }
    sqlite3_close(m_db);
    m_db = nullptr;
    m_open = false;
}

bool SettingsStore::execute(const QString& statement)
{
    if (!m_open)
        return false;
    char* error = nullptr;
    if (sqlite3_exec(m_db, statement.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        sqlite3_free(error);
        logDbError("Error executing settings statement");
        return false;
    }
    return true;
}

bool SettingsStore::set(const QString& key, const QString& value)
{
    QMutexLocker lock(&m_mutex);
    if (!bindText(m_insert, 1, key) || !bindText(m_insert, 2, value)) {
        logDbError("Error binding values to SQL statement");
        if (m_insert)
            sqlite3_reset(m_insert);
        return false;
    }
    const bool done = sqlite3_step(m_insert) == SQLITE_DONE;
    if (!done)
        logDbError("Error inserting into settings db");
    sqlite3_reset(m_insert);
    return done;
}

bool SettingsStore::get(const QString& key, QString& value)
{
    QMutexLocker lock(&m_mutex);
    if (!bindText(m_get, 1, key)) {
        logDbError("Error binding values to SQL get statement");
        if (m_get)
            sqlite3_reset(m_get);
        return false;
    }
    const bool found = sqlite3_step(m_get) == SQLITE_ROW;
    if (found)
        value = columnLatin1(m_get);
    sqlite3_reset(m_get);
    return found;
}

bool SettingsStore::remove(const QString& key)
{
    QMutexLocker lock(&m_mutex);
    if (!bindText(m_delete, 1, key)) {
        logDbError("Error binding values to SQL statement");
        if (m_delete)
            sqlite3_reset(m_delete);
        return false;
    }
    const bool done = sqlite3_step(m_delete) == SQLITE_DONE;
    if (!done)
        logDbError("Error inserting into settings db");
    sqlite3_reset(m_delete);
    return done;
}

QStringList SettingsStore::prefixedKeys(const QString& prefix)
{
    QMutexLocker lock(&m_mutex);
    QStringList keys;
    if (!bindText(m_prefix, 1, prefix + QLatin1Char('%'))) {
        logDbError("Error binding values to SQL get statement");
        if (m_prefix)
            sqlite3_reset(m_prefix);
        return keys;
    }
    while (sqlite3_step(m_prefix) == SQLITE_ROW)
        keys.append(columnLatin1(m_prefix));
    sqlite3_reset(m_prefix);
    return keys;
}
