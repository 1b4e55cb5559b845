#pragma once

#include "core/items/qsciimage.h"

#include <QDateTime>
#include <QFuture>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <memory>

class QObject;

/**
 * One saved state within a transaction. The token's file always holds the state that the next step
 * (undo, or redo after an undo) goes to: each step saves the present state first, then swaps files.
 *
 * Modes: 0 saves the present state only; 1 an item the operation created (undo removes it, redo makes
 * it anew from the file); 2 an item changed in place; 3 an item the operation removed from its tab
 * (undo makes it anew, redo removes it again); 4 a tab's stacking order.
 *
 * Items are known by their serial as well as by pointer: a removed item's pointer dies, its serial
 * still names it until an undo brings it back as a new object.
 */
class QSciHistoryToken final {
public:
    enum Mode { SaveOnly = 0, Created = 1, Modified = 2, Removed = 3, Order = 4 };

    /** @p heldBytes is the manager's running total, kept in step as files come and go. */
    QSciHistoryToken(
        quint32 tag, int mode, QSciImage* item, QSciImage::Parts parts, const QString& directory, quint64* heldBytes);
    ~QSciHistoryToken();
    QSciHistoryToken(const QSciHistoryToken&) = delete;
    QSciHistoryToken& operator=(const QSciHistoryToken&) = delete;

    quint32 tag() const { return m_tag; }
    int mode() const { return m_mode; }
    /** The live item, or nullptr while it is removed. */
    QSciImage* item() const { return m_item; }
    quint64 itemSerial() const { return m_serial; }
    void setItem(QSciImage* item);
    QSciImage::Parts parts() const { return m_parts; }
    /** How the log names the item the token was made for. */
    QString itemText() const { return m_itemText; }
    /** The file a save under @p tag writes. */
    QString fileNameFor(quint32 tag) const { return fileFor(tag); }
    QString fileName() const { return m_file; }
    quint64 fileSize() const { return m_size; }

    /** Writes the item's recorded parts and place to the file of @p newTag, replacing the token's file. */
    bool save(quint32 newTag);
    /**
     * Reads the old file back into the item and saves the state it had under @p newTag (mode 2). The save
     * runs in the background from a copy, so an undo costs about one read; the token waits for it before
     * its file is used again.
     */
    bool swap(quint32 newTag);
    /** Waits for every background save of any token and books the sizes. */
    static void settleAll();
    /** Reads the file into @p into (parts and place); false when it is unreadable. */
    bool restoreInto(QSciImage* into) const;
    /** Deletes the file and gives its bytes back. */
    void dropFile();
    /** Why the last save failed, as the writer said it. */
    QString lastError() const { return m_lastError; }

    QPointer<QObject> tab; ///< modes 1, 3, 4: the tab of the item or order
    int index = -1; ///< modes 1, 3: place in the stacking order
    QList<quint64> order; ///< mode 4: serials in the stacking order to go to

private:
    QString fileFor(quint32 tag) const;
    bool write(const QString& file);
    /** Waits for this token's background save. */
    void settle();

    quint32 m_tag;
    int m_mode;
    QPointer<QSciImage> m_item;
    quint64 m_serial = 0;
    QString m_itemText;
    QSciImage::Parts m_parts;
    QString m_directory;
    QString m_file;
    quint64 m_size = 0;
    quint64* m_heldBytes;
    QPoint m_position;
    bool m_visible = true;
    bool m_selected = false;
    QDateTime m_creationTime; ///< the file keeps neither, and sorting by creation time needs it
    QString m_itemFileName;
    QString m_lastError;
    QFuture<bool> m_pending;
    std::shared_ptr<QSciImage> m_present; ///< released on this thread once the background save ended
};

/** The name the records of the undo list carry elsewhere. */
using QSciHistoryManagerUndoItem = QSciHistoryToken;
