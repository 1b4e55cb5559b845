#include "ffmpegprocess.h"

#include <QProcess>

FfmpegProcess::FfmpegProcess(const QString& program, const QStringList& arguments, const QString& workingDir)
    : m_program(program)
    , m_arguments(arguments)
    , m_workingDir(workingDir)
{
}

QString FfmpegProcess::notGoingAwayText()
{
    return QStringLiteral("FFMPegWorker: Process not going away!");
}

FfmpegProcess::Outcome FfmpegProcess::run(const std::atomic_bool& cancel, const std::function<void()>& poll,
    const LineSink& lines, const LineSink& report, int pollMs)
{
    QProcess process;
    // ffmpeg asks on its standard input before it overwrites a file; it must never wait for an answer.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (!m_workingDir.isEmpty())
        process.setWorkingDirectory(m_workingDir);
    process.start(m_program, m_arguments);
    if (!process.waitForStarted(10000))
        return Outcome::NotStarted;
    while (true) {
        const bool ended = process.waitForFinished(pollMs);
        takeLines(process.readAll(), ended, lines);
        if (ended)
            break;
        if (poll)
            poll();
        if (cancel.load()) {
            process.kill();
            if (!process.waitForFinished(KillWaitMs)) {
                if (report)
                    report(notGoingAwayText());
                return Outcome::Stuck;
            }
            return Outcome::Cancelled;
        }
    }
    if (poll)
        poll();
    m_exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return Outcome::Finished;
}

void FfmpegProcess::takeLines(const QByteArray& data, bool flush, const LineSink& lines)
{
    m_pending += data;
    // ffmpeg redraws its progress line with carriage returns: each counts as a line of its own.
    int start = 0;
    for (int i = 0; i < m_pending.size(); ++i) {
        const char c = m_pending.at(i);
        if (c != '\n' && c != '\r')
            continue;
        const QString line = QString::fromLocal8Bit(m_pending.mid(start, i - start)).trimmed();
        start = i + 1;
        if (line.isEmpty())
            continue;
        m_tail.append(line);
        if (m_tail.size() > 20)
            m_tail.removeFirst();
        if (lines)
            lines(line);
    }
    m_pending.remove(0, start);
    if (flush && !m_pending.isEmpty()) {
        m_pending.append('\n');
        takeLines(QByteArray(), false, lines);
    }
}

QString FfmpegProcess::tail() const
{
    return m_tail.join(QLatin1Char('\n'));
}
