#pragma once

#include "core/media/qscimovie.h"

/** A movie file of any format ffmpeg reads: described by ffprobe, its frames decoded by ffmpeg into BMP files. */
class QSciFFMPEG final : public QSciMovie {
public:
    bool usesFfmpeg() const override { return true; }
    [[nodiscard]] bool preview(double seconds, const QString& tempDir, const std::atomic_bool& cancel, QImage* frame,
        QString* message, const LogSink& log = {}) override;
    [[nodiscard]] bool readFrames(double seconds, int count, const QString& tempDir, const std::atomic_bool& cancel,
        const FrameSink& sink, QString* message, const LogSink& log = {}) override;

    /** Reads ffprobe's "key=value" lines; false when they name no picture size. */
    [[nodiscard]] static bool parseProbe(const QString& output, Info* info);
    /** Removes the frame files an import left in @p tempDir. */
    static void removeImportFiles(const QString& tempDir);

protected:
    [[nodiscard]] bool load(const QString& path, QString* message) override;
};
