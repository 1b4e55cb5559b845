#pragma once

#include "core/import/instrumentimporter.h"

/** RHK XPMPro files (".sm4"): an object tree of pages; image pages hold int32 rows, spectra are skipped. */
class RhkImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("RHK SM4"); }
    QStringList suffixes() const override { return { QStringLiteral("sm4") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
