#include "qsciffmpegimportworker.h"

#include "core/media/qscimovie.h"

#include <QCoreApplication>

QSciFFMPEGImportWorker::QSciFFMPEGImportWorker(
    std::shared_ptr<QSciMovie> movie, double seconds, int count, const QString& tempDir)
    : m_movie(std::move(movie))
    , m_seconds(seconds)
    , m_count(count)
    , m_tempDir(tempDir)
{
}

void QSciFFMPEGImportWorker::run()
{
    const double fps = m_movie->info().fps;
    QString message;
    const bool ok = m_movie->readFrames(
        m_seconds, m_count, m_tempDir, *m_abort,
        [this, fps](const QImage& frame, int number) {
            emit frameReady(frame, number, m_seconds + (fps > 0 ? number / fps : 0.0));
            return !m_abort->load();
        },
        &message, [this](const QString& line) { emit log(line); });
    const bool aborted = m_abort->load();
    if (!ok)
        emit failed(message);
    else if (aborted)
        emit log(QCoreApplication::translate("QSciFFMPEGImportWorker", "Worker aborted!"));
    else
        emit log(QCoreApplication::translate("QSciFFMPEGImportWorker", "Everything imported"));
    emit finished(ok, aborted);
}
