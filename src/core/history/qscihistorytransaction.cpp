#include "qscihistorytransaction.h"

#include "qscihistoryhost.h"
#include "qscihistorytoken.h"

#include "core/items/qsciimage.h"

QSciHistoryTransaction::QSciHistoryTransaction(const QString& name, QSciHistoryHost* host, QObject* tab)
    : m_name(name)
    , m_host(host)
    , m_tab(tab)
{
    if (host && tab) {
        for (const QSciImage* item : host->historyTabItems(tab))
            m_orderAtBegin.append(item->serial());
    }
}

QSciHistoryTransaction::~QSciHistoryTransaction()
{
    qDeleteAll(m_tokens);
}

void QSciHistoryTransaction::replaceSerial(quint64 oldSerial, quint64 newSerial)
{
    const int at = m_orderAtBegin.indexOf(oldSerial);
    if (at >= 0)
        m_orderAtBegin[at] = newSerial;
}
