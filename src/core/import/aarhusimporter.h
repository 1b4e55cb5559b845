#pragma once

#include "core/import/instrumentimporter.h"

/** Aarhus STM image collections (".mul") and films (".flm"): 128-byte blocks of int16 records. */
class AarhusImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Aarhus MUL/FLM"); }
    QStringList suffixes() const override { return { QStringLiteral("mul"), QStringLiteral("flm") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
