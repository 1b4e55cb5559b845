#pragma once

#include "core/display/displaydecoration.h"

#include <QImage>

class QSciImage;

/**
 * The display elements of an item: its settings and calibration turned into a DisplayDecoration, and the
 * decorated picture that exports write.
 */
class ItemDecoration final {
public:
    /** What the elements of @p item describe: its name, calibration, units, z range and gradient. */
    static DisplayDecoration::Source sourceOf(const QSciImage& item);
    /** @p item's elements as its properties set them. */
    static DisplayDecoration of(const QSciImage& item);
    static DisplayDecoration of(const QSciImage& item, const DisplayElements& elements);

    /** @p item's elements, or rulers, title and z scale when it switches none on: what a figure export draws. */
    static DisplayElements figureElements(const QSciImage& item);

    /** What an item shows: the z-matrix through its gradient when it draws z, its picture otherwise. */
    static QImage shownPicture(const QSciImage& item);
    /** shownPicture() with the elements @p item switches on around and over it. */
    static QImage decoratedPicture(const QSciImage& item);
    /** @p picture (the item's size) with @p elements around and over it. */
    static QImage decoratedPicture(const QSciImage& item, const QImage& picture, const DisplayElements& elements);
};
