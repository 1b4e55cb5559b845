#include "qsciffmpegexportworker.h"

#include "core/base/messages.h"
#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>

QSciFFMPEGExportWorker::QSciFFMPEGExportWorker(const QList<QImage>& frames, const Options& options)
    : m_frames(frames)
    , m_options(options)
{
}

void QSciFFMPEGExportWorker::run()
{
    QString message;
    const bool ok = encode(&message);
    emit finished(ok, message);
}

bool QSciFFMPEGExportWorker::encode(QString* message)
{
    const auto logCancel = [this] {
        if (*m_cancel && !m_cancelLogged) {
            m_cancelLogged = true;
            emit log(tr("Cancel requested..."));
        }
        return m_cancel->load();
    };
    const QString ffmpeg = FfmpegCommands::ffmpeg();
    if (m_frames.isEmpty() || !m_options.size.isValid() || m_options.fps < 1 || ffmpeg.isEmpty()) {
        *message = ffmpeg.isEmpty() ? tr("ffmpeg was not found.") : tr("Nothing to export.");
        return false;
    }
    // A folder of its own: the frame names are fixed, and two exports must not mix their frames.
    QDir().mkpath(m_options.tempDir);
    QTemporaryDir work(QDir(m_options.tempDir).filePath(QStringLiteral("ffmpeg_export-XXXXXX")));
    if (!work.isValid()) {
        *message = Messages::unableToWriteFile(m_options.tempDir);
        return false;
    }
    const int total = m_frames.size() + 1;
    for (int i = 0; i < m_frames.size(); ++i) {
        if (logCancel())
            return false;
        const QString name = work.filePath(FfmpegCommands::exportFrameName(i));
        if (!MovieFrames::fit(m_frames.at(i), m_options.size, m_options.oddSize).save(name, "PNG")) {
            *message = Messages::unableToWriteFile(name);
            return false;
        }
        emit progress(i + 1, total);
    }
    m_frames.clear();

    // ffmpeg picks the container by the suffix: the temporary name keeps it, and the movie appears only whole.
    const QFileInfo target(m_options.output);
    QString partial;
    {
        QTemporaryFile reserve(target.absolutePath() + QStringLiteral("/.") + target.completeBaseName()
            + QStringLiteral("-XXXXXX.") + target.suffix());
        if (!reserve.open()) {
            *message = Messages::unableToWriteFile(m_options.output);
            return false;
        }
        partial = reserve.fileName();
    } // removed again, so that ffmpeg does not ask whether to overwrite it

    const QSize size = MovieFrames::movieSize(m_options.size);
    emit log(tr("Starting encoder..."));
    FfmpegProcess process(
        ffmpeg, FfmpegCommands::exportMovie(m_options.fps, size.width(), size.height(), partial), work.path());
    const FfmpegProcess::Outcome outcome = process.run(
        *m_cancel, [&logCancel] { logCancel(); }, [this](const QString& line) { emit log(line); },
        [this](const QString& line) { emit log(line); });
    if (outcome == FfmpegProcess::Outcome::Cancelled || outcome == FfmpegProcess::Outcome::Stuck) {
        logCancel();
        emit log(tr("Encoder termianted"));
        QFile::remove(partial);
        *message = tr("Encoder termianted");
        return false;
    }
    if (outcome != FfmpegProcess::Outcome::Finished || process.exitCode() != 0 || !QFile::exists(partial)) {
        QFile::remove(partial);
        *message = tr("The encoder failed:") + QLatin1Char('\n') + process.tail();
        return false;
    }
    QFile::remove(m_options.output);
    if (!QFile::rename(partial, m_options.output)) {
        QFile::remove(partial);
        *message = Messages::unableToWriteFile(m_options.output);
        return false;
    }
    emit progress(total, total);
    emit log(tr("Finished"));
    return true;
}
