#pragma once

#include <QList>
#include <QPointer>
#include <QString>

class QObject;
class QSciHistoryHost;
class QSciHistoryToken;
class QSciImage;

/**
 * One user-visible step: its name, its tokens in the order they were made, and the tab's item list
 * and stacking order as they were when it began.
 */
class QSciHistoryTransaction final {
public:
    QSciHistoryTransaction(const QString& name, QSciHistoryHost* host, QObject* tab);
    ~QSciHistoryTransaction();
    QSciHistoryTransaction(const QSciHistoryTransaction&) = delete;
    QSciHistoryTransaction& operator=(const QSciHistoryTransaction&) = delete;

    QString name() const { return m_name; }
    QSciHistoryHost* host() const { return m_host; }
    QObject* tab() const { return m_tab.data(); }
    const QList<QSciHistoryToken*>& tokens() const { return m_tokens; }
    void append(QSciHistoryToken* token) { m_tokens.append(token); }

    /** Serials of the tab's items in stacking order when the transaction began. */
    const QList<quint64>& orderAtBegin() const { return m_orderAtBegin; }
    /** A removed item came back as a new object: the snapshot now names it by its new serial. */
    void replaceSerial(quint64 oldSerial, quint64 newSerial);

private:
    QString m_name;
    QSciHistoryHost* m_host;
    QPointer<QObject> m_tab;
    QList<QSciHistoryToken*> m_tokens;
    QList<quint64> m_orderAtBegin;
};
