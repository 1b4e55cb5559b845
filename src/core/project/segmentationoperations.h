#pragma once

#include <QList>
#include <QString>

class Project;
class QSciImage;

/**
 * Turns regions of items into object records with all their measures, one history transaction per run: the mask's
 * connected regions, or the grains of a watershed. New objects are numbered after those the item holds and are
 * shown with their borders and labels. The window, velmora-cli and scripts all call this.
 */
class SegmentationOperations final {
public:
    enum class Outcome { Applied, Refused };

    /**
     * One object per connected region of each item's mask, @p connectivity 4 or 8. Refused, nothing changed,
     * when no item has a selected point. @p message tells how many objects were made.
     */
    static Outcome maskToObjects(
        Project& project, const QList<QSciImage*>& items, int connectivity, QString* message = nullptr);

    /**
     * Grains by watershed: regional maxima rising at least @p minDepth (z units; 0 or less: a twentieth of the
     * item's z range) above the level where they meet a higher grain are kept apart. The flooded area is the
     * masked points when the item has any, else the points above its mean z, so the background between grains
     * is no object. Each grain's cubage is measured above its lowest point.
     */
    static Outcome watershed(
        Project& project, const QList<QSciImage*>& items, double minDepth, QString* message = nullptr);

    static QString noMaskText();
};
