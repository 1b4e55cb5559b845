#include "itemarrangement.h"

#include "collectiontab.h"
#include "itemoperations.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"

#include <QCollator>
#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>
#include <algorithm>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ItemArrangement", text);
}

QList<QSciImage*> onTab(const CollectionTab* tab, const QList<QSciImage*>& items)
{
    QList<QSciImage*> result;
    for (QSciImage* item : items) {
        if (tab->contains(item))
            result.append(item);
    }
    return result;
}

QList<QSciImage*> without(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen)
{
    QList<QSciImage*> rest;
    for (QSciImage* item : all) {
        if (!chosen.contains(item))
            rest.append(item);
    }
    return rest;
}

QList<QSciImage*> toFront(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen)
{
    return without(all, chosen) + chosen;
}

QList<QSciImage*> toBack(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen)
{
    return chosen + without(all, chosen);
}

QList<QSciImage*> underFirst(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen)
{
    QList<QSciImage*> result = without(all, chosen.mid(1));
    const int at = result.indexOf(chosen.first());
    for (int i = chosen.size() - 1; i >= 1; --i)
        result.insert(at, chosen.at(i));
    return result;
}

QList<QSciImage*> ontoLast(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen)
{
    QList<QSciImage*> rest = chosen.mid(0, chosen.size() - 1);
    QList<QSciImage*> result = without(all, rest);
    const int at = result.indexOf(chosen.last()) + 1;
    for (int i = rest.size() - 1; i >= 0; --i)
        result.insert(at, rest.at(i));
    return result;
}

int numberIn(const QString& name, bool* found)
{
    static const QRegularExpression digits(QStringLiteral("\\d+"));
    const QRegularExpressionMatch match = digits.match(name);
    *found = match.hasMatch();
    return *found ? match.captured().toInt() : 0;
}

} // namespace

void ItemArrangement::moveBy(Project& project, const QList<QSciImage*>& items, int dx, int dy)
{
    const bool eight = qAbs(dx) == 8 || qAbs(dy) == 8;
    const char* direction = dy < 0 ? "up" : dx > 0 ? "right" : dy > 0 ? "down" : "left";
    const QString name = tr(eight ? "Move 8 pixel %1" : "Move 1 pixel %1").arg(tr(direction));
    ItemOperations::apply(
        project, items, name, QSciImage::PositionPart, [dx, dy](QSciImage& item) { item.moveBy(dx, dy); });
}

void ItemArrangement::align(Project& project, const QList<QSciImage*>& items, Edge edge)
{
    if (items.size() < 2)
        return;
    QRect united;
    for (const QSciImage* item : items)
        united = united.united(item->tabRect());
    static const char* const names[] = { "Align top", "Align right", "Align bottom", "Align left", "Align centered" };
    ItemOperations::apply(
        project, items, tr(names[int(edge)]), QSciImage::PositionPart, [edge, united](QSciImage& item) {
            switch (edge) {
            case Edge::Top:
                item.setPosition(item.left(), united.top());
                break;
            case Edge::Right:
                item.setPosition(united.right() - item.width() + 1, item.top());
                break;
            case Edge::Bottom:
                item.setPosition(item.left(), united.bottom() - item.height() + 1);
                break;
            case Edge::Left:
                item.setPosition(united.left(), item.top());
                break;
            case Edge::Centered:
                item.setPosition(united.center().x() - item.width() / 2, united.center().y() - item.height() / 2);
                break;
            }
        });
}

void ItemArrangement::alignAdvanced(Project& project, const QList<QSciImage*>& items, Layout layout, int spacing)
{
    if (items.size() < 2)
        return;
    const QSciImage* first = items.first();
    const bool row = layout == Layout::RowByTop || layout == Layout::RowByBottom || layout == Layout::RowByCenter;
    int next = row ? first->left() : first->top();
    const int anchorTop = first->top(), anchorBottom = first->bottom();
    const int anchorLeft = first->left(), anchorRight = first->right();
    const int anchorCenterY = first->top() + first->height() / 2, anchorCenterX = first->left() + first->width() / 2;
    ItemOperations::apply(project, items, tr("Advanced alignment"), QSciImage::PositionPart, [&](QSciImage& item) {
        int x = item.left(), y = item.top();
        if (row) {
            x = next;
            next += item.width() + spacing;
            y = layout == Layout::RowByTop      ? anchorTop
                : layout == Layout::RowByBottom ? anchorBottom - item.height() + 1
                                                : anchorCenterY - item.height() / 2;
        } else {
            y = next;
            next += item.height() + spacing;
            x = layout == Layout::ColumnByLeft    ? anchorLeft
                : layout == Layout::ColumnByRight ? anchorRight - item.width() + 1
                                                  : anchorCenterX - item.width() / 2;
        }
        item.setPosition(x, y);
    });
}

void ItemArrangement::reorder(Project& project, const QList<QSciImage*>& items, const QString& name,
    QList<QSciImage*> (*arrange)(const QList<QSciImage*>& all, const QList<QSciImage*>& chosen))
{
    if (items.isEmpty())
        return;
    OperationScope scope(&project, project.tabOf(items.first()), name);
    for (CollectionTab* tab : project.tabs()) {
        const QList<QSciImage*> chosen = onTab(tab, items);
        if (chosen.isEmpty())
            continue;
        scope.recordOrder(tab);
        tab->setOrder(arrange(tab->items(), chosen));
    }
    scope.commit();
}

