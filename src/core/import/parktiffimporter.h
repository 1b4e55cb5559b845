#pragma once

#include "core/import/instrumentimporter.h"

/**
 * Park Systems TIFF files: the TIFF picture is only a preview; the measured values and their calibration sit in
 * private tags, which a small reader of the first directory finds (a TIFF library would decode the preview,
 * which we do not need).
 */
class ParkTiffImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Park TIFF"); }
    QStringList suffixes() const override { return { QStringLiteral("tif"), QStringLiteral("tiff") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
