#pragma once

#include <QList>
#include <QStringList>
#include <QVector>

class QSciImage;
class QSciSingleObject;

/**
 * The measures of objects as table rows: one row per object, one column per measure, headed by the measure's
 * label in pixel units ("[px]") or in the item's physical units ("[xUnits]", "[yUnits]", "[xUnits*yUnits]"). Only
 * columns whose label names a unit convert; z values are always in the item's z unit. The per-image summary of a
 * series has one row per item: its object count, mean area and the share of its points covered.
 */
class ObjectTable final {
public:
    static QStringList labels(bool physical);
    /** The row of @p object, the one at @p index of @p item's layer. */
    static QStringList row(const QSciSingleObject& object, int index, const QSciImage& item, bool physical);
    /** The header row, then every object of every item in order. */
    static QVector<QStringList> measures(const QList<const QSciImage*>& items, bool physical);

    static QStringList summaryLabels(bool physical);
    static QStringList summaryRow(const QSciImage& item, bool physical);
    static QVector<QStringList> summary(const QList<const QSciImage*>& items, bool physical);
};
