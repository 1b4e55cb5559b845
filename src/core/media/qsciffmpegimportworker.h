#pragma once

#include <QImage>
#include <QObject>
#include <atomic>
#include <memory>

class QSciMovie;

/** Reads a range of frames of a movie on a thread of its own and hands each one on as it arrives. */
class QSciFFMPEGImportWorker final : public QObject {
    Q_OBJECT

public:
    QSciFFMPEGImportWorker(std::shared_ptr<QSciMovie> movie, double seconds, int count, const QString& tempDir);
    /** Any thread: stops at the next frame and kills the child. */
    void abort() { *m_abort = true; }
    /** The flag abort() sets, for callers that may outlive the worker. */
    std::shared_ptr<std::atomic_bool> abortFlag() const { return m_abort; }
    /** The job: frameReady() per frame, then failed() when the movie could not be read, then finished(). */
    void run();

signals:
    /** Frame @p number from 0, @p seconds into the movie. */
    void frameReady(const QImage& frame, int number, double seconds);
    void failed(const QString& message);
    void log(const QString& line);
    /** @p ok is false after failed(); @p aborted when abort() ended the read. */
    void finished(bool ok, bool aborted);

private:
    std::shared_ptr<QSciMovie> m_movie;
    double m_seconds;
    int m_count;
    QString m_tempDir;
    std::shared_ptr<std::atomic_bool> m_abort = std::make_shared<std::atomic_bool>(false);
};
