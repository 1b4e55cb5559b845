#pragma once

#include "objectrecognitionoptions.h"

#include <QList>
#include <QString>
#include <QVector>

class ProgressSink;
class QSciSingleObject;

/** The z-matrix and mask a search reads, as the item holds them: column by column, rows from the bottom. */
struct RecognitionInput {
    const double* z = nullptr;
    const uchar* mask = nullptr; ///< may be null when nothing is selected
    int width = 0;
    int height = 0;
};

/** The sizes a run derives from its options: the search tile and the largest object extent. */
struct RecognitionTiles {
    int wMin = 0, hMin = 0, wMax = 0, hMax = 0;
};

/**
 * Finds the objects of one z-matrix: a scan in tiles whose highest (or lowest) point seeds a flood fill down to
 * a share of its height above the local environment, or a global z range; size and shape filters; the measures
 * of every object found. Never touches an item: the caller stores the records.
 *
 * Choices of this program where the procedure leaves room:
 * - A tile whose peak lies below its reference height (above it, for depressions) yields nothing.
 * - Ties in a tile's peak search keep the centre, then the first point in column order.
 * - A fill that runs into a point of an object found earlier fails when its seed is not a local peak (it is the
 *   lower flank of that object, which would otherwise come back as a ring around it); a seed that is a peak of
 *   its own just leaves the other object's points out.
 * - Type 1 ("Open objects") uses the same fill without any border or distance rule, so objects cut by the image
 *   edge are kept as cut.
 * - The shape tests are the radius filters: R1 is the radius of the disc of the object's area, R2 half the
 *   second main axis (the short semi-axis of the ellipse of the same second moments).
 * - Marked areas for subsurface planes are the 8-connected regions of the mask, each at its mean z.
 * - Z range mode reads Z (min) and Z (max) as percentages of the matrix's z range and groups the points in range
 *   with the fill's neighbour order; a group is tested whole against the size filters and the object type.
 * - Points whose z is not finite are never part of an object and are left out of the reference circle.
 */
class ObjectRecognition final {
public:
    enum class Result { Done, Stopped, Refused };

    explicit ObjectRecognition(const ObjectRecognitionOptions& options);

    /** The preconditions in their order; false with the message when the search cannot run. */
    bool check(int width, int height, QString* message, RecognitionTiles* tiles = nullptr) const;

    /**
     * Searches @p input and appends one record per object found, measures computed, to @p objects (numbers,
     * titles and display settings are the caller's). Stopped when @p progress asked to stop: nothing is appended.
     */
    Result find(const RecognitionInput& input, QList<QSciSingleObject>* objects, ProgressSink* progress = nullptr,
        QString* message = nullptr) const;

    static QString additionalOffsetText();
    static QString tooSmallText();
    static QString noMinimumText();
    static QString noMaximumText();
    static QString invalidZRangeText();

private:
    ObjectRecognitionOptions m_options;
};
