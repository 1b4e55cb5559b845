#pragma once

#include <QVector>

/**
 * The skeleton of a mask: selected regions worn down from their borders (Zhang and Suen's two sub-iterations)
 * to lines one point wide that keep each region connected and keep its branches and holes.
 */
class Thinning final {
public:
    /** Thins @p mask (W*H bytes, column by column, non-zero selected) in place; returns the points removed. */
    static qsizetype thin(uchar* mask, int width, int height);
};
