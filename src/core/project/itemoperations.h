#pragma once

#include "core/items/qsciimage.h"

#include <QList>
#include <QString>
#include <functional>

class ColorGradient;
class Project;
struct ItemProperties;
class ProgressSink;

/**
 * The operations of the item context menu on a list of items (in list order). Each runs as one history
 * transaction named by its menu text, records exactly the parts it changes, then changes them. The window,
 * velmora-cli and scripts all call these.
 */
class ItemOperations final {
public:
    static void mapZToPicture(Project& project, const QList<QSciImage*>& items, ProgressSink* progress = nullptr);
    static void mapPictureToZ(Project& project, const QList<QSciImage*>& items);
    /**
     * z' = z * multiply + add. Refused (false with a message, nothing changed) when the numbers or the result
     * for any item would not be finite: NaN and infinity stand for missing points and must not be made.
     */
    static bool recalibrateZ(
        Project& project, const QList<QSciImage*>& items, double multiply, double add, QString* message = nullptr);
    static void flipHorizontal(Project& project, const QList<QSciImage*>& items);
    static void flipVertical(Project& project, const QList<QSciImage*>& items);
    /** +90 (clockwise), -90 or 180. */
    static void rotate(Project& project, const QList<QSciImage*>& items, int degrees);
    static void cutToMaskBorder(Project& project, const QList<QSciImage*>& items);
    /**
     * Clears the pictures through editPicture(); returns the items that were switched to showing their picture.
     */
    static QList<QSciImage*> clearPicture(Project& project, const QList<QSciImage*>& items);
    /**
     * Runs a change of the pictures (drawing, clearing) as one transaction named @p name. An item that shows its
     * z-matrix through its gradient would hide the change, so it is switched to showing its picture in the same
     * step (undo switches it back). Returns the items so switched.
     */
    static QList<QSciImage*> editPicture(Project& project, const QList<QSciImage*>& items, const QString& name,
        const std::function<void(QSciImage&)>& change);
    /** The status-bar note on items that editPicture() switched to their picture. */
    static QString pictureShownText(const QList<QSciImage*>& switched);
    static void clearObjects(Project& project, const QList<QSciImage*>& items);
    static void clearMask(Project& project, const QList<QSciImage*>& items);
    static void selectAllMask(Project& project, const QList<QSciImage*>& items);
    /** Like clearMask, under the selection tools' own text "Unselect all (mask)". */
    static void unselectAllMask(Project& project, const QList<QSciImage*>& items);
    static void invertMask(Project& project, const QList<QSciImage*>& items);
    /** Thins each mask to its skeleton ("Thinning"). */
    static void thinMask(Project& project, const QList<QSciImage*>& items);
    static void setColorGradient(Project& project, const QList<QSciImage*>& items, const ColorGradient& gradient);
    /**
     * Gives every item the same colour range ("Color range"), so a series is coloured alike; items then show
     * their z-matrix through it.
     */
    static void setColorRange(Project& project, const QList<QSciImage*>& items, const ColorRange& range);
    /** Puts edited display and header values back into @p item as one transaction ("Item properties"). */
    static void setProperties(Project& project, QSciImage* item, const ItemProperties& properties);

    /**
     * Cuts every item to the common area of all. Fewer than two items: nothing. Items without a common
     * area are left alone and false is returned with a message.
     */
    [[nodiscard]] static bool cutToOverlap(
        Project& project, const QList<QSciImage*>& items, ProgressSink* progress = nullptr, QString* message = nullptr);
    /**
     * Grows every item to the union of all; new points get the item's own min (or max) z. False with a
     * message when the union is too large for an item.
     */
    static bool expandToBorder(Project& project, const QList<QSciImage*>& items, bool fillWithMax,
        ProgressSink* progress = nullptr, QString* message = nullptr);
    /**
     * A new item covering the union of all, placed at the union's top-left on the first item's tab.
     * Where items overlap, the one higher in the stacking order wins (as the tab shows it); uncovered
     * points get the minimum (or maximum) z over all items and a transparent picture. Header and gradient
     * come from the first item; masks are merged, objects are not carried over. Returns the new item, or
     * nullptr (with a message when the union is too large).
     */
    static QSciImage* merge(Project& project, const QList<QSciImage*>& items, bool fillWithMax,
        ProgressSink* progress = nullptr, QString* message = nullptr);
    /** Copies of the items, each on its source's tab just above it; the copies become the selection. */
    static QList<QSciImage*> duplicate(Project& project, const QList<QSciImage*>& items);

    /**
     * Runs @p change on each item inside one transaction named @p name, recording @p parts first;
     * @p logParameters go into the processing log with the name.
     */
    static void apply(Project& project, const QList<QSciImage*>& items, const QString& name, QSciImage::Parts parts,
        const std::function<void(QSciImage&)>& change, const QString& logParameters = QString());
};
