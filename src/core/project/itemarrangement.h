#pragma once

#include <QList>
#include <QString>

class CollectionTab;
class Project;
class QSciImage;

/**
 * Place, stacking order, visibility and membership of items on their tabs: the move, align, z-order,
 * sort, show/hide, delete and move-to-tab entries of the item context menu, each one history transaction.
 */
class ItemArrangement final {
public:
    enum class Edge { Top, Right, Bottom, Left, Centered };
    /** How "Advanced alignment..." lays items out: in a row (by top, bottom or vertical centre) or a column. */
    enum class Layout { RowByTop, RowByBottom, RowByCenter, ColumnByLeft, ColumnByRight, ColumnByCenter };

    static void moveBy(Project& project, const QList<QSciImage*>& items, int dx, int dy);
    /** Aligns to the outermost edge of the items (Centered: centres on the centre of their union). */
    static void align(Project& project, const QList<QSciImage*>& items, Edge edge);
    /** Lays the items out one after another in list order, @p spacing points apart. */
    static void alignAdvanced(Project& project, const QList<QSciImage*>& items, Layout layout, int spacing);

    static void bringToFront(Project& project, const QList<QSciImage*>& items);
    static void sendToBack(Project& project, const QList<QSciImage*>& items);
    /** The other selected items go directly beneath the first one. */
    static void stackUnderFirst(Project& project, const QList<QSciImage*>& items);
    /** The other selected items go directly above the last one. */
    static void stackOntoLast(Project& project, const QList<QSciImage*>& items);
    /** The items swap places so that their order among their own slots is reversed. */
    static void revertOrder(Project& project, const QList<QSciImage*>& items);
    static void sortByName(Project& project, const QList<QSciImage*>& items);
    static void sortByCreationTime(Project& project, const QList<QSciImage*>& items);
    /** By the first whole number in the name; names without one come last, by name. */
    static void sortByNumber(Project& project, const QList<QSciImage*>& items);

    static void setVisible(Project& project, const QList<QSciImage*>& items, bool visible);
    /** Deletes the items in a transaction named @p name ("Delete" when empty); undo brings them back. */
    static void remove(Project& project, const QList<QSciImage*>& items, const QString& name = QString());
    static void moveToTab(Project& project, const QList<QSciImage*>& items, CollectionTab* target);
    /**
     * Puts a new item (opened, made or imported) on @p tab in a transaction named @p name. It keeps the place
     * it has unless that would hide items already there; then it goes to their right.
     */
    static void addNew(Project& project, CollectionTab* tab, QSciImage* item, const QString& name);

private:
    /** Reorders within each tab: the items keep the slots they hold, filled in @p ordered order. */
    static void reorderInPlace(Project& project, const QList<QSciImage*>& ordered, const QString& name);
    static void reorder(Project& project, const QList<QSciImage*>& items, const QString& name,
        QList<QSciImage*> (*arrange)(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen));
};
