#include "objectediting.h"

#include "objectmeasures.h"

#include "core/items/qsciimage.h"

#include <QSet>

int ObjectEditing::objectAt(const QSciImage& item, const QPoint& point)
{
    const QList<QSciSingleObject>& objects = item.objects();
    for (int i = objects.size() - 1; i >= 0; --i) {
        const QSciSingleObject& o = objects.at(i);
        if (!o.boundingBox.isEmpty() && !o.boundingBox.contains(point))
            continue;
        if (o.fillPixels.contains(point))
            return i;
    }
    return -1;
}

bool ObjectEditing::editPixels(QSciImage& item, int index, const QVector<QPoint>& points, bool add)
{
    if (index < 0 || index >= item.objects().size())
        return false;
    QSciSingleObject object = item.objects().at(index);
    const double n = object.fillPixels.size();
    const double reference = n > 0 ? object.zMean - object.cubage / n : 0;
    QSet<quint64> present;
    const auto key = [](const QPoint& p) { return (quint64(quint32(p.x())) << 32) | quint32(p.y()); };
    for (const QPoint& p : object.fillPixels)
        present.insert(key(p));
    if (add) {
        for (const QPoint& p : points)
            if (p.x() >= 0 && p.y() >= 0 && p.x() < item.width() && p.y() < item.height()
                && !present.contains(key(p))) {
                present.insert(key(p));
                object.fillPixels.append(p);
            }
    } else {
        QSet<quint64> gone;
        for (const QPoint& p : points)
            gone.insert(key(p));
        QVector<QPoint> kept;
        for (const QPoint& p : object.fillPixels)
            if (!gone.contains(key(p)))
                kept.append(p);
        object.fillPixels = kept;
    }
    if (object.fillPixels.isEmpty())
        return false;
    ObjectMeasures::computeAll(object, { item.zData(), item.width(), item.height() }, reference);
    QList<QSciSingleObject> objects = item.objects();
    objects[index] = object;
    item.setObjects(objects);
    return true;
}
