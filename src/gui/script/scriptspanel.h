#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

class DocumentsDock;
class Project;
class QLabel;
class QPushButton;
class QScriptEngineDebugger;
class QSciScriptCore;
class QSciScriptThread;
class QTabWidget;
class ScriptEditor;
class TextsPanel;
class WindowScriptHost;

/**
 * The "Scripts" page: script pages as tabs, each a code editor, with new, open, save as, syntax check,
 * "Compile & Run", "Stop running script" and a debugger. A run goes on a thread of its own, so the window
 * stays responsive; a debugging run goes on the window's thread, where the debugger's windows live.
 */
class ScriptsPanel final : public QWidget {
    Q_OBJECT

public:
    ScriptsPanel(DocumentsDock* dock, Project* project, TextsPanel* texts);
    ~ScriptsPanel() override;

    std::function<QString(bool save, const QString& title, const QString& folder, const QString& filter)> chooseFile;
    /** Shows a failure of a run; the window's message box. */
    void setMessageHandler(const std::function<void(const QString& title, const QString& text)>& show);

    ScriptEditor* currentEditor() const;
    ScriptEditor* newScript(const QString& title = QString(), const QString& text = QString());
    [[nodiscard]] bool openScript(const QString& path, QString* message);
    [[nodiscard]] bool saveCurrent(const QString& path, QString* message);

    bool isRunning() const;
    /** "Compile & Run" on the current page. */
    void run();
    /** Runs the current page under the debugger, which stops at its first statement. */
    void debug();
    /** "Stop running script". */
    void stop();
    /** Appends the syntax check's line for the current page to the output page; aborts a running script. */
    void checkSyntax();
    /** Ends a run and waits for it, while the project still exists; the window calls this as it closes. */
    void shutdown();

signals:
    void runningChanged(bool running);

private:
    void updateButtons();
    void runFinished();
    QString chooseWithKey(bool save, const QString& title, const QString& filter);

    DocumentsDock* m_dock;
    WindowScriptHost* m_host;
    QTabWidget* m_tabs;
    QPushButton* m_run;
    QPushButton* m_stop;
    QPushButton* m_debug;
    QLabel* m_state;
    QPointer<QSciScriptThread> m_thread;
    QSciScriptCore* m_debugCore = nullptr;
    QScriptEngineDebugger* m_debugger = nullptr;
    int m_created = 0;
};
