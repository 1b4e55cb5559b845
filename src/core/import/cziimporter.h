#pragma once

#include "core/import/instrumentimporter.h"

/**
 * Zeiss CZI light-microscopy files: segments, subblocks and XML metadata. Each uncompressed full-resolution
 * plane becomes one item; grey planes give z (raw counts), colour planes the picture with z the luminance.
 */
class CziImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Zeiss CZI"); }
    QStringList suffixes() const override { return { QStringLiteral("czi") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
