#include "poialignment.h"

#include "itemoperations.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QHash>

QString PoiAlignment::operationText()
{
    return QCoreApplication::translate("PoiAlignment", "Align by point of interest");
}

QPoint PoiAlignment::offset(const Mark& reference, const Mark& mark)
{
    const QPoint target(reference.item->left() + reference.point.x(), reference.item->top() + reference.point.y());
    return target - QPoint(mark.item->left() + mark.point.x(), mark.item->top() + mark.point.y());
}

bool PoiAlignment::align(Project& project, const QList<Mark>& marks)
{
    if (marks.size() < 2 || !marks.first().item)
        return false;
    QHash<QSciImage*, QPoint> moves;
    QList<QSciImage*> items;
    for (int i = 1; i < marks.size(); ++i) {
        const Mark& mark = marks.at(i);
        if (!mark.item || mark.item == marks.first().item || moves.contains(mark.item))
            continue;
        moves.insert(mark.item, offset(marks.first(), mark));
        items.append(mark.item);
    }
    if (items.isEmpty())
        return false;
    ItemOperations::apply(project, items, operationText(), QSciImage::PositionPart,
        [&moves](QSciImage& item) { item.moveBy(moves.value(&item).x(), moves.value(&item).y()); });
    return true;
}
