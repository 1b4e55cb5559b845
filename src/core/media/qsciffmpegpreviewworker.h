#pragma once

#include <QImage>
#include <QObject>
#include <atomic>
#include <memory>

class QSciMovie;

/** Reads one frame of a movie at a seek time, on a thread of its own (see WorkerThread). */
class QSciFFMPEGPreviewWorker final : public QObject {
    Q_OBJECT

public:
    QSciFFMPEGPreviewWorker(std::shared_ptr<QSciMovie> movie, double seconds, const QString& tempDir);
    /** Any thread: kills the child at the next poll. */
    void cancel() { *m_cancel = true; }
    /** The flag cancel() sets, for callers that may outlive the worker. */
    std::shared_ptr<std::atomic_bool> cancelFlag() const { return m_cancel; }
    /** The job: emits frameReady() or failed(), then finished(). */
    void run();

signals:
    void frameReady(const QImage& frame, double seconds);
    void failed(const QString& message);
    void log(const QString& line);
    void finished();

private:
    std::shared_ptr<QSciMovie> m_movie;
    double m_seconds;
    QString m_tempDir;
    std::shared_ptr<std::atomic_bool> m_cancel = std::make_shared<std::atomic_bool>(false);
};
