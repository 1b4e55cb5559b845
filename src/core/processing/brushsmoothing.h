#pragma once

#include <QString>

class BrushFootprint;
class QSciImage;

/**
 * Smoothing of an item's z-matrix under a brush: each covered point becomes the mean over the disc of the
 * given radius around it, as the Smoothen filter computes it, read from the heights before the stroke.
 */
class BrushSmoothing final {
public:
    static QString operationText();
    /** Smooths the covered points and notifies; record the z-matrix first. */
    static void apply(QSciImage& item, const BrushFootprint& footprint, double radius);
};
