#include "qsciscriptcore.h"

#include "qsciscripthost.h"
#include "qsciscriptimage.h"
#include "scriptlog.h"

#include <QMutex>
#include <QMutexLocker>
#include <QScriptEngine>
#include <QScriptValueIterator>
#include <QThread>

namespace {

QMutex currentMutex;
QSciScriptCore* currentCore = nullptr;
// One engine for the process: one run at a time, and the debugger attaches to it.
QScriptEngine* scriptEngine = nullptr;
std::function<void(QScriptEngine*)> engineMade;
std::function<void(QScriptEngine*)> engineEnding;

// Often enough for Stop to end a busy loop at once, rarely enough to cost nothing.
constexpr int ProcessEventsIntervalMs = 20;

QScriptValue sciPrint(QScriptContext* context, QScriptEngine*)
{
    QSciScriptCore* core = QSciScriptCore::current();
    const QString text = context->argument(0).toString();
    emit core->scriptLog(text, true, QString());
    core->waitForDone();
    return QScriptValue(true);
}

QScriptValue sciPrintText(QScriptContext* context, QScriptEngine*)
{
    QSciScriptCore* core = QSciScriptCore::current();
    const QString text = context->argument(0).toString();
    const QString output = context->argument(1).toString();
    emit core->scriptLog(text, false, output);
    core->waitForDone();
    return QScriptValue(true);
}

// The look-ups hand back no wrappers: scripts reach items only through `new sciImage(...)`.
QScriptValue qsciGetActiveImages(QScriptContext*, QScriptEngine* engine)
{
    return engine->newArray();
}

QScriptValue qsciGetAllImages(QScriptContext*, QScriptEngine* engine)
{
    return engine->newArray();
}

QScriptValue qsciGetImageByName(QScriptContext* context, QScriptEngine*)
{
    if (context->argument(0).toString().isEmpty())
        return context->throwValue(QScriptValue(QSciScriptCore::tr("qsciGetImageByName: No name given!")));
    return QScriptValue(QScriptValue::NullValue);
}

QScriptValue constructImage(QScriptContext* context, QScriptEngine* engine)
{
    context->argument(0).toString();
    auto* image = new QSciScriptImage;
    if (!image->create()) {
        delete image;
        return context->throwValue(QScriptValue(QSciScriptCore::tr("The item could not be made.")));
    }
    return engine->newQObject(image, QScriptEngine::ScriptOwnership,
        QScriptEngine::ExcludeSuperClassContents | QScriptEngine::ExcludeDeleteLater);
}

void registerFunction(QScriptEngine* engine, const char* name, QScriptEngine::FunctionSignature function)
{
    engine->globalObject().setProperty(
        QLatin1String(name), engine->newFunction(function), QScriptValue::KeepExistingFlags);
    ScriptLog::line(QStringLiteral("QSciScriptCore: Registered function ") + QLatin1String(name));
}

} // namespace

QSciScriptCore::QSciScriptCore(QThread* owner, QSciScriptHost* host, const QMap<QString, QString>& args)
    : m_owner(owner)
    , m_host(host)
    , m_args(args)
{
    connect(this, &QSciScriptCore::scriptHistoryBegin, host, &QSciScriptHost::scriptHistoryBegin);
    connect(this, &QSciScriptCore::scriptHistoryDone, host, &QSciScriptHost::scriptHistoryDone);
    connect(this, &QSciScriptCore::scriptHistoryCancel, host, &QSciScriptHost::scriptHistoryCancel);
    connect(host, &QSciScriptHost::scriptHistoryBegun, this, &QSciScriptCore::continueExec);
    connect(this, &QSciScriptCore::scriptLog, host, &QSciScriptHost::scriptLog);
    connect(this, &QSciScriptCore::scriptError, host, &QSciScriptHost::scriptError);
    QMutexLocker lock(&currentMutex);
    currentCore = this;
}

QSciScriptCore::~QSciScriptCore()
{
    QMutexLocker lock(&currentMutex);
    if (currentCore == this)
        currentCore = nullptr;
}

QSciScriptCore* QSciScriptCore::current()
{
    QMutexLocker lock(&currentMutex);
    return currentCore;
}

void QSciScriptCore::deliver(const std::function<void(Result&)>& write)
{
    QMutexLocker lock(&currentMutex);
    if (!currentCore)
        return;
    if (write)
        write(currentCore->m_result);
    currentCore->m_done = 1;
}

QScriptEngine* QSciScriptCore::engine()
{
    return scriptEngine;
}

void QSciScriptCore::setEngineHooks(
    std::function<void(QScriptEngine*)> made, std::function<void(QScriptEngine*)> ending)
{
    engineMade = std::move(made);
    engineEnding = std::move(ending);
}

