#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/**
 * Text matrices: one line per row, the first line the TOP row, values separated by one tab and written
 * with 17 significant digits. Readers take blanks, tabs, commas and semicolons between values and skip empty lines
 * and lines beginning with "#".
 * In memory the values are column by column with rows from the bottom, as the image item holds them.
 */
class TextMatrix final {
public:
    static QByteArray write(const double* columnMajor, int width, int height);
    /** The mask as 1 and 0. */
    static QByteArray writeMask(const uchar* columnMajor, int width, int height);
    /** Reads @p text; false with a message naming the line when rows differ in length or a value is no number. */
    [[nodiscard]] static bool read(
        const QByteArray& text, QVector<double>* columnMajor, int* width, int* height, QString* message);
};
