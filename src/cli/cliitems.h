#pragma once

#include <QColor>
#include <QSize>
#include <QString>

struct CliContext;
class QSciImage;

/** What the item commands share: reading and writing items with the program's own messages, and parsing. */
class CliItems final {
public:
    /** Loads @p path into @p item; prints the message and returns false on failure. */
    static bool load(CliContext& context, const QString& path, QSciImage& item);
    /** Saves the whole item to @p path (atomically); prints the message on failure. */
    static bool save(CliContext& context, QSciImage& item, const QString& path);
    /**
     * "WxH" with both positive and W*H within what one item can hold; otherwise false with a message that
     * tells a malformed size from one too large, naming the limit.
     */
    static bool parseSize(const QString& text, QSize* size, QString* message);
    /** A finite number (no "nan" or "inf"), between @p low and @p high; false with a message naming @p option. */
    static bool parseReal(
        const QString& option, const QString& text, double low, double high, double* value, QString* message);
    /** A colour name or #RRGGBB. */
    static bool parseColor(const QString& text, QColor* color);
    /** Writes @p data to @p path atomically, or to stdout when @p path is empty or "-". */
    static bool writeOut(CliContext& context, const QString& path, const QByteArray& data);
};
