#pragma once

#include "core/import/instrumentfile.h"

#include <QByteArray>
#include <QList>
#include <QString>

class InstrumentImporter;
class QSciImage;

/**
 * The importers of instrument and picture files. A file goes to the importer that recognises its first
 * bytes; only when none does, to the one that claims its extension (many formats share ".dat" or ".tif").
 */
class InstrumentImporters final {
public:
    /** Every importer, in the order the open dialog lists them. */
    static const QList<const InstrumentImporter*>& all();
    /** The importer for a file with this content and name, or nullptr. */
    static const InstrumentImporter* find(const QByteArray& data, const QString& path);
    /** True when some importer claims the extension of @p path. */
    static bool claimsSuffix(const QString& path);

    /**
     * Reads @p path. Fails with "Unable to read from file: PATH" followed by the reader's reason in
     * parentheses; a file with nothing to show fails as well.
     */
    [[nodiscard]] static bool readFile(const QString& path, InstrumentFile* file, QString* message);
    /** The same for a file already in memory; @p path names it and finds MATRIX companions. */
    [[nodiscard]] static bool readData(
        const QByteArray& data, const QString& path, InstrumentFile* file, QString* message);

    /**
     * Fills @p item from channel @p index: z, calibration, header entries and the picture (the file's own or z
     * through the default gradient). The name is the file name without its extension, a space and the title.
     */
    static void toItem(const InstrumentFile& file, int index, const QString& path, QSciImage& item);

    /** Open-dialog filters: "All supported (...)", then one per format. */
    static QStringList fileFilters();

    /** Lets the native reader hand non-native files to these importers (the first channel becomes the item). */
    static void registerItemImporter();
};
