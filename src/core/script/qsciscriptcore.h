#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <atomic>
#include <functional>

class QScriptEngine;
class QSciImage;
class QSciScriptHost;
class QThread;

/**
 * One script run: the engine with the global functions, the result area that the host (the GUI-thread side)
 * fills for the last command, and the done flag the script side polls. One core exists per run and the current
 * one is known process-wide. The core normally lives on a QSciScriptThread; made on the host's own thread
 * (a debugging run) every command is carried out at once.
 */
class QSciScriptCore final : public QObject {
    Q_OBJECT

public:
    /** What the host writes back for the last command. */
    struct Result {
        QSciImage* created = nullptr;
        bool loadSave = false;
        QString name;
        bool selected = false;
        QString message;
        /** Effects: 1 applied, 0 refused or stopped (message says why), -1 not available in this program. */
        int status = 0;
    };

    /** @p args become the script's global `args` object. */
    QSciScriptCore(QThread* owner, QSciScriptHost* host, const QMap<QString, QString>& args = {});
    ~QSciScriptCore() override;

    /** The core of the run in progress, or nullptr. */
    static QSciScriptCore* current();
    /**
     * Host side: @p write fills the current core's result area, then its done flag is set. Without a current
     * core (the run ended meanwhile) nothing happens.
     */
    static void deliver(const std::function<void(Result&)>& write);
    /** The engine of the run in progress, or nullptr. */
    static QScriptEngine* engine();
    /** Called on the run's thread just after its engine is made and just before it goes (the window's debugger). */
    static void setEngineHooks(std::function<void(QScriptEngine*)> made, std::function<void(QScriptEngine*)> ending);

    /**
     * The start step: makes the engine and asks the host to begin the history transaction; the script then runs
     * in continueExec(). False when the run ended at once: an empty text, one that cannot be evaluated, or a
     * stop requested before.
     */
    bool start(const QString& text);
    /** Script side: waits until the host has done the last command. False when a stop cut the wait short. */
    bool waitForDone();
    const Result& result() const { return m_result; }
    QSciScriptHost* host() const { return m_host; }

    /** From any thread: ends the evaluation at the next chance; a script cannot catch this. */
    void requestStop();
    bool stopRequested() const { return m_stop; }
    /** Whether the run ended with an uncaught exception or could not be evaluated. */
    bool failed() const { return m_failed; }

    /** The "[ERROR] line N, col M: message" line for @p text, or an empty text when its syntax is valid. */
    static QString syntaxErrorLine(const QString& text);
    /** What a finished run reports for its uncaught exception, the line it came from included. */
    QString uncaughtText() const;

public slots:
    /** Runs the kept text once the host has begun the transaction. */
    void continueExec();

signals:
    void scriptHistoryBegin(const QString& name);
    void scriptHistoryDone();
    void scriptHistoryCancel();
    void scriptLog(const QString& text, bool defaultOuput, const QString& outputText);
    /** A failure of the whole run, for a message box ("Error", "QSciScript error"). */
    void scriptError(const QString& title, const QString& text);
    /** The run is over, whichever way; the engine is gone. */
    void finished();

private slots:
    void abortEvaluation();

private:
    void initScripting();
    void endRun(bool threw);

    QThread* m_owner;
    QSciScriptHost* m_host;
    QMap<QString, QString> m_args;
    Result m_result;
    std::atomic<char> m_done { 0 };
    std::atomic<bool> m_stop { false };
    bool m_failed = false;
    bool m_ended = false;
    QString m_script;
    QString m_uncaught;
};
