#include "scriptspanel.h"

#include "scripteditor.h"
#include "windowscripthost.h"

#include "core/script/qsciscriptcore.h"
#include "core/script/qsciscriptthread.h"
#include "core/settings/options.h"
#include "gui/app/documentsdock.h"
#include "gui/app/outputpage.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QScriptEngineDebugger>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

QString scriptFilter()
{
    return ScriptsPanel::tr("Scripts (*.js);;All files (*)");
}

} // namespace

ScriptsPanel::ScriptsPanel(DocumentsDock* dock, Project* project, TextsPanel* texts)
    : QWidget(dock->scriptsPage())
    , m_dock(dock)
    , m_host(new WindowScriptHost(project, dock->outputPage(), texts, this))
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("scriptsPanel"));
    m_tabs->setObjectName(QStringLiteral("twScripts"));
    m_tabs->setDocumentMode(true);
    chooseFile = [this](bool save, const QString& title, const QString& folder, const QString& filter) {
        return save ? QFileDialog::getSaveFileName(this, title, folder, filter)
                    : QFileDialog::getOpenFileName(this, title, folder, filter);
    };
    setMessageHandler([this](const QString& title, const QString& text) {
        QMessageBox::critical(this, title, text, QMessageBox::Ok);
    });

    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(2, 0, 2, 0);
    const auto add = [this, bar, row](const char* objectName, const QString& text, auto slot) {
        auto* button = new QPushButton(text, bar);
        button->setObjectName(QLatin1String(objectName));
        connect(button, &QPushButton::clicked, this, slot);
        row->addWidget(button);
        return button;
    };
    add("pbNewScript", tr("New script"), [this] { newScript(); });
    add("pbOpenScript", tr("Open script..."), [this] {
        const QString path = chooseWithKey(false, tr("Open script"), scriptFilter());
        QString message;
        if (!path.isEmpty() && !openScript(path, &message))
            m_host->showMessage(tr("Scripts"), message);
    });
    add("pbSaveScriptAs", tr("Save script as..."), [this] {
        if (!currentEditor())
            return;
        QString path = chooseWithKey(true, tr("Save script as..."), scriptFilter());
        if (path.isEmpty())
            return;
        if (QFileInfo(path).suffix().isEmpty())
            path += QLatin1String(".js");
        QString message;
        if (!saveCurrent(path, &message))
            m_host->showMessage(tr("Scripts"), message);
    });
    add("pbCloseScript", tr("Close script"), [this] { delete currentEditor(); });
    row->addSpacing(12);
    add("pbCheckSyntax", tr("Check syntax"), [this] { checkSyntax(); });
    m_run = add("pbCompileAndRun", tr("Compile && Run"), [this] { run(); });
    m_stop = add("pbStopScript", tr("Stop running script"), [this] { stop(); });
    m_debug = add("pbDebugScript", tr("Debug"), [this] { debug(); });
    m_state = new QLabel(bar);
    m_state->setObjectName(QStringLiteral("lbScriptState"));
    row->addWidget(m_state);
    row->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_tabs, 1);
    DocumentsDock::fillPage(dock->scriptsPage(), this);

    connect(m_host, &WindowScriptHost::runningChanged, this, [this](bool running) {
        updateButtons();
        emit runningChanged(running);
    });
    // The debugger belongs to runs on this thread only: its windows cannot follow an engine on another.
    QSciScriptCore::setEngineHooks(
        [this](QScriptEngine* engine) {
            if (!m_debugCore || QThread::currentThread() != thread())
                return;
            m_debugger = new QScriptEngineDebugger(this);
            m_debugger->attachTo(engine);
            m_debugger->standardWindow()->resize(1000, 700);
            m_debugger->action(QScriptEngineDebugger::InterruptAction)->trigger();
        },
        [this](QScriptEngine*) {
            if (!m_debugger || QThread::currentThread() != thread())
                return;
            m_debugger->detach();
            if (QMainWindow* window = m_debugger->standardWindow())
                window->hide();
            m_debugger->deleteLater();
            m_debugger = nullptr;
        });
    newScript();
    updateButtons();
}

ScriptsPanel::~ScriptsPanel()
{
    shutdown();
    QSciScriptCore::setEngineHooks(nullptr, nullptr);
}

void ScriptsPanel::setMessageHandler(const std::function<void(const QString& title, const QString& text)>& show)
{
    m_host->showMessage = show;
}

