#include "qscihistorymanager.h"

#include "historylog.h"
#include "qscihistoryhost.h"
#include "qscihistorytoken.h"
#include "qscihistorytransaction.h"

#include "core/base/messages.h"
#include "core/base/progresssink.h"
#include "core/settings/options.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QLockFile>

QSciHistoryManager* QSciHistoryManager::instance()
{
    static QSciHistoryManager* manager = new QSciHistoryManager();
    return manager;
}

QSciHistoryManager::QSciHistoryManager()
{
    reloadSettings();
}

QSciHistoryManager::~QSciHistoryManager()
{
    forget();
}

quint64 QSciHistoryManager::currentSize() const
{
    QSciHistoryToken::settleAll();
    return m_currentSize;
}

void QSciHistoryManager::reloadSettings()
{
    m_maximumSize = quint64(qMax(0, Options::getInt(QStringLiteral("history.maxHistoryMB"), 1024))) << 20;
    const QString base = Options::historyDir();
    if (m_lock && m_lockedFolder == base)
        return;
    // A second program on the same settings folder gets a folder of its own, so that neither reads or
    // cleans away the other's files.
    m_lock = std::make_unique<QLockFile>(base + QStringLiteral("history.lock"));
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0)) {
        m_directory = base;
    } else {
        m_lock.reset();
        m_directory = base + QStringLiteral("run-%1/").arg(QCoreApplication::applicationPid());
        QDir().mkpath(m_directory);
    }
    m_lockedFolder = base;
}

void QSciHistoryManager::setEnabled(bool enabled)
{
    m_enabled = enabled;
}

void QSciHistoryManager::beginTransaction(const QString& name, QSciHistoryHost* host, QObject* tab)
{
    if (!m_enabled)
        return;
    m_mutex.lock();
    HistoryLog::line(QStringLiteral("Beginn transaction ") + name);
    m_current = new QSciHistoryTransaction(name, host, tab);
}

bool QSciHistoryManager::record(QSciImage* item, int mode, QSciImage::Parts parts)
{
    if (!m_current || !item || (mode != QSciHistoryToken::Modified && !m_current->host()))
        return true;
    auto* token = new QSciHistoryToken(nextTag(), mode, item, parts, m_directory, &m_currentSize);
    if (mode != QSciHistoryToken::Modified) {
        token->tab = m_current->host()->historyTabOf(item);
        token->index = m_current->host()->historyTabItems(token->tab).indexOf(item);
    }
    // A created item is still there: it is saved only when an undo takes it away.
    if (mode != QSciHistoryToken::Created) {
        HistoryLog::line(QStringLiteral("Saving QSciImage %1 historytag %2 in %3")
                             .arg(HistoryLog::describe(item))
                             .arg(token->tag())
                             .arg(token->fileNameFor(token->tag())));
        if (!token->save(token->tag())) {
            emit recordFailed(Messages::tr("The change was not made: no undo copy of %1 could be saved (%2). Switch "
                                           "History off to work without undo.")
                                  .arg(item->name(), token->lastError()));
            delete token;
            return false;
        }
    }
    m_current->append(token);
    return true;
}

bool QSciHistoryManager::saveItem(QSciImage* item, QSciImage::Parts parts)
{
    return record(item, QSciHistoryToken::Modified, parts);
}

void QSciHistoryManager::recordCreated(QSciImage* item)
{
    record(item, QSciHistoryToken::Created, QSciImage::AllParts);
}

bool QSciHistoryManager::recordRemoval(QSciImage* item)
{
    return record(item, QSciHistoryToken::Removed, QSciImage::AllParts);
}

void QSciHistoryManager::recordOrder(QObject* tab)
{
    if (!m_current || !tab || !m_current->host())
        return;
    auto* token = new QSciHistoryToken(
        nextTag(), QSciHistoryToken::Order, nullptr, QSciImage::Parts(), m_directory, &m_currentSize);
    token->tab = tab;
    for (const QSciImage* item : m_current->host()->historyTabItems(tab))
        token->order.append(item->serial());
    m_current->append(token);
}

