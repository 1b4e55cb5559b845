#include "qsciffmpegpreviewworker.h"

#include "core/media/qscimovie.h"

QSciFFMPEGPreviewWorker::QSciFFMPEGPreviewWorker(
    std::shared_ptr<QSciMovie> movie, double seconds, const QString& tempDir)
    : m_movie(std::move(movie))
    , m_seconds(seconds)
    , m_tempDir(tempDir)
{
}

void QSciFFMPEGPreviewWorker::run()
{
    QImage frame;
    QString message;
    if (m_movie->preview(
            m_seconds, m_tempDir, *m_cancel, &frame, &message, [this](const QString& line) { emit log(line); }))
        emit frameReady(frame, m_seconds);
    else if (!*m_cancel)
        emit failed(message);
    emit finished();
}
