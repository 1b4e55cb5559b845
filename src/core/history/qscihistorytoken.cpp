#include "qscihistorytoken.h"

#include "historylog.h"

#include "core/items/itemfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QThreadPool>
#include <QtConcurrent>
#include <memory>

namespace {

/** One writer thread of its own: background saves never take the threads that compress their blocks. */
QThreadPool* writerPool()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(1);
    return &pool;
}

QSet<QSciHistoryToken*>& pendingTokens()
{
    static QSet<QSciHistoryToken*> set;
    return set;
}

} // namespace

QSciHistoryToken::QSciHistoryToken(
    quint32 tag, int mode, QSciImage* item, QSciImage::Parts parts, const QString& directory, quint64* heldBytes)
    : m_tag(tag)
    , m_mode(mode)
    , m_parts(parts)
    , m_directory(directory)
    , m_heldBytes(heldBytes)
{
    setItem(item);
    // Place or display alone is not a readable item file; such requests save the whole item.
    if (m_parts == QSciImage::Parts(QSciImage::PositionPart) || m_parts == QSciImage::Parts(QSciImage::DisplayPart))
        m_parts = QSciImage::AllParts;
}

QSciHistoryToken::~QSciHistoryToken()
{
    settle();
    HistoryLog::line(QStringLiteral("Destroy %1 delete data files for %2").arg(m_tag).arg(m_itemText));
    dropFile();
}

void QSciHistoryToken::setItem(QSciImage* item)
{
    m_item = item;
    m_serial = item ? item->serial() : 0;
    m_itemText = HistoryLog::describe(item);
}

QString QSciHistoryToken::fileFor(quint32 tag) const
{
    return m_directory + QStringLiteral("velmorahist") + QString::number(tag) + QStringLiteral(".tmp.img.velm");
}

bool QSciHistoryToken::write(const QString& file)
{
    m_position = QPoint(m_item->left(), m_item->top());
    m_visible = m_item->isVisible();
    m_selected = m_item->isSelected();
    m_creationTime = m_item->creationTime();
    m_itemFileName = m_item->fileName();
    QString message;
    // The header always goes along: it carries the size the matrices are read back with.
    if (!ItemFile::save(*m_item, file, m_parts | QSciImage::HeaderPart, true, false, &message)) {
        HistoryLog::line(QStringLiteral("Could not save %1: %2").arg(m_itemText, message));
        m_lastError = message;
        return false;
    }
    return true;
}

bool QSciHistoryToken::save(quint32 newTag)
{
    settle();
    if (!m_item)
        return false;
    dropFile();
    m_tag = newTag;
    const QString file = fileFor(newTag);
    if (!write(file))
        return false;
    m_file = file;
    m_size = quint64(QFileInfo(file).size());
    *m_heldBytes += m_size;
    return true;
}

bool QSciHistoryToken::swap(quint32 newTag)
{
    settle();
    if (!m_item || m_file.isEmpty())
        return false;
    // The copy shares the item's matrices; reading the old file gives the item new ones, so the copy
    // keeps exactly the state that redo needs while it is written in the background.
    std::shared_ptr<QSciImage> present(m_item->duplicate());
    present->setPosition(m_item->left(), m_item->top());
    present->setVisible(m_item->isVisible());
    present->setSelected(m_item->isSelected());
    // What the user chose since stays as it is: an undo brings back content and place, not the selection.
    const bool selected = m_item->isSelected();
    const int stackingPlace = m_item->zPosInImageList();
    const QString tabText = m_item->tabText();
    if (!restoreInto(m_item))
        return false; // the old file stays for another attempt
    m_item->setSelected(selected);
    m_item->setZPosInImageList(stackingPlace);
    m_item->setTabText(tabText);
    QFile::remove(m_file);
    *m_heldBytes -= qMin(*m_heldBytes, m_size);
    m_size = 0;
    m_tag = newTag;
    m_file = fileFor(newTag);
    m_position = QPoint(present->left(), present->top());
    m_visible = present->isVisible();
    m_selected = present->isSelected();
    m_present = present;
    const QSciImage* source = present.get(); // only m_present owns it: it is released on this thread
    const QString file = m_file;
    const QSciImage::Parts parts = m_parts | QSciImage::HeaderPart;
    m_pending = QtConcurrent::run(
        writerPool(), [source, file, parts]() { return ItemFile::write(*source, file, parts, true, nullptr); });
    pendingTokens().insert(this);
    return true;
}

void QSciHistoryToken::settle()
{
    if (!pendingTokens().remove(this))
        return;
    m_pending.waitForFinished();
    m_present.reset();
    if (m_pending.result()) {
        m_size = quint64(QFileInfo(m_file).size());
        *m_heldBytes += m_size;
    } else {
        HistoryLog::line(QStringLiteral("Could not save %1 in %2").arg(m_itemText, m_file));
        m_file.clear();
    }
}

void QSciHistoryToken::settleAll()
{
    const QSet<QSciHistoryToken*> pending = pendingTokens();
    for (QSciHistoryToken* token : pending)
        token->settle();
}

bool QSciHistoryToken::restoreInto(QSciImage* into) const
{
    const_cast<QSciHistoryToken*>(this)->settle();
    if (m_file.isEmpty() || !into)
        return false;
    QString message;
    if (!ItemFile::load(*into, m_file, false, true, &message)) {
        HistoryLog::line(message);
        return false;
    }
    into->setPosition(m_position.x(), m_position.y());
    into->setVisible(m_visible);
    into->setSelected(m_selected);
    if (m_creationTime.isValid())
        into->setCreationTime(m_creationTime);
    into->setFileName(m_itemFileName);
    return true;
}

void QSciHistoryToken::dropFile()
{
    settle();
    if (m_file.isEmpty())
        return;
    QFile::remove(m_file);
    *m_heldBytes -= qMin(*m_heldBytes, m_size);
    m_size = 0;
    m_file.clear();
}
