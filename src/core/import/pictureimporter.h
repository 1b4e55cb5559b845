#pragma once

#include "core/import/instrumentimporter.h"

/** Picture files (PNG, JPEG, TIFF, BMP): the picture as it is, z the grey level 0..255. */
class PictureImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Picture"); }
    QStringList suffixes() const override;
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
