#pragma once

#include "core/media/qscimovie.h"

#include <QVector>

/** An animated GIF, read frame by frame through Qt's image reader; no external program is involved. */
class QSciGIFMovie final : public QSciMovie {
public:
    bool usesFfmpeg() const override { return false; }
    [[nodiscard]] bool preview(double seconds, const QString& tempDir, const std::atomic_bool& cancel, QImage* frame,
        QString* message, const LogSink& log = {}) override;
    [[nodiscard]] bool readFrames(double seconds, int count, const QString& tempDir, const std::atomic_bool& cancel,
        const FrameSink& sink, QString* message, const LogSink& log = {}) override;

    /** The frame shown at @p seconds: the last one that starts at or before it. */
    int frameAt(double seconds) const;

protected:
    [[nodiscard]] bool load(const QString& path, QString* message) override;

private:
    QVector<double> m_starts; ///< start time of each frame, seconds
};
