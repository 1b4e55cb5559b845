#include "zedit.h"

#include "itemoperations.h"

#include "core/items/qsciimage.h"

#include <algorithm>

void ZEdit::apply(Project& project, const QList<QSciImage*>& items, const QString& name,
    const std::function<void(QSciImage&)>& change)
{
    const bool anyPicture
        = std::any_of(items.cbegin(), items.cend(), [](const QSciImage* i) { return !i->drawZInSciPaint(); });
    const QSciImage::Parts parts = anyPicture ? QSciImage::ZPart | QSciImage::PicturePart : QSciImage::ZPart;
    ItemOperations::apply(project, items, name, parts, [&change](QSciImage& item) {
        change(item);
        if (!item.drawZInSciPaint())
            item.mapZToPicture();
    });
}
