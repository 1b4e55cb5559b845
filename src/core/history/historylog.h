#pragma once

#include <QString>

class QSciImage;

/** The history's fixed diagnostic lines on standard output, all beginning "HISTORY: " unless stated. */
class HistoryLog final {
public:
    static void line(const QString& text);
    /** A line without the prefix ("Remove ...", "Size now ..."). */
    static void plain(const QString& text);
    /** How an item is named in the lines: its name and address. */
    static QString describe(const QSciImage* item);
    /** Quiet mode for benchmarks and noisy tests. */
    static void setQuiet(bool quiet);
    /** Sends the lines to standard error, for programs whose standard output is their result. */
    static void setToStandardError(bool on);
};
