#pragma once

#include "plot2ddocument.h"

#include <QString>

class TaggedTextNode;

/**
 * The 2D plot file (".plot2d.velm"): the compressed tagged-text container with type "2dPlot", holding the
 * settings (one field per key), the window geometry and the curves.
 */
class Plot2dFile final {
public:
    static QString type() { return QStringLiteral("2dPlot"); }
    static QString suffix() { return QStringLiteral(".plot2d.velm"); }
    static bool isPlotFileName(const QString& path);

    [[nodiscard]] static bool write(const Plot2dDocument& document, const QString& path, QString* message);
    /** On failure @p document is untouched and @p message holds the text the user sees. */
    [[nodiscard]] static bool read(const QString& path, Plot2dDocument* document, QString* message);
    /** The document of an already parsed "content" chapter; false (without a message) when the tree is broken. */
    [[nodiscard]] static bool fromContent(const TaggedTextNode& content, Plot2dDocument* document);

    static QString corruptedText(const QString& path);
    static QString noPlotDataText(const QString& path);
};
