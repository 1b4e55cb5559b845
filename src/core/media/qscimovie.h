#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>

/**
 * A movie to import from: its frames, read in order from a start time, and single frames for a preview.
 * The reads block and may take long; the workers run them on threads of their own and pass a cancel flag.
 */
class QSciMovie {
public:
    struct Info {
        QSize size;
        double fps = 0;
        double duration = 0; ///< seconds
        int frameCount = 0;
    };
    /** Takes frame @p number (from 0 for the first frame read); false stops the read. */
    using FrameSink = std::function<bool(const QImage& frame, int number)>;
    /** Hears the lines worth logging. */
    using LogSink = std::function<void(const QString& line)>;

    virtual ~QSciMovie() = default;

    /** An animated GIF (by its signature) read directly, anything else through ffprobe and ffmpeg. */
    [[nodiscard]] static std::unique_ptr<QSciMovie> open(const QString& path, QString* message);

    /** False for an animated GIF (by its signature), which is read without ffmpeg. */
    static bool needsFfmpeg(const QString& path);

    QString path() const { return m_path; }
    const Info& info() const { return m_info; }
    /** Whether reading needs the ffmpeg programs (and so their version check first). */
    virtual bool usesFfmpeg() const = 0;

    /** The frame shown at @p seconds; working files go to @p tempDir and are gone afterwards. */
    [[nodiscard]] virtual bool preview(double seconds, const QString& tempDir, const std::atomic_bool& cancel,
        QImage* frame, QString* message, const LogSink& log = {})
        = 0;
    /**
     * Hands up to @p count frames from @p seconds on to @p sink, one after the other. True when the read ended
     * (also when cancelled or stopped by the sink); false with a message when the movie could not be read.
     */
    [[nodiscard]] virtual bool readFrames(double seconds, int count, const QString& tempDir,
        const std::atomic_bool& cancel, const FrameSink& sink, QString* message, const LogSink& log = {})
        = 0;

    /** "FFMPEG can't read file: " and the path. */
    static QString cannotReadText(const QString& path);
    /** The message for a seek time past the movie's end. */
    static QString seekText(double seconds, double duration);

protected:
    [[nodiscard]] virtual bool load(const QString& path, QString* message) = 0;

    QString m_path;
    Info m_info;
};
