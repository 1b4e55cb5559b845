#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

class QSciImage;

/**
 * How an item was made from its raw file: one line per operation that changed its z-matrix, mask or
 * objects, held in the item header so that it travels with saved files and the history. The history
 * restores the header with the item, so an undone operation takes its line along.
 */
class ProcessingLog final {
public:
    /** Appends the line of @p operation with @p parameters ("radius=2, loops=1"), stamped now. */
    static void append(QSciImage& item, const QString& operation, const QString& parameters = QString());
    /** "2026-11-23 16:40:01  Denoise  radius=2, loops=1": date and time, operation, parameters. */
    static QString line(const QString& operation, const QString& parameters, const QDateTime& when);
    /** The log as comment lines for text exports: "# Processing log" then "# " and each line. */
    static QStringList commentLines(const QSciImage& item);

    /** The header form: one token per line, so a line may hold any character. */
    static QString encode(const QStringList& lines);
    static QStringList decode(const QString& text);
};
