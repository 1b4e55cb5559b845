#pragma once

#include <QMap>
#include <QMutex>
#include <QThread>
#include <atomic>

class QSciScriptCore;
class QSciScriptHost;

/**
 * The thread a script runs on. Its run() makes the run's QSciScriptCore, starts the script and serves the
 * thread's events until the run is over. The host hears started() as setScriptRunning() and finished() as
 * setScriptStopped().
 */
class QSciScriptThread final : public QThread {
    Q_OBJECT

public:
    QSciScriptThread(const QString& script, QSciScriptHost* host, const QMap<QString, QString>& args = {},
        QObject* parent = nullptr);
    /** Stops the run and waits for it. */
    ~QSciScriptThread() override;

    /** From any thread: ends the running script, even one busy in an endless loop. */
    void requestStop();
    /** After the run: whether it threw or could not be evaluated. */
    bool failed() const { return m_failed; }

protected:
    void run() override;

private:
    QString m_script;
    QSciScriptHost* m_host;
    QMap<QString, QString> m_args;
    QMutex m_coreMutex;
    QSciScriptCore* m_core = nullptr;
    std::atomic<bool> m_stop { false };
    std::atomic<bool> m_failed { false };
};
