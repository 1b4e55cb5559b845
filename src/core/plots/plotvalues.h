#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <QVector>

/** The number lists of the plot files: values as text joined by ";", read back in the C locale. */
class PlotValues final {
public:
    /** Shortest text that reads back to the same double. */
    static QString join(const QVector<double>& values);
    /** False when any entry is no number; an empty text is an empty list. */
    [[nodiscard]] static bool parse(const QString& text, QVector<double>* values);

    /** Names joined by ";", a ";" or "\\" inside a name escaped by a backslash. */
    static QString joinNames(const QStringList& names);
    static QStringList splitNames(const QString& text);

    /** "left;top;width;height". */
    static QString joinRect(const QRect& rect);
    /** False for fewer than four integers, so that a short geometry is ignored rather than trusted. */
    [[nodiscard]] static bool parseRect(const QString& text, QRect* rect);
};
