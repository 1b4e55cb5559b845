#pragma once

#include <QString>

/**
 * Text documents (".text.velm", plain text) and saved output pages (".output.velm", rich text as HTML): a
 * title and one text each, in the same container as tables.
 */
class TextDocumentFile final {
public:
    enum class Kind { Text, Output };

    static QString type(Kind kind);
    static QString suffix(Kind kind);

    [[nodiscard]] static bool write(
        const QString& path, Kind kind, const QString& title, const QString& text, QString* message);
    [[nodiscard]] static bool read(const QString& path, Kind kind, QString* title, QString* text, QString* message);
};