void QSciScriptCore::initScripting()
{
    ScriptLog::line(QStringLiteral("Init scripting "));
    scriptEngine = new QScriptEngine;
    scriptEngine->setProcessEventsInterval(ProcessEventsIntervalMs);
    if (engineMade)
        engineMade(scriptEngine);
    registerFunction(scriptEngine, "sciPrint", sciPrint);
    registerFunction(scriptEngine, "sciPrintText", sciPrintText);
    registerFunction(scriptEngine, "qsciGetActiveImages", qsciGetActiveImages);
    registerFunction(scriptEngine, "qsciGetAllImages", qsciGetAllImages);
    registerFunction(scriptEngine, "qsciGetImageByName", qsciGetImageByName);
    const QScriptValue imageClass
        = scriptEngine->newQMetaObject(&QSciScriptImage::staticMetaObject, scriptEngine->newFunction(constructImage));
    scriptEngine->globalObject().setProperty(QStringLiteral("sciImage"), imageClass, QScriptValue::KeepExistingFlags);
    ScriptLog::line(QStringLiteral("QSciScriptCore: Registered object sciImage"));

    QScriptValue args = scriptEngine->newObject();
    for (auto it = m_args.cbegin(); it != m_args.cend(); ++it)
        args.setProperty(it.key(), QScriptValue(it.value()));
    scriptEngine->globalObject().setProperty(QStringLiteral("args"), args);
}

bool QSciScriptCore::start(const QString& text)
{
    if (text.isEmpty()) {
        emit finished();
        return false;
    }
    initScripting();
    if (!scriptEngine->canEvaluate(text)) {
        m_failed = true;
        emit scriptError(tr("Error"), tr("This script can not be evaluated!"));
        if (engineEnding)
            engineEnding(scriptEngine);
        delete scriptEngine;
        scriptEngine = nullptr;
        emit finished();
        return false;
    }
    m_script = text;
    emit scriptHistoryBegin(tr("Script execution"));
    // Stopped before it began: the transaction may never come (the window is closing).
    if (m_stop)
        continueExec();
    return !m_ended;
}

void QSciScriptCore::continueExec()
{
    if (!scriptEngine)
        return;
    if (!m_stop)
        scriptEngine->evaluate(m_script, tr("unnamed sciscript"), 1);
    const bool threw = scriptEngine->hasUncaughtException();
    if (threw) {
        m_uncaught = tr("Script threw an uncaught exception:") + QLatin1Char(' ')
            + scriptEngine->uncaughtException().toString() + QLatin1Char(' ')
            + tr("(line %1)").arg(scriptEngine->uncaughtExceptionLineNumber());
    } else {
        scriptEngine->collectGarbage();
    }
    endRun(threw);
}

void QSciScriptCore::endRun(bool threw)
{
    if (m_stop)
        emit scriptLog(tr("Script stopped."), true, QString());
    if (threw) {
        m_failed = true;
        emit scriptError(tr("QSciScript error"), m_uncaught);
        emit scriptHistoryCancel();
    } else {
        emit scriptHistoryDone();
    }
    if (engineEnding)
        engineEnding(scriptEngine);
    // The script's items say "commit" as the engine lets go of them.
    delete scriptEngine;
    scriptEngine = nullptr;
    m_ended = true;
    emit finished();
}

bool QSciScriptCore::waitForDone()
{
    while (!m_done.exchange(0)) {
        if (m_stop)
            return false;
        QThread::msleep(1);
    }
    return true;
}

void QSciScriptCore::requestStop()
{
    m_stop = true;
    if (QThread::currentThread() == thread())
        abortEvaluation();
    else
        QMetaObject::invokeMethod(this, &QSciScriptCore::abortEvaluation, Qt::QueuedConnection);
}

void QSciScriptCore::abortEvaluation()
{
    if (!scriptEngine)
        return;
    if (scriptEngine->isEvaluating())
        scriptEngine->abortEvaluation();
    else
        continueExec(); // still waiting for the transaction, which may never come: end without evaluating
}

QString QSciScriptCore::uncaughtText() const
{
    return m_uncaught;
}

QString QSciScriptCore::syntaxErrorLine(const QString& text)
{
    const QScriptSyntaxCheckResult check = QScriptEngine::checkSyntax(text);
    if (check.state() == QScriptSyntaxCheckResult::Valid)
        return QString();
    const QString message = check.errorMessage().isEmpty() ? tr("Syntax error.") : check.errorMessage();
    return QStringLiteral("[") + tr("ERROR") + QStringLiteral("] ") + tr("line") + QLatin1Char(' ')
        + QString::number(check.errorLineNumber()) + QStringLiteral(", ") + tr("col") + QLatin1Char(' ')
        + QString::number(check.errorColumnNumber()) + QStringLiteral(": ") + message;
}
