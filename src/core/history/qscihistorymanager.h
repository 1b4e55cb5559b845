#pragma once

#include "core/items/qsciimage.h"

#include <QList>
#include <QMutex>
#include <memory>
#include <QObject>
#include <QStringList>

class ProgressSink;
class QLockFile;
class QSciHistoryHost;
class QSciHistoryToken;
class QSciHistoryTransaction;

/**
 * Undo and redo by transactions whose item states are native item files in the history folder.
 * One per run, made on first use. The mutex is held from begin to commit or cancel, so transactions
 * never interleave; all calls come from the thread that owns the items.
 */
class QSciHistoryManager final : public QObject {
    Q_OBJECT

public:
    static QSciHistoryManager* instance();

    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    /** Bytes of all history files, background saves included. */
    quint64 currentSize() const;
    quint64 maximumSize() const { return m_maximumSize; }
    void setMaximumSize(quint64 bytes) { m_maximumSize = bytes; }
    QString directory() const { return m_directory; }
    /** Re-reads `history.historyDir` and `history.maxHistoryMB` (after the settings folder changed). */
    void reloadSettings();

    bool inTransaction() const { return m_current != nullptr; }
    /** Begins a transaction on @p tab of @p host; does nothing while history is off. */
    void beginTransaction(const QString& name, QSciHistoryHost* host, QObject* tab);
    /**
     * Records @p parts of @p item as they are now (mode 2). False when the state could not be saved: the
     * caller must not go on to change the item. Without a running transaction this is a success.
     */
    bool saveItem(QSciImage* item, QSciImage::Parts parts);
    /** @p item was just made by the running operation (mode 1). */
    void recordCreated(QSciImage* item);
    /** @p item is about to be removed from its tab (mode 3); false when it could not be saved. */
    bool recordRemoval(QSciImage* item);
    /** The stacking order of @p tab is about to change (mode 4). */
    void recordOrder(QObject* tab);
    void commitTransaction();
    void cancelTransaction();
    /** Undoes what the running transaction recorded so far, then cancels it: items and lists as before. */
    void rollbackTransaction();

    /**
     * False with "Nothing to undo" when the undo list is empty. @p progress hears one step per recorded item;
     * a step once begun is not cancelled, so a half-undone state never arises.
     */
    bool undo(QString* message = nullptr, ProgressSink* progress = nullptr);
    bool redo(QString* message = nullptr, ProgressSink* progress = nullptr);
    QStringList undoNames() const;
    QStringList redoNames() const;
    /** Drops every transaction of @p host (its project closes), or all with nullptr. */
    void forget(QSciHistoryHost* host = nullptr);
    /** Removes the ".tmp.img.velm" files a run left in the history folder. */
    void cleanDirectory();

signals:
    /** The undo or redo list changed. */
    void changed();
    /** An item could not be recorded, so the operation was not carried out; @p message says why, for the user. */
    void recordFailed(const QString& message);

private:
    QSciHistoryManager();
    ~QSciHistoryManager() override;
    quint32 nextTag() { return ++m_lastTag; }
    /** Makes the token of @p mode for @p item in the running transaction. */
    bool record(QSciImage* item, int mode, QSciImage::Parts parts);
    void sizeCheck();
    void step(QSciHistoryTransaction* transaction, bool undo, ProgressSink* progress);
    void replaceReferences(quint64 oldSerial, QSciImage* replacement, QSciHistoryHost* host);
    void destroyTransactions(QList<QSciHistoryTransaction*>& list);

    quint64 m_currentSize = 0;
    quint64 m_maximumSize = 0;
    QList<QSciHistoryTransaction*> m_undo;
    QList<QSciHistoryTransaction*> m_redo;
    QSciHistoryTransaction* m_current = nullptr;
    bool m_enabled = true;
    QString m_directory;
    quint32 m_lastTag = 0;
    std::unique_ptr<QLockFile> m_lock;
    QString m_lockedFolder;
    QMutex m_mutex;
};
