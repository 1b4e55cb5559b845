#include "objectoperations.h"

#include "operationscope.h"
#include "project.h"

#include "core/analysis/objectrecognition.h"
#include "core/analysis/objectreidentification.h"
#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QPointer>
#include <algorithm>

void ObjectOperations::numberAfterLayer(const QSciImage& item, QList<QSciSingleObject>& found)
{
    int highest = 0;
    for (int i = 0; i < item.objects().size(); ++i)
        highest = std::max(highest, item.objects().at(i).numberAt(i));
    for (QSciSingleObject& o : found)
        o.objectNumber = ++highest;
}

void ObjectOperations::addToLayer(QSciImage& item, QList<QSciSingleObject> found, bool visible, int labelSize)
{
    QString timestamp;
    for (const auto& entry : item.instrumentHeader())
        if (entry.first == QLatin1String("timestamp"))
            timestamp = entry.second;
    for (QSciSingleObject& o : found) {
        o.itemTitle = item.name();
        o.timestamp = timestamp;
        o.visible = visible;
        o.borderVisible = true;
        o.labelVisible = true;
        o.lableSize = labelSize;
    }
    QList<QSciSingleObject> layer = item.objects();
    layer.append(found);
    item.setObjects(layer);
}

QString ObjectOperations::foundText(const QList<int>& counts)
{
    if (counts.size() == 1)
        return counts.first() == 1
            ? QCoreApplication::translate("ObjectOperations", "1 object found")
            : QCoreApplication::translate("ObjectOperations", "%1 objects found").arg(counts.first());
    QStringList parts;
    for (int n : counts)
        parts << QString::number(n);
    return QCoreApplication::translate("ObjectOperations", "Objects found per image: %1")
        .arg(parts.join(QLatin1String(", ")));
}

ObjectOperations::Outcome ObjectOperations::recognise(Project& project, const QList<QSciImage*>& items,
    const ObjectRecognitionOptions& options, int referenceObject, ProgressSink* progress, QString* message)
{
    const ObjectRecognition recognition(options);
    for (const QSciImage* item : items)
        if (!recognition.check(item->width(), item->height(), message))
            return Outcome::Refused;
    if (items.isEmpty())
        return Outcome::Applied;

    QList<QPointer<QSciImage>> guarded;
    for (QSciImage* item : items)
        guarded.append(item);
    OperationScope scope(
        &project, project.tabOf(items.first()), QCoreApplication::translate("ObjectOperations", "Object recognition"));
    scope.setLogParameters(options.summary());
    const ObjectReidentification series(options);
    QList<QSciSingleObject> previous;
    bool first = true, changed = false;
    QList<int> counts;
    for (const QPointer<QSciImage>& item : guarded) {
        if (!item)
            continue;
        // The item may change while events are processed during the search: it reads its own copy.
        const QVector<double> z = item->zMatrix();
        const QVector<uchar> mask = item->maskMatrix();
        const RecognitionInput input { z.constData(), mask.constData(), item->width(), item->height() };
        QList<QSciSingleObject> found;
        const ObjectRecognition::Result result = recognition.find(input, &found, progress, message);
        const auto stop = [&] {
            if (changed)
                scope.commit();
            return Outcome::Stopped;
        };
        if (result == ObjectRecognition::Result::Stopped)
            return stop();
        if (result == ObjectRecognition::Result::Refused || !item || item->width() != input.width
            || item->height() != input.height)
            continue;

        if (first)
            numberAfterLayer(*item, found);
        else if (!series.match(previous, found, referenceObject, message)) {
            return stop();
        }
        first = false;

        QSciImage::Parts parts = QSciImage::ObjectsPart;
        if (options.markFoundPixels)
            parts |= QSciImage::MaskPart;
        if (!scope.record(item, parts)) {
            if (message)
                message->clear();
            scope.rollback();
            return Outcome::Refused;
        }
        addToLayer(*item, found, options.newObjectsSelected, options.labelSize);
        if (options.markFoundPixels) {
            QVector<uchar> marked(qsizetype(item->width()) * item->height(), 0);
            for (const QSciSingleObject& o : found)
                for (const QPoint& p : o.fillPixels)
                    marked[qsizetype(p.x()) * item->height() + p.y()] = 1;
            (void)item->setMask(marked);
        }
        counts.append(found.size());
        previous = found;
        changed = true;
    }
    scope.commit();
    if (message)
        *message = foundText(counts);
    return Outcome::Applied;
}
