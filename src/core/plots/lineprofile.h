#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

class QSciImage;

/**
 * z along a straight line over an item, in physical units: one sample per data point of length, each the
 * bilinear value at its place, averaged across the line over @p width parallel lines one point apart. Samples
 * whose place lies outside the item, or whose every contribution is no finite number, are NaN.
 */
class LineProfile final {
public:
    /** The most samples a profile takes: beyond any line across an item. */
    static constexpr int MaxSamples = 1 << 20;

    /** @p from and @p to are display coordinates (row 0 on top), point centres at whole numbers. */
    static LineProfile sample(const QSciImage& item, const QPointF& from, const QPointF& to, int width = 1);

    QVector<double> distance;
    QVector<double> z;
    QString distanceUnit;
    QString zUnit;
    QPointF from;
    QPointF to;
    int width = 1;

    int size() const { return int(z.size()); }
    /** "distance [unit],z [unit]" and one line per sample, numbers with 17 significant digits. */
    QString toCsv() const;
};
