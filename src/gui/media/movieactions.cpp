#include "movieactions.h"

#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegversion.h"
#include "core/media/qsciffmpegimportworker.h"
#include "core/media/qscimovie.h"
#include "core/media/workerthread.h"
#include "core/project/collectiontab.h"
#include "core/project/movieimportqueue.h"
#include "core/project/project.h"
#include "core/settings/options.h"
#include "gui/media/formexportmovie.h"
#include "gui/media/formimportaviframes.h"

#include <QEventLoop>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

MovieActions::MovieActions(QWidget* window, Project* project, const Hooks& hooks)
    : QObject(window)
    , m_window(window)
    , m_project(project)
    , m_hooks(hooks)
    , m_importForm(new FormImportAVIframes(window))
    , m_exportForm(new FormExportMovie(window))
{
}

bool MovieActions::ensureFfmpeg()
{
    FfmpegVersion::Result result = FfmpegVersion::check(FfmpegCommands::ffmpeg());
    if (result.status == FfmpegVersion::Status::Missing) {
        QMessageBox box(QMessageBox::Information, result.title, result.message, QMessageBox::Close, m_window);
        box.setObjectName(QStringLiteral("ffmpegMissing"));
        QPushButton* choose = box.addButton(tr("Choose folder..."), QMessageBox::ActionRole);
        m_hooks.runDialog(&box);
        if (box.clickedButton() != choose)
            return false;
        const QString folder
            = QFileDialog::getExistingDirectory(m_window, tr("Select directory where your ffmpeg and ffprobe are"),
                Options::getPath(QStringLiteral("FormOptions.ffmpegPath"), Options::homeDir()));
        if (folder.isEmpty())
            return false;
        Options::setString(QStringLiteral("FormOptions.ffmpegPath"), folder);
        result = FfmpegVersion::check(FfmpegCommands::ffmpeg());
    }
    if (!result.passed())
        m_hooks.showMessage(result.title, result.message);
    return result.passed();
}

void MovieActions::importMovie()
{
    // Animated GIFs need no ffmpeg: the dialog opens either way and says what a movie file lacks.
    if (FfmpegCommands::ffmpeg().isEmpty())
        ensureFfmpeg();
    if (m_hooks.runDialog(m_importForm) != QDialog::Accepted || !m_importForm->movie())
        return;
    QString message;
    if (!importFrames(m_importForm->movie(), m_importForm->startSeconds(), m_importForm->frameCount(),
            m_importForm->scaleTo(), &message))
        m_hooks.showMessage(tr("Import movie"), message);
}

bool MovieActions::importFrames(
    const std::shared_ptr<QSciMovie>& movie, double seconds, int count, const QSize& scaleTo, QString* message)
{
    CollectionTab* tab = m_project->currentTab() ? m_project->currentTab() : m_project->addTab();
    MovieImportQueue queue(m_project, tab, movie->path(), count, scaleTo);
    const auto output = [this](const QString& line) {
        if (m_hooks.output)
            m_hooks.output(line.toHtmlEscaped());
    };
    connect(&queue, &MovieImportQueue::log, this, output);
    queue.start();

    auto* worker = new QSciFFMPEGImportWorker(movie, seconds, count, Options::tempDir());
    const std::shared_ptr<std::atomic_bool> abort = worker->abortFlag();
    QProgressDialog progress(tr("Importing movie"), tr("Cancel"), 0, count, m_window);
    progress.setObjectName(QStringLiteral("movieImportProgress"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    connect(&progress, &QProgressDialog::canceled, this, [&queue, abort] {
        *abort = true;
        queue.abort();
    });
    QEventLoop loop;
    bool ok = false;
    connect(worker, &QSciFFMPEGImportWorker::frameReady, &queue,
        [&queue, &progress](const QImage& frame, int number, double at) {
            queue.addFrame(frame, number, at);
            progress.setValue(number + 1);
        });
    connect(worker, &QSciFFMPEGImportWorker::log, this, output);
    connect(worker, &QSciFFMPEGImportWorker::failed, &loop, [message](const QString& text) { *message = text; });
    connect(worker, &QSciFFMPEGImportWorker::finished, &loop, [&ok, &loop](bool success, bool) {
        ok = success;
        loop.quit();
    });
    WorkerThread::start(worker, [worker] { worker->run(); });
    loop.exec();
    queue.finish(ok);
    return ok;
}

void MovieActions::exportMovie()
{
    const QList<QSciImage*> items = m_hooks.selectedItems();
    if (items.isEmpty()) {
        m_hooks.showMessage(tr("Export movie"), tr("Select the items to export first."));
        return;
    }
    if (!ensureFfmpeg())
        return;
    m_exportForm->setItems(items);
    m_hooks.runDialog(m_exportForm);
}
