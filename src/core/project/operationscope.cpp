#include "operationscope.h"

#include "collectiontab.h"
#include "project.h"

#include "core/history/qscihistorymanager.h"
#include "core/items/processinglog.h"

OperationScope::OperationScope(Project* project, CollectionTab* tab, const QString& name)
    : m_project(project)
    , m_tab(tab)
    , m_name(name)
{
    // Inside a running transaction (a script run, a tool's drag) the operation joins it.
    QSciHistoryManager* history = QSciHistoryManager::instance();
    if (history->isEnabled() && !history->inTransaction()) {
        history->beginTransaction(name, project, tab);
        m_owns = history->inTransaction();
    }
}

OperationScope::~OperationScope()
{
    if (m_open)
        cancel();
}

bool OperationScope::record(QSciImage* item, QSciImage::Parts parts)
{
    if (!m_busy && qint64(item->width()) * item->height() >= BusyPoints)
        m_busy = std::make_unique<BusyIndicator::Scope>();
    if (!QSciHistoryManager::instance()->saveItem(item, parts))
        return false;
    constexpr QSciImage::Parts logged = QSciImage::ZPart | QSciImage::MaskPart | QSciImage::ObjectsPart;
    if ((parts & logged) && !m_loggedSerials.contains(item->serial())) {
        m_loggedSerials.insert(item->serial());
        m_logged.append(item);
    }
    return true;
}

void OperationScope::recordCreated(QSciImage* item)
{
    QSciHistoryManager::instance()->recordCreated(item);
}

bool OperationScope::recordRemoval(QSciImage* item)
{
    return QSciHistoryManager::instance()->recordRemoval(item);
}

void OperationScope::recordOrder(CollectionTab* tab)
{
    QSciHistoryManager::instance()->recordOrder(tab);
}

void OperationScope::commit()
{
    if (!m_open)
        return;
    m_open = false;
    // The history saved the items before their lines were added, so undo takes a line away with its change;
    // a cancelled operation writes none.
    for (const QPointer<QSciImage>& item : qAsConst(m_logged))
        if (item)
            ProcessingLog::append(*item, m_name, m_logParameters);
    if (m_owns)
        QSciHistoryManager::instance()->commitTransaction();
    if (m_project)
        m_project->setModified(true);
}

void OperationScope::cancel()
{
    if (!m_open)
        return;
    m_open = false;
    if (m_owns)
        QSciHistoryManager::instance()->cancelTransaction();
}

void OperationScope::rollback()
{
    if (!m_open)
        return;
    m_open = false;
    if (m_owns)
        QSciHistoryManager::instance()->rollbackTransaction();
}