void QSciHistoryManager::commitTransaction()
{
    if (!m_current)
        return;
    HistoryLog::line(QStringLiteral("Commit Transaction"));
    QSciHistoryTransaction* transaction = m_current;
    m_current = nullptr;
    m_mutex.unlock();
    // A step that changed nothing is not worth an undo entry, nor the loss of the redo list.
    if (transaction->tokens().isEmpty()) {
        delete transaction;
        return;
    }
    m_undo.append(transaction);
    destroyTransactions(m_redo);
    sizeCheck();
}

void QSciHistoryManager::cancelTransaction()
{
    if (!m_current)
        return;
    HistoryLog::line(QStringLiteral("Cancel Transaction"));
    delete m_current;
    m_current = nullptr;
    m_mutex.unlock();
}

void QSciHistoryManager::rollbackTransaction()
{
    if (!m_current)
        return;
    HistoryLog::line(QStringLiteral("Roll back transaction ") + m_current->name());
    step(m_current, true, nullptr);
    cancelTransaction();
}

void QSciHistoryManager::destroyTransactions(QList<QSciHistoryTransaction*>& list)
{
    qDeleteAll(list);
    list.clear();
}

void QSciHistoryManager::sizeCheck()
{
    QSciHistoryToken::settleAll();
    HistoryLog::line(QStringLiteral("Current size is %1kiB, maximum allowed is %2 kiB.")
                         .arg(m_currentSize >> 10)
                         .arg(m_maximumSize >> 10));
    if (m_currentSize > m_maximumSize) {
        while (double(m_currentSize) > 0.9 * double(m_maximumSize) && !m_undo.isEmpty()) {
            delete m_undo.takeFirst();
            HistoryLog::plain(QStringLiteral("Size now %1kiB").arg(m_currentSize >> 10));
        }
    }
    emit changed();
}

bool QSciHistoryManager::undo(QString* message, ProgressSink* progress)
{
    if (m_undo.isEmpty() || m_current) {
        if (message)
            *message = Messages::tr("Nothing to undo");
        return false;
    }
    QSciHistoryTransaction* transaction = m_undo.last();
    step(transaction, true, progress);
    m_redo.append(m_undo.takeLast());
    emit changed();
    return true;
}

bool QSciHistoryManager::redo(QString* message, ProgressSink* progress)
{
    if (m_redo.isEmpty() || m_current) {
        if (message)
            *message = Messages::tr("Nothing to redo");
        return false;
    }
    QSciHistoryTransaction* transaction = m_redo.last();
    step(transaction, false, progress);
    m_undo.append(m_redo.takeLast());
    emit changed();
    return true;
}

void QSciHistoryManager::step(QSciHistoryTransaction* transaction, bool undo, ProgressSink* progress)
{
    NullProgressSink none;
    ProgressSink& sink = progress ? *progress : none;
    QSciHistoryHost* host = transaction->host();
    QList<QSciHistoryToken*> tokens = transaction->tokens();
    if (undo)
        std::reverse(tokens.begin(), tokens.end());

    const auto bringBack = [&](QSciHistoryToken* token) {
        const quint64 oldSerial = token->itemSerial();
        auto* item = new QSciImage();
        if (!token->restoreInto(item)) {
            // The file stays: a later attempt may still read it; nothing half-made enters the tab.
            delete item;
            return;
        }
        host->historyInsertItem(token->tab, item, token->index);
        HistoryLog::line(QStringLiteral("Created new QSciImage %1 in %2")
                             .arg(HistoryLog::describe(item))
                             .arg(token->tab ? token->tab->objectName() : QString()));
        token->dropFile();
        token->setItem(item);
        replaceReferences(oldSerial, item, host);
    };
    const auto takeAway = [&](QSciHistoryToken* token) {
        QSciImage* item = token->item();
        if (!item)
            return;
        token->index = host->historyTabItems(host->historyTabOf(item)).indexOf(item);
        if (token->save(nextTag()))
            host->historyDeleteItem(item);
    };

    sink.begin(transaction->name(), tokens.size());
    int done = 0;
    for (QSciHistoryToken* token : qAsConst(tokens)) {
        sink.step(done++);
        switch (token->mode()) {
        case QSciHistoryToken::SaveOnly:
            token->save(nextTag());
            break;
        case QSciHistoryToken::Created:
            undo ? takeAway(token) : bringBack(token);
            break;
        case QSciHistoryToken::Modified:
            if (token->item()) {
                HistoryLog::line(QStringLiteral("Restoring QSciImage ") + HistoryLog::describe(token->item()));
                token->swap(nextTag());
            }
            break;
        case QSciHistoryToken::Removed:
            undo ? bringBack(token) : takeAway(token);
            break;
        case QSciHistoryToken::Order: {
            const QList<QSciImage*> now = host->historyTabItems(token->tab);
            QHash<quint64, QSciImage*> bySerial;
            for (QSciImage* item : now)
                bySerial.insert(item->serial(), item);
            QList<QSciImage*> order;
            for (quint64 serial : qAsConst(token->order)) {
                if (QSciImage* item = bySerial.take(serial))
                    order.append(item);
            }
            // Items the record does not know (made since) keep their relative place on top.
            for (QSciImage* item : now) {
                if (bySerial.contains(item->serial()))
                    order.append(item);
            }
            token->order.clear();
            for (const QSciImage* item : now)
                token->order.append(item->serial());
            host->historySetTabOrder(token->tab, order);
            break;
        }
        default:
            HistoryLog::plain(QStringLiteral("Illegal mode in QSciHistoryManagerUndoItem::undo(). This is bad"));
            break;
        }
    }
    sink.step(done);
    sink.end();
}

