#pragma once

#include "plot3ddocument.h"

#include <QString>

class TaggedTextNode;

/**
 * The 3D plot file (".plot3d.velm"): the compressed tagged-text container with type "3dPlot", holding the
 * settings, the window geometry and the plotted z-matrix with its size and range.
 */
class Plot3dFile final {
public:
    static QString type() { return QStringLiteral("3dPlot"); }
    static QString suffix() { return QStringLiteral(".plot3d.velm"); }
    static bool isPlotFileName(const QString& path);

    [[nodiscard]] static bool write(const Plot3dDocument& document, const QString& path, QString* message);
    /** On failure @p document is untouched and @p message holds the text the user sees. */
    [[nodiscard]] static bool read(const QString& path, Plot3dDocument* document, QString* message);
    [[nodiscard]] static bool fromContent(const TaggedTextNode& content, Plot3dDocument* document);

    static QString corruptedText(const QString& path);
};
