#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>

/**
 * One run of ffmpeg or ffprobe as a child process with an argument list (no shell), from whatever thread the
 * caller is on. The run polls a cancel flag while it waits and kills the child when it is set.
 */
class FfmpegProcess final {
public:
    enum class Outcome {
        Finished, ///< ended by itself; see exitCode()
        NotStarted,
        Cancelled, ///< killed on request
        Stuck, ///< killed, but did not go away
    };
    /** Receives the child's output (standard output and error merged) line by line, as it arrives. */
    using LineSink = std::function<void(const QString& line)>;

    FfmpegProcess(const QString& program, const QStringList& arguments, const QString& workingDir = QString());

    /**
     * Runs the child to its end. Between waits of @p pollMs it calls @p poll (may be empty) and looks at
     * @p cancel. @p report hears "FFMPegWorker: Process not going away!" when a killed child stays.
     */
    Outcome run(const std::atomic_bool& cancel, const std::function<void()>& poll = {}, const LineSink& lines = {},
        const LineSink& report = {}, int pollMs = 50);

    int exitCode() const { return m_exitCode; }
    /** The last lines the child printed, for error messages. */
    QString tail() const;

    /** How long a killed child is given to go away. */
    static constexpr int KillWaitMs = 5000;
    static QString notGoingAwayText();

private:
    void takeLines(const QByteArray& data, bool flush, const LineSink& lines);

    QString m_program;
    QStringList m_arguments;
    QString m_workingDir;
    int m_exitCode = -1;
    QByteArray m_pending;
    QStringList m_tail;
};
