#pragma once

#include <QPoint>
#include <QVector>

class QSciImage;

/** Hand edits of an item's objects: finding the object under a point and adding or taking away points. */
class ObjectEditing final {
public:
    /** The index of the object whose points hold @p point (x, y from the bottom), the topmost first; -1 for none. */
    static int objectAt(const QSciImage& item, const QPoint& point);
    /**
     * Adds @p points (those inside the item) to object @p index, or takes them away, and computes its measures anew
     * over the same reference height. False, and nothing changes, when the object would be left empty or the
     * index is out of range.
     */
    static bool editPixels(QSciImage& item, int index, const QVector<QPoint>& points, bool add);
};
