#include "cliargs.h"
#include "clicommand.h"

#include "core/base/messages.h"
#include "core/project/project.h"
#include "core/script/qsciscripthost.h"
#include "core/script/qsciscriptthread.h"
#include "core/script/scriptlog.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>

namespace {

/** The command line's stand-in for the window: the same operations, with stdout and stderr for its pages. */
class CliScriptHost final : public QSciScriptHost {
public:
    CliScriptHost(Project* project, CliContext& ctx)
        : QSciScriptHost(project)
        , m_ctx(ctx)
    {
    }

protected:
    void writeOutput(const QString& text, bool defaultOutput, const QString& outputName) override
    {
        if (!defaultOutput)
            m_ctx.out << outputName << ": ";
        m_ctx.out << text << Qt::endl;
    }
    void showError(const QString&, const QString& text) override { m_ctx.err << text << Qt::endl; }
    void reportMessage(const QString& text) override { m_ctx.err << text << Qt::endl; }

private:
    CliContext& m_ctx;
};

int runScript(CliContext& ctx, CliArgs& args)
{
    QMap<QString, QString> scriptArgs;
    const QStringList given = args.takeAll(QStringLiteral("--arg"));
    for (const QString& arg : given) {
        const int equals = arg.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            ctx.err << "--arg needs NAME=VALUE, got: " << arg << Qt::endl;
            return CliUsage;
        }
        scriptArgs.insert(arg.left(equals), arg.mid(equals + 1));
    }
    QString problem = args.usageError();
    if (problem.isEmpty() && args.positional().size() != 1)
        problem = QStringLiteral("expected one script file");
    if (!problem.isEmpty()) {
        ctx.err << problem << Qt::endl;
        return CliUsage;
    }
    const QString path = args.positional().first();
    if (!QFileInfo::exists(path))
        return ctx.fail(Messages::fileDoesNotExist(path));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ctx.fail(Messages::unableToOpenFile(path));
    const QString text = QString::fromUtf8(file.readAll());

    ScriptLog::setQuiet(true);
    Project project;
    project.addTab();
    CliScriptHost host(&project, ctx);
    QSciScriptThread thread(text, &host, scriptArgs);
    QEventLoop loop;
    QObject::connect(&thread, &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    thread.start();
    loop.exec();
    // What the run posted before it ended (its last lines, the end of its transaction) is handled first.
    QCoreApplication::processEvents();
    return thread.failed() ? CliFailure : CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("script"),
    QStringLiteral("script FILE.js [--arg NAME=VALUE]..."),
    QStringLiteral("runs a script with no window; sciPrint writes to stdout, the --arg values are its `args` object"),
    runScript, 70 } });

} // namespace
