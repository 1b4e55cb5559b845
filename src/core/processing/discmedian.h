#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>

class ProgressSink;

/**
 * The exact median over a disc: for each point, the values of the point and of every neighbour within the
 * Euclidean distance r that lies inside the matrix, sorted ascending, and the one at position count/2 (the upper
 * median for an even count). The same values as sorting each neighbourhood, at a cost per point that grows with
 * r, not r^2: small discs go through a selection network, larger ones through a rank transform per tile and a
 * sliding set of the disc's ranks. Matrices are column by column.
 */
class DiscMedian final {
public:
    /** The offsets (dx, dy) of the disc, the centre excluded. */
    static QVector<QPoint> offsets(double radius);

    /**
     * Writes the median of each point of @p region into @p out, or only of its selected points when @p mask is
     * given; other points of @p out are left alone. False when @p progress asked to stop.
     */
    [[nodiscard]] static bool filter(const double* z, int width, int height, double radius, const QRect& region,
        const uchar* mask, double* out, ProgressSink* progress, const QString& label);
};
