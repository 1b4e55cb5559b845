#pragma once

#include "core/import/instrumentimporter.h"

/** Gwyddion files (".gwy"): a serialised container; every "/N/data" field is one channel. */
class GwyImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Gwyddion GWY"); }
    QStringList suffixes() const override { return { QStringLiteral("gwy") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
};
