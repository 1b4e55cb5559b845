#pragma once

#include <QColor>
#include <QString>

class BrushFootprint;
class QSciImage;

/**
 * Recolouring of an item's picture under a brush: each covered point takes the hue and saturation of the
 * brush colour and keeps its own lightness, so the picture's relief stays readable through the tint.
 */
class PictureColorize final {
public:
    static QString operationText();
    /** The colour @p original takes under @p color at @p strength (0 .. 1: from unchanged to the full tint). */
    static QRgb tint(QRgb original, const QColor& color, double strength);
    /** Tints the covered points and notifies; record the picture first. */
    static void apply(QSciImage& item, const BrushFootprint& footprint, const QColor& color, double strength);
};
