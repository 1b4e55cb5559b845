#include "effectoperations.h"

#include "collectiontab.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"
#include "core/processing/qscieffect.h"

#include <QPointer>

EffectOperations::Outcome EffectOperations::apply(Project& project, const QList<QSciImage*>& items,
    const QSciEffect& effect, ProgressSink* progress, QString* message)
{
    for (const QSciImage* item : items)
        if (!effect.check(*item, message))
            return Outcome::Refused;
    if (items.isEmpty())
        return Outcome::Applied;

    // The window keeps processing events while an effect runs: items may go meanwhile, so each is held by a
    // guard and read from a shared copy of its matrices.
    QList<QPointer<QSciImage>> guarded;
    for (QSciImage* item : items)
        guarded.append(item);
    OperationScope scope(&project, project.tabOf(items.first()), effect.name());
    scope.setLogParameters(effect.logParameters());
    bool changed = false;
    for (const QPointer<QSciImage>& item : guarded) {
        if (!item)
            continue;
        const QVector<double> source = item->zMatrix();
        const QVector<uchar> mask = item->maskMatrix();
        QVector<double> result = source;
        result.detach();
        const EffectInput input { source.constData(), mask.constData(), item->width(), item->height() };
        if (!effect.run(input, result.data(), progress)) {
            if (changed)
                scope.commit();
            return Outcome::Stopped;
        }
        if (!item || item->width() != input.width || item->height() != input.height)
            continue;
        // An item that shows its picture would hide the new heights, so its picture follows them.
        const bool repaint = !item->drawZInSciPaint();
        QSciImage::Parts parts = QSciImage::ZPart;
        if (repaint)
            parts |= QSciImage::PicturePart;
        if (!scope.record(item, parts)) {
            // The history has told the user why; without a saved state the change could not be undone.
            if (message)
                message->clear();
            scope.rollback();
            return Outcome::Refused;
        }
        if (!item->setZMatrix(result))
            continue;
        if (repaint)
            item->mapZToPicture();
        changed = true;
    }
    scope.commit();
    return Outcome::Applied;
}
