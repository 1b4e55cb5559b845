#pragma once

#include "core/import/instrumentfile.h"

#include <QByteArray>
#include <QString>

/** Raw binary matrices and ASCII matrices: formats without a header the user describes. */
class RawImport final {
public:
    enum class DataType { Int8, UInt8, Int16, UInt16, Int32, UInt32, Float32, Float64 };

    struct Options {
        int width = 0;
        int height = 0;
        DataType type = DataType::Float32;
        bool littleEndian = true;
        qint64 headerSize = 0;
        /** The first stored row is the top row, as pictures and text matrices have it. */
        bool topFirst = true;
    };

    static int bytesPerValue(DataType type);
    /** Names for a chooser, in enum order ("int8", ..., "float64"). */
    static QStringList typeNames();

    /** Reads W x H values after the header; fails with a message when the file is too short or a size is absurd. */
    [[nodiscard]] static bool readRaw(
        const QByteArray& data, const Options& options, ImportedChannel* channel, QString* message);
    /**
     * Reads a text matrix whose values are separated by blanks, tabs, commas or semicolons, one row per line,
     * the first line the top row.
     */
    [[nodiscard]] static bool readAscii(const QByteArray& text, ImportedChannel* channel, QString* message);
};
