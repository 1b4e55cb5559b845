#pragma once

#include <QByteArray>
#include <QImage>

/**
 * Writes a picture as an encapsulated PostScript page. Qt 5 no longer prints to PostScript, so the page
 * holds the picture as one Level 2 RGB image (hex-encoded, one point per pixel, transparency laid over
 * white); any PostScript viewer or printer, and ps2pdf, read it.
 */
class PostScriptWriter final {
public:
    static QByteArray fromImage(const QImage& image, const QString& title);
};
