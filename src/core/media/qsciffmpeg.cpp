#include "qsciffmpeg.h"

#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegprocess.h"
#include "core/media/ffmpegversion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <cmath>

namespace {

double parseRate(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    bool ok = false;
    const double numerator = parts.value(0).toDouble(&ok);
    if (!ok)
        return 0;
    const double denominator = parts.size() > 1 ? parts.at(1).toDouble() : 1.0;
    return denominator > 0 ? numerator / denominator : 0;
}

bool readBmp(const QString& path, QImage* image)
{
    QImageReader reader(path, "bmp");
    return reader.read(image) && !image->isNull();
}

bool ran(FfmpegProcess::Outcome outcome)
{
    return outcome == FfmpegProcess::Outcome::Finished;
}

} // namespace

bool QSciFFMPEG::parseProbe(const QString& output, Info* info)
{
    *info = Info();
    double streamDuration = 0, formatDuration = 0, averageRate = 0, baseRate = 0;
    int frames = 0;
    bool inFormat = false;
    const QStringList lines = output.split(QLatin1Char('\n'));
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        const QString key = line.section(QLatin1Char('='), 0, 0);
        const QString value = line.section(QLatin1Char('='), 1);
        if (key == QLatin1String("width"))
            info->size.setWidth(value.toInt());
        else if (key == QLatin1String("height"))
            info->size.setHeight(value.toInt());
        else if (key == QLatin1String("r_frame_rate"))
            baseRate = parseRate(value);
        else if (key == QLatin1String("avg_frame_rate"))
            averageRate = parseRate(value);
        else if (key == QLatin1String("nb_frames"))
            frames = value.toInt();
        else if (key == QLatin1String("duration")) {
            // The stream's entries come first; the container's duration is the last "duration" line.
            (inFormat ? formatDuration : streamDuration) = value.toDouble();
            inFormat = true;
        }
    }
    if (info->size.width() <= 0 || info->size.height() <= 0)
        return false;
    info->fps = averageRate > 0 ? averageRate : baseRate;
    info->duration = streamDuration > 0 ? streamDuration : formatDuration;
    info->frameCount = frames > 0 ? frames : int(std::lround(info->duration * info->fps));
    return true;
}

bool QSciFFMPEG::load(const QString& path, QString* message)
{
    const QString ffprobe = FfmpegCommands::ffprobe();
    if (ffprobe.isEmpty()) {
        *message = FfmpegVersion::missingText();
        return false;
    }
    FfmpegProcess probe(ffprobe, FfmpegCommands::probe(path));
    QString output;
    const std::atomic_bool never { false };
    const bool finished
        = ran(probe.run(never, {}, [&output](const QString& line) { output += line + QLatin1Char('\n'); }));
    if (!finished || probe.exitCode() != 0 || !parseProbe(output, &m_info)) {
        *message = cannotReadText(path);
        return false;
    }
    return true;
}

bool QSciFFMPEG::preview(double seconds, const QString& tempDir, const std::atomic_bool& cancel, QImage* frame,
    QString* message, const LogSink& log)
{
    const QString target = FfmpegCommands::previewFile(tempDir);
    QFile::remove(target);
    FfmpegProcess process(FfmpegCommands::ffmpeg(), FfmpegCommands::preview(seconds, m_path, tempDir));
    const FfmpegProcess::Outcome outcome = process.run(cancel, {}, {}, log);
    if (outcome == FfmpegProcess::Outcome::Cancelled || outcome == FfmpegProcess::Outcome::Stuck) {
        QFile::remove(target);
        return false;
    }
    if (!ran(outcome) || process.exitCode() != 0) {
        QFile::remove(target);
        *message = cannotReadText(m_path);
        return false;
    }
    if (!QFile::exists(target)) {
        *message = seekText(seconds, m_info.duration);
        return false;
    }
    const bool ok = readBmp(target, frame);
    QFile::remove(target);
    if (!ok)
        *message = cannotReadText(m_path);
    return ok;
}

void QSciFFMPEG::removeImportFiles(const QString& tempDir)
{
    const QStringList names
        = QDir(tempDir).entryList({ QStringLiteral("ffmpeg_import-*.bmp") }, QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        QFile::remove(QDir(tempDir).filePath(name));
}

bool QSciFFMPEG::readFrames(double seconds, int count, const QString& tempDir, const std::atomic_bool& cancel,
    const FrameSink& sink, QString* message, const LogSink& log)
{
    if (count < 1)
        return true;
    // Frames of an earlier, interrupted run would be taken for this one's.
    removeImportFiles(tempDir);
    int next = 1;
    bool stopped = false;
    QString failure;
    // A frame file is complete once ffmpeg has begun the next one, or has ended.
    const auto takeReady = [&](bool ended) {
        while (!stopped && failure.isEmpty() && !cancel.load()) {
            const QString file = FfmpegCommands::importFile(tempDir, next);
            if (!QFile::exists(file) || (!ended && !QFile::exists(FfmpegCommands::importFile(tempDir, next + 1))))
                return;
            QImage frame;
            if (!readBmp(file, &frame)) {
                failure = cannotReadText(m_path);
                return;
            }
            if (!QFile::remove(file)) {
                failure = QCoreApplication::translate("QSciFFMPEG", "Error deleting ") + file;
                return;
            }
            stopped = !sink(frame, next - 1);
            ++next;
        }
    };
    FfmpegProcess process(FfmpegCommands::ffmpeg(), FfmpegCommands::import(seconds, m_path, count, tempDir));
    std::atomic_bool stop { false };
    const FfmpegProcess::Outcome outcome = process.run(
        stop,
        [&] {
            takeReady(false);
            stop = cancel.load() || stopped || !failure.isEmpty();
        },
        {}, log);
    if (ran(outcome))
        takeReady(true);
    removeImportFiles(tempDir);
    if (!failure.isEmpty()) {
        *message = failure;
        return false;
    }
    if (!ran(outcome)) {
        if (outcome == FfmpegProcess::Outcome::NotStarted) {
            *message = cannotReadText(m_path);
            return false;
        }
        return true; // cancelled or stopped by the sink
    }
    if (next == 1 && process.exitCode() != 0) {
        *message = cannotReadText(m_path);
        return false;
    }
    if (next == 1 && !cancel.load()) {
        *message = seekText(seconds, m_info.duration);
        return false;
    }
    return true;
}
