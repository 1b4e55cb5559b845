#pragma once

#include <QPoint>
#include <QString>
#include <QVector>

class QSciImage;

/**
 * Removal of the ghost image that a tip with two apexes leaves: every feature appears a second time, shifted
 * by the ghost vector and scaled by a ratio. With the image modelled as z(p) = c(p) + r (c(p - v) - base), the
 * clean c follows point by point along v, c(p) = z(p) - r (c(p - v) - base), walking so that p - v is always
 * done before p; points whose p - v lies outside keep their value.
 */
class DoubleTip final {
public:
    /** The transaction's name. */
    static QString operationText();

    /** The highest point within @p radius points of @p at (z-matrix coordinates): the apex a click meant. */
    static QPoint apex(const double* z, int width, int height, const QPoint& at, int radius = 2);
    /**
     * The ghost's height over the feature's, both over @p base at the given apexes, clamped to 0 .. 0.95
     * so the walk stays stable. 0 when the feature does not stand out.
     */
    static double estimateRatio(
        const double* z, int width, int height, const QPoint& feature, const QPoint& ghost, double base);
    /** The median of the finite values: the level the ghost adds to. */
    static double baseLevel(const double* z, int count);

    /**
     * The clean matrix into @p out (W*H, column by column like @p z; may not be @p z). @p ghost is the vector
     * from a feature to its ghost in z-matrix terms (x right, y up the rows).
     */
    static void resolve(
        const double* z, double* out, int width, int height, const QPoint& ghost, double ratio, double base);
    /**
     * Improves the vector from @p feature to @p ghost (apexes, z-matrix coordinates), searching two points each
     * way around it and around @p clicked, the vector between the clicks themselves: the one whose result leaves
     * the fewest points around the marks clearly off the base level. A ghost that overlaps its feature moves
     * the apexes a click finds, hence the search. Unless @p fixedRatio, each candidate gets its own ratio, from
     * the heights at its two ends less the feature's flank.
     */
    static void refine(const double* z, int width, int height, const QPoint& feature, const QPoint& ghost,
        const QPoint& clicked, double base, bool fixedRatio, QPoint* vector, double* ratio);
    /**
     * The item's z-matrix resolved for the marks @p feature and @p ghost (z-matrix coordinates, snapped to the
     * apexes near them), with the ratio estimated from them when @p ratio is negative. @p usedRatio and
     * @p usedVector, when given, receive what was applied.
     */
    static QVector<double> resolved(const QSciImage& item, const QPoint& feature, const QPoint& ghost, double ratio,
        double* usedRatio = nullptr, QPoint* usedVector = nullptr);
};