ScriptEditor* ScriptsPanel::currentEditor() const
{
    return qobject_cast<ScriptEditor*>(m_tabs->currentWidget());
}

ScriptEditor* ScriptsPanel::newScript(const QString& title, const QString& text)
{
    auto* editor = new ScriptEditor(m_tabs);
    editor->setPlainText(text);
    m_tabs->setCurrentIndex(m_tabs->addTab(editor, title.isEmpty() ? tr("Script %1").arg(++m_created) : title));
    return editor;
}

bool ScriptsPanel::openScript(const QString& path, QString* message)
{
    QFile file(path);
    if (!file.exists()) {
        *message = tr("File does not exist") + QStringLiteral(": ") + path;
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        *message = tr("Unable to open file") + QStringLiteral(": ") + path;
        return false;
    }
    newScript(QFileInfo(path).fileName(), QString::fromUtf8(file.readAll()))->setFileName(path);
    return true;
}

bool ScriptsPanel::saveCurrent(const QString& path, QString* message)
{
    ScriptEditor* editor = currentEditor();
    if (!editor)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(editor->toPlainText().toUtf8()) < 0 || !file.commit()) {
        *message = tr("Unable to save to file") + QStringLiteral(": ") + path;
        return false;
    }
    editor->setFileName(path);
    m_tabs->setTabText(m_tabs->currentIndex(), QFileInfo(path).fileName());
    return true;
}

QString ScriptsPanel::chooseWithKey(bool save, const QString& title, const QString& filter)
{
    const QString key = QStringLiteral("MainWindow.scriptPath");
    QString folder = Options::getString(key, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    const QString chosen = chooseFile(save, title, folder, filter);
    if (!chosen.isEmpty())
        Options::setString(key, QFileInfo(chosen).absolutePath());
    return chosen;
}

bool ScriptsPanel::isRunning() const
{
    return m_thread || m_debugCore;
}

void ScriptsPanel::run()
{
    ScriptEditor* editor = currentEditor();
    if (!editor || isRunning())
        return;
    auto* thread = new QSciScriptThread(editor->toPlainText(), m_host, {}, this);
    m_thread = thread;
    connect(thread, &QThread::finished, this, &ScriptsPanel::runFinished);
    thread->start();
    updateButtons();
}

void ScriptsPanel::debug()
{
    ScriptEditor* editor = currentEditor();
    if (!editor || isRunning())
        return;
    QSciScriptCore core(thread(), m_host);
    m_debugCore = &core;
    m_host->setScriptRunning();
    // Every command is carried out at once on this thread; the debugger keeps the window alive while it waits.
    core.start(editor->toPlainText());
    m_debugCore = nullptr;
    m_host->setScriptStopped();
}

void ScriptsPanel::stop()
{
    if (m_thread)
        m_thread->requestStop();
    if (m_debugCore) {
        m_debugCore->requestStop();
        if (m_debugger)
            m_debugger->action(QScriptEngineDebugger::ContinueAction)->trigger();
    }
}

void ScriptsPanel::checkSyntax()
{
    ScriptEditor* editor = currentEditor();
    if (!editor)
        return;
    const QString line = QSciScriptCore::syntaxErrorLine(editor->toPlainText());
    m_dock->outputPage()->appendOutput(
        line.isEmpty() ? tr("No syntax errors found.").toHtmlEscaped() : line.toHtmlEscaped());
    if (!line.isEmpty() && isRunning())
        stop();
}

void ScriptsPanel::runFinished()
{
    if (m_thread)
        m_thread->deleteLater();
    m_thread = nullptr;
    updateButtons();
}

void ScriptsPanel::shutdown()
{
    if (m_thread) {
        m_thread->requestStop();
        m_thread->wait();
        delete m_thread;
    }
    if (m_debugCore)
        m_debugCore->requestStop();
    // A run cut off here leaves its transaction open; the host closes it while the project still exists.
    delete m_host;
    m_host = nullptr;
}

void ScriptsPanel::updateButtons()
{
    if (!m_host)
        return;
    const bool running = isRunning() || m_host->isRunning();
    m_run->setEnabled(!running);
    m_debug->setEnabled(!running);
    m_stop->setEnabled(running);
    m_state->setText(running ? tr("Script running...") : QString());
}
