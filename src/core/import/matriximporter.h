#pragma once

#include "core/import/instrumentimporter.h"

/**
 * Omicron MATRIX result files ("*.Z_mtrx", "*.I_mtrx", ...). Sizes and the z scale live in the session's
 * parameter file "<stem>_0001.mtrx" next to it, which is read from disk (or given for tests and fuzzing).
 */
class MatrixImporter final : public InstrumentImporter {
public:
    QString name() const override { return QStringLiteral("Omicron MATRIX"); }
    QStringList suffixes() const override { return { QStringLiteral("z_mtrx"), QStringLiteral("i_mtrx") }; }
    QStringList filterPatterns() const override { return { QStringLiteral("*_mtrx") }; }
    bool recognises(const QByteArray& head, const QString& path) const override;
    [[nodiscard]] bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const override;
    /** The same with the parameter file's bytes given. */
    [[nodiscard]] bool read(const QByteArray& data, const QByteArray& parameters, const QString& path,
        InstrumentFile* file, QString* message) const;
    /** Where the parameter file of a data file is: the name cut at the last "--", plus "_0001.mtrx". */
    static QString parameterPath(const QString& path);
};
