#pragma once

#include <QByteArray>
#include <QString>

class QSciImage;

/**
 * The "with display elements" exports: an item as the view draws it underneath everything else, with the
 * display elements it switches on (or rulers, title and z scale when it switches none on), as PNG, as a
 * PDF page with vector text and lines, or as a PostScript page.
 */
class DecoratedPictureWriter final {
public:
    enum Format { Png, Pdf, PostScript };

    static QString suffix(Format format);
    static QByteArray write(const QSciImage& item, Format format);
};
