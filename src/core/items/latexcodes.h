#pragma once

#include <QString>

class QSciImage;

/**
 * An item's texts as a LaTeX fragment: its text lines in order, the formulas that the LaTeX tool placed
 * ("$...$" lines) as display math, every other line as text with LaTeX's special characters escaped.
 */
class LatexCodes final {
public:
    static QString suffix() { return QStringLiteral(".tex"); }
    static QString document(const QSciImage& item);
    /** @p text with the characters that LaTeX reads as commands written so that they print as they are. */
    static QString escaped(const QString& text);
};
