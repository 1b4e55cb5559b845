#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

struct sqlite3;
struct sqlite3_stmt;

/**
 * Key/value pairs in one SQLite table. Statements are prepared once at open and reused;
 * failures go to the debug log and never reach the user. Text is bound as UTF-8 and read back
 * as Latin-1, byte for byte, so only ASCII round-trips unchanged.
 */
class SettingsStore final {
public:
    SettingsStore() = default;
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    /** Opens @p fileName; with @p create false a missing file leaves the store closed. */
    bool open(const QString& fileName, bool create);
    void close();
    bool isOpen() const { return m_open; }
    /** The version of the SQLite library in use, for the program's info. */
    static QString libraryVersion();
    QString fileName() const { return m_fileName; }

    bool set(const QString& key, const QString& value);
    /** On a row, replaces @p value; otherwise leaves the caller's default there. */
    bool get(const QString& key, QString& value);
    bool remove(const QString& key);
    /** Keys matching @p prefix used unescaped as a LIKE pattern: "_" and "%" are wild cards, ASCII case ignored. */
    QStringList prefixedKeys(const QString& prefix);
    bool execute(const QString& statement);

private:
    bool prepare(const char* sql, sqlite3_stmt** statement, const char* failureLine);
    void logDbError(const char* line);

    QString m_fileName;
    bool m_open = false;
    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_insert = nullptr;
    sqlite3_stmt* m_get = nullptr;
    sqlite3_stmt* m_prefix = nullptr;
    sqlite3_stmt* m_delete = nullptr;
    QMutex m_mutex;
};
