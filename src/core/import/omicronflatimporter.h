#pragma once

#include "core/import/instrumentimporter.h"

/**
 * Omicron Flat files ("*.Z_flat", "*.flat"): a self-contained export of one MATRIX data file, axes and the
 * transfer function included. No real file was at hand; the reader follows the published layout and checks
 * every count against the bytes.
 */
class OmicronFlatImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Omicron Flat"); }
    QStringList suffixes() const override
    {
        return { QStringLiteral("flat"), QStringLiteral("z_flat"), QStringLiteral("i_flat") };
    }
    QStringList filterPatterns() const override { return { QStringLiteral("*.flat"), QStringLiteral("*_flat") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