void QSciHistoryManager::replaceReferences(quint64 oldSerial, QSciImage* replacement, QSciHistoryHost* host)
{
    const auto fix = [&](QSciHistoryTransaction* transaction, const QString& holder) {
        for (QSciHistoryToken* token : transaction->tokens()) {
            if (token->mode() == QSciHistoryToken::Order) {
                const int at = token->order.indexOf(oldSerial);
                if (at >= 0) {
                    token->order[at] = replacement->serial();
                    HistoryLog::line(QStringLiteral("Fix zOrder, replacing reference to %1 with %2 in %3")
                                         .arg(oldSerial)
                                         .arg(HistoryLog::describe(replacement), holder));
                }
            } else if (token->itemSerial() == oldSerial && token->item() != replacement) {
                HistoryLog::line(QStringLiteral("Fix, replacing reference to %1 history tag %2 with %3 in %4")
                                     .arg(token->itemText())
                                     .arg(token->tag())
                                     .arg(HistoryLog::describe(replacement), holder));
                token->setItem(replacement);
            }
        }
        transaction->replaceSerial(oldSerial, replacement->serial());
    };
    for (QSciHistoryTransaction* transaction : qAsConst(m_undo))
        fix(transaction, transaction->name());
    for (QSciHistoryTransaction* transaction : qAsConst(m_redo))
        fix(transaction, transaction->name());
    if (m_current)
        fix(m_current, m_current->name());
    if (host)
        host->historyItemReplaced(oldSerial, replacement);
}

QStringList QSciHistoryManager::undoNames() const
{
    QStringList names;
    for (const QSciHistoryTransaction* transaction : m_undo)
        names.append(transaction->name());
    return names;
}

QStringList QSciHistoryManager::redoNames() const
{
    QStringList names;
    for (const QSciHistoryTransaction* transaction : m_redo)
        names.append(transaction->name());
    return names;
}

void QSciHistoryManager::forget(QSciHistoryHost* host)
{
    const auto drop = [host](QList<QSciHistoryTransaction*>& list) {
        for (int i = list.size() - 1; i >= 0; --i) {
            if (!host || list.at(i)->host() == host)
                delete list.takeAt(i);
        }
    };
    drop(m_undo);
    drop(m_redo);
    emit changed();
}

void QSciHistoryManager::cleanDirectory()
{
    HistoryLog::line(QStringLiteral("cleaning dir") + m_directory);
    QDir dir(m_directory);
    if (!dir.exists())
        return;
    const QStringList names = dir.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        if (!name.endsWith(QLatin1String(".tmp.img.velm")))
            continue;
        HistoryLog::plain(QStringLiteral("Remove ") + name);
        dir.remove(name);
    }
}
