#pragma once

#include <QPointF>
#include <QString>

class QSciImage;

/**
 * The two shortest lattice vectors of a periodic surface, from the peaks of its autocorrelation (computed through
 * the spectrum): the strongest peak nearest the middle, then the nearest strong peak off its line. Positions are
 * refined to a fraction of a point by a parabola through each peak.
 */
class LatticeAnalysis final {
public:
    struct Result {
        QPointF a; ///< in points, x along the columns, y up the rows
        QPointF b;
        QPointF aPhysical; ///< in the item's x and y units
        QPointF bPhysical;
        double lengthA = 0;
        double lengthB = 0;
        double angle = 0; ///< between a and b, degrees
        QString unit;
    };

    /** False with a message when the item shows no lattice (no two independent peaks). */
    [[nodiscard]] static bool find(const QSciImage& item, Result* result, QString* message = nullptr);
    /** The lengths and angle of the lattice spanned by @p a and @p b (points, y up the rows) in @p item's units. */
    static Result fromVectors(const QSciImage& item, const QPointF& a, const QPointF& b);
    /** The result as one line for the output page. */
    static QString describe(const Result& result);
};
