#include "qsciscriptthread.h"

#include "qsciscriptcore.h"
#include "qsciscripthost.h"

#include <QMutexLocker>

QSciScriptThread::QSciScriptThread(
    const QString& script, QSciScriptHost* host, const QMap<QString, QString>& args, QObject* parent)
    : QThread(parent)
    , m_script(script)
    , m_host(host)
    , m_args(args)
{
    connect(this, &QThread::started, host, &QSciScriptHost::setScriptRunning);
    connect(this, &QThread::finished, host, &QSciScriptHost::setScriptStopped);
}

QSciScriptThread::~QSciScriptThread()
{
    requestStop();
    wait();
}

void QSciScriptThread::requestStop()
{
    m_stop = true;
    QMutexLocker lock(&m_coreMutex);
    if (m_core)
        m_core->requestStop();
}

void QSciScriptThread::run()
{
    auto* core = new QSciScriptCore(this, m_host, m_args);
    // The run ends its own event loop; a cooperative end leaves no lock or transaction behind.
    connect(
        core, &QSciScriptCore::finished, core, [this] { quit(); }, Qt::DirectConnection);
    {
        QMutexLocker lock(&m_coreMutex);
        m_core = core;
    }
    if (m_stop)
        core->requestStop();
    if (core->start(m_script))
        exec();
    m_failed = core->failed();
    {
        QMutexLocker lock(&m_coreMutex);
        m_core = nullptr;
    }
    delete core;
}
