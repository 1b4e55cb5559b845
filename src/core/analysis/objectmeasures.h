#pragma once

#include <QPointF>

class QSciSingleObject;

/** Where an object's measures read its heights: the item's z-matrix, column by column, rows from the bottom. */
struct MeasureInput {
    const double* z = nullptr;
    int width = 0;
    int height = 0;
};

/**
 * The measures of one object, computed from its fill pixels and the z-matrix and stored in its record. The
 * outline measures (areas, circumferences, compactness, Heywood diameters, radii, bounding box, border z,
 * fractal dimension) follow the program's fixed definitions, constants included, since stored values were
 * computed with them. The whole-object measures use standard definitions, documented at each function.
 */
class ObjectMeasures final {
public:
    /** The value of pi every stored measure was computed with; deliberately not the mathematical one. */
    static constexpr double Pi = 3.1415927895412;

    /**
     * Fills every measure of @p object from its fillPixels: border pixels, outline measures, z statistics,
     * cubage above @p referenceHeight, main axes, largest extent and skeleton. The radii are measured from the
     * centroid of area rounded to whole pixels.
     */
    static void computeAll(QSciSingleObject& object, const MeasureInput& input, double referenceHeight);

    /** A pixel of the object is a border pixel unless all four 4-neighbours lie in the image and the object. */
    static void findBorder(QSciSingleObject& object, int width, int height);
    /** The outline measures from the border pixels, measured from @p centre. */
    static void computeOutline(QSciSingleObject& object, const MeasureInput& input, QPoint centre);
    /**
     * z statistics over all pixels (zMin/zMax and where, zMean, zRange, stdWholeObject), cubage = the sum of
     * (z - @p referenceHeight) over the pixels (a volume in z units times pixels, negative for pits), and zBar, the
     * height of the centre of that volume: reference + sum(h^2) / (2 sum(h)) with h = z - reference.
     */
    static void computeHeights(QSciSingleObject& object, const MeasureInput& input, double referenceHeight);
    /**
     * Main axes from the second central moments of the pixel set (each pixel a unit square): the semi-axes are
     * 2*sqrt of the eigenvalues, so a solid ellipse gives its own axes. Lengths are full axis lengths, angles in
     * degrees counterclockwise from +x in [0, 180); the aspect ratio is first/second, the elongation
     * 1 - second/first.
     */
    static void computeMainAxes(QSciSingleObject& object);
    /** The two border pixels farthest apart and their distance. */
    static void computeLargestExtent(QSciSingleObject& object);
    /**
     * The skeleton by thinning the object's mask. A skeleton with three or more end points has one branch per end
     * (a star, a Y); a line, a bend or a loop counts as one. The largest branch is the longest path through the
     * skeleton between two of its ends (steps of 1 and sqrt 2), and skeletonMaxLength its length.
     */
    static void computeSkeleton(QSciSingleObject& object);

    /** Mean x and y of the pixels. */
    static QPointF centroidOfArea(const QSciSingleObject& object);
    /**
     * Mean x and y weighted by the height above the object's reference height, which the stored zMean and cubage
     * give back (reference = zMean - cubage / n); the centroid of area when the weights sum to zero.
     */
    static QPointF centroidOfCubage(const QSciSingleObject& object, const MeasureInput& input);
};
