#pragma once

#include "core/import/instrumentimporter.h"

/** Nanonis scans (".sxm"): a tagged text header, then big-endian float32 images, backward ones right to left. */
class NanonisImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Nanonis SXM"); }
    QStringList suffixes() const override { return { QStringLiteral("sxm") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
