#pragma once

#include "core/media/movieframes.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QSize>
#include <atomic>
#include <memory>

/**
 * Encodes frames as an H.264 movie through ffmpeg on a thread of its own: writes them as numbered PNG files into
 * a private working folder, runs the encoder there, and puts the movie in place only when it succeeded.
 */
class QSciFFMPEGExportWorker final : public QObject {
    Q_OBJECT

public:
    struct Options {
        QString output; ///< the movie file
        int fps = 10;
        QSize size; ///< the frames' size before odd sides are fixed
        MovieFrames::OddSize oddSize = MovieFrames::OddSize::Pad;
        QString tempDir; ///< where the working folder is made
    };

    /** @p frames are copies, so the items may change while the movie is made. */
    QSciFFMPEGExportWorker(const QList<QImage>& frames, const Options& options);
    /** Any thread: the encoder is killed at its next poll. */
    void cancel() { *m_cancel = true; }
    /** The flag cancel() sets, for callers that may outlive the worker. */
    std::shared_ptr<std::atomic_bool> cancelFlag() const { return m_cancel; }
    /** The job: log lines and progress as it goes, then finished(). */
    void run();
    /** The same, returning the result instead of only signalling it; for callers without an event loop. */
    bool encode(QString* message);

signals:
    void log(const QString& line);
    /** @p done of @p total frames written; the encoder's run counts as the last step. */
    void progress(int done, int total);
    void finished(bool ok, const QString& message);

private:
    QList<QImage> m_frames;
    Options m_options;
    std::shared_ptr<std::atomic_bool> m_cancel = std::make_shared<std::atomic_bool>(false);
    bool m_cancelLogged = false;
};
