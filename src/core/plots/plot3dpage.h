#pragma once

#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>

class Plot3dDocument;

/**
 * The surface plot page: the page template with every placeholder filled from a 3D plot document. Texts from
 * the user (titles, units, item names) go into the page only as escaped script strings, so no text can end the
 * script or add markup.
 */
class Plot3dPage final {
public:
    /** The placeholder names of the page, without "${" and "}". */
    static const QStringList& placeholderNames();

    /** Every placeholder's text for @p document shown at @p size. */
    static QMap<QString, QString> values(const Plot3dDocument& document, const QSize& size);

    /**
     * The page for a web view whose base URL is baseUrl(): scripts and styles stay references to the templates.
     * With @p standalone they are inlined, so that the page opens from anywhere on its own.
     */
    static QString html(const Plot3dDocument& document, const QSize& size, bool standalone);

    /** Where the templates' relative references resolve. */
    static QString baseUrl() { return QStringLiteral("qrc:/plot3dhtml/examples/"); }
    /** A template file, e.g. "examples/mainGL.html"; empty when there is none. */
    static QString templateText(const QString& name);

    /** @p text as the inside of a double-quoted script string that is also safe inside HTML. */
    static QString scriptString(const QString& text);

    /** The grid side the page draws for @p document: the precision setting, or the automatic choice. */
    static int gridSide(const Plot3dDocument& document);
};
