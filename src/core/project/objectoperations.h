#pragma once

#include "core/analysis/objectrecognitionoptions.h"

#include <QList>
#include <QString>

class Project;
class ProgressSink;
class QSciImage;
class QSciSingleObject;

/**
 * Object recognition on items as one history transaction ("Object recognition"): every item is checked first,
 * then searched in list order; over several items the objects of each are numbered after those of the one
 * before (re-identification). The window, velmora-cli and scripts all call this.
 */
class ObjectOperations final {
public:
    enum class Outcome { Applied, Stopped, Refused };

    /**
     * Adds the objects found in each item to its object layer, numbered after the objects it already holds (or,
     * in a series, after the item before), shown or hidden by the selection policy, with the label size of the
     * options; with "Mark found object pixels" the mask becomes their union. @p referenceObject is the number of
     * the series' reference object (0: none). Refused with the precondition's message when an item fails one,
     * nothing changed. Stopped when @p progress asked to stop (the item being searched keeps its objects) or when
     * the series breaks a re-identification condition (message says which); the items done before keep theirs.
     * On success @p message tells how many objects were found.
     */
    static Outcome recognise(Project& project, const QList<QSciImage*>& items, const ObjectRecognitionOptions& options,
        int referenceObject = 0, ProgressSink* progress = nullptr, QString* message = nullptr);

    /** Numbers @p found after the objects @p item already holds. */
    static void numberAfterLayer(const QSciImage& item, QList<QSciSingleObject>& found);
    /**
     * Appends @p found to @p item's layer, each stamped with the item's title and "timestamp" header value, shown
     * or hidden by @p visible, border and label on, labels @p labelSize high. Record the item's objects first.
     */
    static void addToLayer(QSciImage& item, QList<QSciSingleObject> found, bool visible, int labelSize);

    /** "N objects found" in one item, or per item of a series. */
    static QString foundText(const QList<int>& counts);
};
