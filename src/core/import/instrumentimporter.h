#pragma once

#include "core/import/instrumentfile.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * A reader of one instrument or picture format. Importers work on the whole file in memory, so that the
 * tests and the fuzz targets drive them without touching the disk; only a format split over several files
 * (MATRIX) reads its companion next to @p path.
 */
class InstrumentImporter {
public:
    virtual ~InstrumentImporter() = default;

    /** Format name as `info` prints it ("Nanonis SXM"). */
    virtual QString name() const = 0;
    /** File name endings without the dot, lower case. */
    virtual QStringList suffixes() const = 0;
    /** Open-dialog patterns; by default one "*.suffix" per suffix. */
    virtual QStringList filterPatterns() const
    {
        QStringList patterns;
        for (const QString& suffix : suffixes())
            patterns << QStringLiteral("*.") + suffix;
        return patterns;
    }
    /** True when the file's content (@p data, the whole file) is this format's; cheap, no full parse. */
    virtual bool recognises(const QByteArray& data, const QString& path) const = 0;
    /**
     * Reads every image of @p data. On failure returns false with a short reason in @p message
     * ("File corrupted." or what is wrong) and leaves @p file in an unspecified state.
     */
    [[nodiscard]] virtual bool read(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message) const = 0;
};
