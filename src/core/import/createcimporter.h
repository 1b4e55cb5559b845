#pragma once

#include "core/import/instrumentimporter.h"

/** Createc STM/AFM scans (".dat"): a Latin-1 key=value header, then float32 images, usually zlib-compressed. */
class CreatecImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Createc DAT"); }
    QStringList suffixes() const override { return { QStringLiteral("dat") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
