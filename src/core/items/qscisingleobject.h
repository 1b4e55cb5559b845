#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>

/**
 * One object of an item's object layer: its pixel lists, its measures and how its display elements are drawn.
 * A value type; the public fields carry the names of the record's keys. Positions and lengths are in data
 * points of the item.
 *
 * toString() writes the tagged text stored in native item files; fromString() reads it back, and a field that
 * is missing there keeps its default, so older records load.
 */
class QSciSingleObject final {
public:
    // ---- "firstChapter" --------------------------------------------------------------------------
    double area = 0;
    double areaPBM = 0;
    double areaPM = 0;
    double circumference = 0;
    double circumferencePBM = 0;
    double circumferencePM = 0;
    double compactnessPBM = 0;
    double compactnessPM = 0;
    double cubage = 0;
    double fracDim = 0; ///< -1 when it cannot be computed
    int height = 0;
    int lableSize = 0; ///< font size of the label
    double rMax = 0;
    QPoint rMaxVector;
    double rMin = 0;
    QPoint rMinVector;
    bool visible = false;
    int width = 0;
    double zBar = 0;
    double zMax = 0;
    double zMin = 0;

    // ---- "colors": one colour and one switch per display element --------------------------------------
    QColor borderColor = QColor(255, 0, 0);
    bool borderVisible = false;
    QColor fillColor = QColor(0, 0, 255, 96);
    bool fillVisible = false;
    QColor labelColor = QColor(255, 255, 0);
    bool labelVisible = false;
    QColor skeletonColor = QColor(0, 255, 0);
    bool skeletonVisible = false;
    QColor skeletonLargestBranchColor = QColor(0, 128, 0);
    bool skeletonLargestBranchVisible = false;
    QColor innerRadiusColor = QColor(0, 255, 255);
    bool innerRadiusVisible = false;
    QColor outerRadiusColor = QColor(255, 0, 255);
    bool outerRadiusVisible = false;
    QColor firstAxisColor = QColor(255, 128, 0);
    bool firstAxisVisible = false;
    QColor secondAxisColor = QColor(255, 200, 0);
    bool secondAxisVisible = false;
    QColor coaColor = QColor(0, 0, 255); ///< centre of area
    bool coaVisible = false;
    QColor comColor = QColor(128, 0, 255); ///< centre of mass (of cubage)
    bool comVisible = false;
    QColor boundingBoxColor = QColor(128, 128, 255);
    bool boundingBoxVisible = false;
    QColor minimumColor = QColor(0, 0, 0);
    bool minimumVisible = false;
    QColor maximumColor = QColor(255, 255, 255);
    bool maximumVisible = false;
    QColor borderMinimumColor = QColor(0, 128, 128);
    bool borderMinimumVisible = false;
    QColor borderMaximumColor = QColor(255, 128, 128);
    bool borderMaximumVisible = false;

    // ---- "mainAxes" ------------------------------------------------------------------------------
    bool mainAxesCalculated = false;
    QPoint mainFirstAxisP1;
    QPoint mainFirstAxisP2;
    double mainFirstAxisLength = 0;
    double mainFirstAxisAngle = 0;
    QPoint mainSecondAxisP1;
    QPoint mainSecondAxisP2;
    double mainSecondAxisLength = 0;
    double mainSecondAxisAngle = 0;
    double mainAxesAspectRatio = 0;
    double mainAxesElongation = 0;

    // ---- "largestExtent" -------------------------------------------------------------------------
    bool largestExtentCalculated = false;
    QPoint largestExtentP1;
    QPoint largestExtentP2;
    double largestExtentDistance = 0;

    // ---- "skeleton" ------------------------------------------------------------------------------
    bool skeletonCalculated = false;
    double skeletonMaxLength = 0;
    int skeletonNumberOfBranches = 0;

    // ---- "other" ---------------------------------------------------------------------------------
    double stdWholeObject = 0;
    double stdBorder = 0;
    double heywoodDiameterPBM = 0;
    double heywoodDiameterPM = 0;
    QRect boundingBox; ///< stored as left;top;right;bottom
    QPoint zMinAt;
    QPoint zMaxAt;
    QPoint borderZMinAt;
    QPoint borderZMaxAt;
    double zRange = 0;
    double zMean = 0;
    double borderZMin = 0;
    double borderZMax = 0;
    double borderZMean = 0;
    double borderZRange = 0;

    // ---- "pixelSection" --------------------------------------------------------------------------
    QVector<QPoint> borderPixels;
    QVector<QPoint> fillPixels; ///< every pixel of the object
    QVector<QPoint> skeletonPixels;
    QVector<QPoint> skeletonLargestBranch;

    // ---- not serialised: set when recognition creates the record, used by the object output -------
    int objectNumber = 0;
    QString itemTitle;
    QString timestamp; ///< the item's "timestamp" header value

    /** The number shown for the record at @p index of its layer: records read from files carry none, so they count in
     * layer order. */
    int numberAt(int index) const { return objectNumber > 0 ? objectNumber : index + 1; }

    QString toString() const;
    /**
     * Reads a record written by toString(). On failure (unreadable text, another record type, a point list
     * that does not read) the record stays unchanged. The unserialised fields are never touched.
     */
    [[nodiscard]] bool fromString(const QString& text, QString* message = nullptr);

    bool operator==(const QSciSingleObject& other) const;
    bool operator!=(const QSciSingleObject& other) const { return !(*this == other); }
};
