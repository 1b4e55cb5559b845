#pragma once

#include <QString>
#include <QStringList>

/**
 * Where the ffmpeg and ffprobe programs are and the argument lists they get. The order of the arguments
 * matters to ffmpeg (an option before "-i" applies to the input, after it to the output), so every command
 * line is built here and nowhere else.
 */
class FfmpegCommands final {
public:
    /**
     * The program @p name ("ffmpeg" or "ffprobe") in the folder of `FormOptions.ffmpegPath`, or found on PATH
     * when that setting is empty. Empty when there is no such executable.
     */
    static QString program(const QString& name);
    static QString ffmpeg() { return program(QStringLiteral("ffmpeg")); }
    static QString ffprobe() { return program(QStringLiteral("ffprobe")); }

    static QStringList version();
    /** One frame at @p seconds into "ffmpegPreview.bmp" of @p tempDir. */
    static QStringList preview(double seconds, const QString& movie, const QString& tempDir);
    static QString previewFile(const QString& tempDir);
    /** @p count frames from @p seconds on, into "ffmpeg_import-1.bmp", "-2", ... of @p tempDir. */
    static QStringList import(double seconds, const QString& movie, int count, const QString& tempDir);
    /** The file of imported frame @p number (from 1). */
    static QString importFile(const QString& tempDir, int number);
    /** H.264 from the numbered PNG frames in the working folder; yuv420p needs an even @p width and @p height. */
    static QStringList exportMovie(int fps, int width, int height, const QString& output);
    /** The PNG frame @p number (from 0) of an export, relative to the working folder. */
    static QString exportFrameName(int number);
    /** Width, height, frame rates, frame count and duration of the first video stream, as key=value lines. */
    static QStringList probe(const QString& movie);

    /** Seconds as ffmpeg reads them: a plain decimal, whatever the locale. */
    static QString seconds(double value);
};
