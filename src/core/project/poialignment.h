#pragma once

#include <QList>
#include <QPoint>
#include <QString>

class Project;
class QSciImage;

/**
 * Alignment of items by a point of interest: the same feature marked on several items; each item moves so
 * that its mark lands on the first item's mark. One history transaction for all of them.
 */
class PoiAlignment final {
public:
    struct Mark {
        QSciImage* item = nullptr;
        QPoint point; ///< display point of the item (row 0 on top)
    };

    static QString operationText();
    /** The move that puts @p mark onto @p reference, in tab points. */
    static QPoint offset(const Mark& reference, const Mark& mark);
    /** Moves every item after the first; false (nothing changes) with fewer than two marked items. */
    static bool align(Project& project, const QList<Mark>& marks);
};
