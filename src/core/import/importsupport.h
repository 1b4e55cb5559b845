#pragma once

#include "core/import/instrumentfile.h"

#include <QString>
#include <cmath>

/** Helpers every importer shares: units, numbers, geometry and the one place rows are put the right way up. */
class ImportSupport final {
public:
    /** "File corrupted." */
    static QString corrupted();
    /** "no image data" */
    static QString noImageData();

    /**
     * Splits a unit text with an SI prefix into the factor to its base unit and the base unit:
     * "nm" gives 1e-9 and "m", "~m" or "µm" 1e-6 and "m", "Å" 1e-10 and "m", "mV" 1e-3 and "V". Texts it
     * does not know come back unchanged with factor 1.
     */
    static QString baseUnit(const QString& unit, double* factor);
    /** A number in C notation ("1.000E-8", " 160"); @p ok false when the text is not one. */
    static double number(const QString& text, bool* ok = nullptr);
    /** "0.2688 V" */
    static QString withUnit(double value, const QString& unit);

    /** Physical size and offset (offset = lower-left corner) of a W x H channel. */
    static void setGeometry(ImportedChannel& channel, double sizeX, double sizeY, const QString& xyUnit,
        double offsetX = 0, double offsetY = 0);

    /**
     * Puts file values into the item layout. @p value(i) gives the physical value of the i-th stored value
     * (row by row); @p topFirst says the first stored row is the top row, @p mirrorX that rows run right to left.
     * The channel must already have its width and height.
     */
    template <typename Value>
    static void placeRaster(ImportedChannel& channel, bool topFirst, bool mirrorX, Value value)
    {
        const int w = channel.width;
        const int h = channel.height;
        channel.z.resize(qsizetype(w) * h);
        double* z = channel.z.data();
        qsizetype i = 0;
        for (int r = 0; r < h; ++r) {
            const int y = topFirst ? h - 1 - r : r;
            for (int c = 0; c < w; ++c, ++i) {
                const int x = mirrorX ? w - 1 - c : c;
                z[qsizetype(x) * h + y] = value(i);
            }
        }
    }

    /**
     * Replaces points that were never measured (NaN, infinite) with the mean of the others and notes it in
     * the header, so that min/max and the rendering stay meaningful.
     */
    static void fillMissing(ImportedChannel& channel);
    /**
     * True when a W x H raster of @p bytesPerValue bytes is a sane item size and fits in @p available bytes;
     * otherwise sets @p message.
     */
    static bool rasterFits(qint64 width, qint64 height, quint64 bytesPerValue, quint64 available, QString* message);
};
