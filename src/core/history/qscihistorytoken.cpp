#include "qscihistorytoken.h"

#include "historylog.h"

#include "core/items/itemfile.h"

#include <QFile>
#include <QFileInfo>

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
    QString message;
    // The header always goes along: it carries the size the matrices are read back with.
    if (!ItemFile::save(*m_item, file, m_parts | QSciImage::HeaderPart, true, false, &message)) {
        HistoryLog::line(QStringLiteral("Could not save %1: %2").arg(m_itemText, message));
        return false;
    }
    return true;
}

bool QSciHistoryToken::save(quint32 newTag)
{
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
    if (!m_item || m_file.isEmpty())
        return false;
    const QString oldFile = m_file;
    const quint64 oldSize = m_size;
    const QPoint oldPosition = m_position;
    const bool oldVisible = m_visible, oldSelected = m_selected;
    const QString newFile = fileFor(newTag);
    if (!write(newFile))
        return false;
    const QPoint newPosition = m_position;
    const bool newVisible = m_visible, newSelected = m_selected;
    m_position = oldPosition;
    m_visible = oldVisible;
    m_selected = oldSelected;
    const bool restored = restoreInto(m_item);
    QFile::remove(oldFile);
    *m_heldBytes -= qMin(*m_heldBytes, oldSize);
    m_tag = newTag;
    m_file = newFile;
    m_size = quint64(QFileInfo(newFile).size());
    *m_heldBytes += m_size;
    m_position = newPosition;
    m_visible = newVisible;
    m_selected = newSelected;
    return restored;
}

bool QSciHistoryToken::restoreInto(QSciImage* into) const
{
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
    return true;
}

void QSciHistoryToken::dropFile()
{
    if (m_file.isEmpty())
        return;
    QFile::remove(m_file);
    *m_heldBytes -= qMin(*m_heldBytes, m_size);
    m_size = 0;
    m_file.clear();
}
