#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>

class OperationScope;
class Project;
class QSciImage;

/**
 * The side of a script run that lives on the thread owning the items (the GUI thread in the window, the main
 * thread in velmora-cli): it opens and ends the run's history transaction and carries out the commands of the
 * script image API through the project's operations, writing each result back to the current core. The window
 * and the command line derive from it only to say where output and errors go.
 */
class QSciScriptHost : public QObject {
    Q_OBJECT

public:
    explicit QSciScriptHost(Project* project, QObject* parent = nullptr);
    /** Ends a run's transaction still open (the run was cut off): what it changed stays undoable. */
    ~QSciScriptHost() override;

    Project* project() const { return m_project; }
    bool isRunning() const { return m_running; }

    /**
     * The one place scripts reach object recognition: runs it on @p item with the recognition options as the
     * processing dialog stored them, as the first item of a series (no previous objects, no reference object).
     * Returns 1 when done, 0 when stopped or refused, with @p message either way.
     */
    virtual int objectRecognition(QSciImage& item, QString* message);

public slots:
    void scriptHistoryBegin(const QString& name);
    void scriptHistoryDone();
    void scriptHistoryCancel();
    void scriptLog(const QString& text, bool defaultOutput, const QString& outputText);
    void scriptError(const QString& title, const QString& text);
    void setScriptRunning();
    void setScriptStopped();
    void workImage(const QString& command, QSciImage* img, const QStringList& params);

signals:
    void scriptHistoryBegun();
    void runningChanged(bool running);

protected:
    /** Text for the default output page, or for the text output named @p outputName. */
    virtual void writeOutput(const QString& text, bool defaultOutput, const QString& outputName) = 0;
    /** A failure of the whole run ("Error", "QSciScript error"). */
    virtual void showError(const QString& title, const QString& text) = 0;
    /** A failed load or save: the output page in the window. */
    virtual void reportMessage(const QString& text) { writeOutput(text, true, QString()); }
    /** @p item's selection changed by a script; the window brings its list in step. */
    virtual void selectionChanged(QSciImage* item) { Q_UNUSED(item) }

private:
    /** The item, when it still lies on a tab of the project: the user may have deleted it meanwhile. */
    QSciImage* live(QSciImage* item) const;
    void endTransaction(bool rollback);
    void leaveEditMode();
    void createItem();
    void loadOrSave(QSciImage* item, bool save, const QString& path);
    void runEffect(const QString& command, QSciImage* item, const QStringList& params);

    Project* m_project;
    std::unique_ptr<OperationScope> m_scope;
    QList<QPointer<QSciImage>> m_editing;
    bool m_running = false;
};
