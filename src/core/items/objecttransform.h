#pragma once

#include "qscisingleobject.h"

#include <QList>
#include <functional>

/**
 * Moves object records with the points of their item when it is flipped, rotated, cut or grown: pixel lists,
 * the points where measures are reached, the bounding box and the axis angles follow the item's points. The
 * measures themselves do not change under these moves. An object that loses points (cut across) is dropped,
 * since its measures would no longer describe it.
 */
class ObjectTransform final {
public:
    /** @p map takes an old point (x, y, rows from the bottom) to its place in the new newWidth x newHeight item. */
    static void apply(
        QList<QSciSingleObject>& objects, int newWidth, int newHeight, const std::function<QPoint(int, int)>& map);
};