void ItemArrangement::bringToFront(Project& project, const QList<QSciImage*>& items)
{
    reorder(project, items, tr("Bring to front"), toFront);
}

void ItemArrangement::sendToBack(Project& project, const QList<QSciImage*>& items)
{
    reorder(project, items, tr("Send to back"), toBack);
}

void ItemArrangement::stackUnderFirst(Project& project, const QList<QSciImage*>& items)
{
    reorder(project, items, tr("Stack under first item"), underFirst);
}

void ItemArrangement::stackOntoLast(Project& project, const QList<QSciImage*>& items)
{
    reorder(project, items, tr("Stack onto last item"), ontoLast);
}

void ItemArrangement::reorderInPlace(Project& project, const QList<QSciImage*>& ordered, const QString& name)
{
    if (ordered.isEmpty())
        return;
    OperationScope scope(&project, project.tabOf(ordered.first()), name);
    for (CollectionTab* tab : project.tabs()) {
        const QList<QSciImage*> chosen = onTab(tab, ordered);
        if (chosen.size() < 2)
            continue;
        QList<QSciImage*> order = tab->items();
        QList<int> places;
        for (QSciImage* item : chosen)
            places.append(order.indexOf(item));
        std::sort(places.begin(), places.end());
        for (int i = 0; i < places.size(); ++i)
            order[places.at(i)] = chosen.at(i);
        scope.recordOrder(tab);
        tab->setOrder(order);
    }
    scope.commit();
}

void ItemArrangement::revertOrder(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> ordered = items;
    std::sort(ordered.begin(), ordered.end(),
        [](const QSciImage* a, const QSciImage* b) { return a->zPosInImageList() > b->zPosInImageList(); });
    reorderInPlace(project, ordered, tr("Revert order"));
}

void ItemArrangement::sortByName(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> ordered = items;
    QCollator collator;
    std::stable_sort(ordered.begin(), ordered.end(),
        [&collator](const QSciImage* a, const QSciImage* b) { return collator.compare(a->name(), b->name()) < 0; });
    reorderInPlace(project, ordered, tr("Sort by name"));
}

void ItemArrangement::sortByCreationTime(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> ordered = items;
    std::stable_sort(ordered.begin(), ordered.end(),
        [](const QSciImage* a, const QSciImage* b) { return a->creationTime() < b->creationTime(); });
    reorderInPlace(project, ordered, tr("Sort by creation time"));
}

void ItemArrangement::sortByNumber(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> ordered = items;
    std::stable_sort(ordered.begin(), ordered.end(), [](const QSciImage* a, const QSciImage* b) {
        bool hasA = false, hasB = false;
        const int na = numberIn(a->name(), &hasA), nb = numberIn(b->name(), &hasB);
        if (hasA != hasB)
            return hasA;
        return hasA && na != nb ? na < nb : a->name() < b->name();
    });
    reorderInPlace(project, ordered, tr("Sort by number (in name)"));
}

void ItemArrangement::setVisible(Project& project, const QList<QSciImage*>& items, bool visible)
{
    ItemOperations::apply(project, items, visible ? tr("Show") : tr("Hide"), QSciImage::PositionPart,
        [visible](QSciImage& item) { item.setVisible(visible); });
}

void ItemArrangement::remove(Project& project, const QList<QSciImage*>& items, const QString& name)
{
    if (items.isEmpty())
        return;
    OperationScope scope(&project, project.tabOf(items.first()), name.isEmpty() ? tr("Delete") : name);
    for (QSciImage* item : items) {
        CollectionTab* tab = project.tabOf(item);
        if (!tab)
            continue;
        if (!scope.recordRemoval(item))
            return scope.rollback(); // an item that could not be saved is not deleted
        delete tab->takeItem(item);
    }
    scope.commit();
}

void ItemArrangement::moveToTab(Project& project, const QList<QSciImage*>& items, CollectionTab* target)
{
    if (items.isEmpty() || !target)
        return;
    OperationScope scope(&project, target, tr("Move items to current tab"));
    for (QSciImage* item : items) {
        CollectionTab* tab = project.tabOf(item);
        if (!tab || tab == target)
            continue;
        if (!scope.recordRemoval(item))
            return scope.rollback();
        target->addItem(tab->takeItem(item));
        scope.recordCreated(item);
    }
    scope.commit();
}

void ItemArrangement::addNew(Project& project, CollectionTab* tab, QSciImage* item, const QString& name)
{
    constexpr int gap = 10; // room between the new item and those already there
    QRect occupied;
    bool overlaps = false;
    for (const QSciImage* other : tab->items()) {
        occupied |= other->tabRect();
        overlaps = overlaps || other->tabRect().intersects(item->tabRect());
    }
    if (overlaps)
        item->setPosition(occupied.right() + 1 + gap, occupied.top());
    item->setSelected(false);
    item->setVisible(true);
    OperationScope scope(&project, tab, name);
    tab->addItem(item);
    scope.recordCreated(item);
    scope.commit();
}
