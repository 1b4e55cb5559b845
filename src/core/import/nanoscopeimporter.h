#pragma once

#include "core/import/instrumentimporter.h"

/** Bruker/Veeco Nanoscope files (".spm", ".000"-".999", ".di"): a sectioned text header, then integer images. */
class NanoscopeImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Bruker Nanoscope"); }
    QStringList suffixes() const override { return { QStringLiteral("spm"), QStringLiteral("di") }; }
    QStringList filterPatterns() const override
    {
        return { QStringLiteral("*.spm"), QStringLiteral("*.di"), QStringLiteral("*.[0-9][0-9][0-9]") };
    }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
