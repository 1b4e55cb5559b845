#include "itemoperations.h"

#include "collectiontab.h"
#include "itemproperties.h"
#include "operationscope.h"
#include "project.h"

#include "core/base/progresssink.h"
#include "core/display/colorgradient.h"
#include "core/processing/thinning.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ItemOperations", text);
}

CollectionTab* tabFor(Project& project, const QList<QSciImage*>& items)
{
    return items.isEmpty() ? project.currentTab() : project.tabOf(items.first());
}

ProgressSink& sinkOr(ProgressSink* progress)
{
    static NullProgressSink none;
    return progress ? *progress : none;
}

/** Union (or intersection) of the items' rectangles on the tab. */
QRect boundingRect(const QList<QSciImage*>& items, bool intersect)
{
    int left = items.first()->left(), top = items.first()->top();
    int right = items.first()->right(), bottom = items.first()->bottom();
    for (const QSciImage* item : items) {
        if (intersect) {
            left = std::max(left, item->left());
            top = std::max(top, item->top());
            right = std::min(right, item->right());
            bottom = std::min(bottom, item->bottom());
        } else {
            left = std::min(left, item->left());
            top = std::min(top, item->top());
            right = std::max(right, item->right());
            bottom = std::max(bottom, item->bottom());
        }
    }
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

/** Items far apart on a tab span more points than one item can hold. */
bool fitsOrSays(const QRect& rect, QString* message)
{
    const qint64 w = qint64(rect.right()) - rect.left() + 1, h = qint64(rect.bottom()) - rect.top() + 1;
    if (QSciImage::sizeFits(w, h))
        return true;
    if (message)
        *message = QSciImage::tooLargeText(w, h);
    return false;
}

} // namespace

void ItemOperations::apply(Project& project, const QList<QSciImage*>& items, const QString& name,
    QSciImage::Parts parts, const std::function<void(QSciImage&)>& change, const QString& logParameters)
{
    if (items.isEmpty())
        return;
    OperationScope scope(&project, tabFor(project, items), name);
    scope.setLogParameters(logParameters);
    for (QSciImage* item : items) {
        if (!scope.record(item, parts))
            return scope.rollback(); // without a saved state the change could not be undone
        change(*item);
    }
    scope.commit();
}

void ItemOperations::mapZToPicture(Project& project, const QList<QSciImage*>& items, ProgressSink* progress)
{
    if (items.isEmpty())
        return;
    ProgressSink& sink = sinkOr(progress);
    OperationScope scope(&project, tabFor(project, items), tr("Map z-matrix to picture"));
    sink.begin(tr("Map z-matrix to picture"), items.size());
    for (int i = 0; i < items.size(); ++i) {
        if (sink.isCancelled() || !scope.record(items.at(i), QSciImage::PicturePart)) {
            sink.end();
            return scope.rollback();
        }
        items.at(i)->mapZToPicture();
        sink.step(i + 1);
    }
    sink.end();
    scope.commit();
}

void ItemOperations::mapPictureToZ(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Map picture to z-matrix"), QSciImage::ZPart, [](QSciImage& i) { i.mapPictureToZ(); });
}

bool ItemOperations::recalibrateZ(
    Project& project, const QList<QSciImage*>& items, double multiply, double add, QString* message)
{
    bool finite = std::isfinite(multiply) && std::isfinite(add);
    for (const QSciImage* item : items) {
        double low = 0, high = 0;
        item->zRange(&low, &high);
        // The extremes map to the extremes, so checking them checks every point.
        if (finite && std::isfinite(low))
            finite = std::isfinite(low * multiply + add) && std::isfinite(high * multiply + add);
    }
    if (!finite) {
        if (message)
            *message = tr("Recalibrate z-matrix: the result would hold values that are no finite numbers.");
        return false;
    }
    apply(
        project, items, tr("Recalibrate z-matrix"), QSciImage::ZPart | QSciImage::HeaderPart,
        [=](QSciImage& i) { i.recalibrateZ(multiply, add); },
        QStringLiteral("multiply=%1, add=%2").arg(multiply, 0, 'g', 12).arg(add, 0, 'g', 12));
    return true;
}

void ItemOperations::flipHorizontal(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Flip horizontal"), QSciImage::AllParts, [](QSciImage& i) { i.flipHorizontal(); });
}

void ItemOperations::flipVertical(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Flip vertical"), QSciImage::AllParts, [](QSciImage& i) { i.flipVertical(); });
}

void ItemOperations::rotate(Project& project, const QList<QSciImage*>& items, int degrees)
{
    const QString name = degrees == 90 ? tr("Rotate clockwise (+90°)")
        : degrees == -90               ? tr("Rotate counterclockwise (-90°)")
                                       : tr("Rotate 180°");
    apply(project, items, name, QSciImage::AllParts, [degrees](QSciImage& i) { i.rotate(degrees); });
}

void ItemOperations::cutToMaskBorder(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> withMask;
    std::copy_if(items.cbegin(), items.cend(), std::back_inserter(withMask),
        [](const QSciImage* i) { return i->maskSelectedCount() > 0; });
    apply(project, withMask, tr("Cut to mask border-rect"), QSciImage::AllParts,
        [](QSciImage& i) { i.cutToMaskBorderRect(); });
}

QList<QSciImage*> ItemOperations::clearPicture(Project& project, const QList<QSciImage*>& items)
{
    return editPicture(project, items, tr("Clear picture"), [](QSciImage& i) { i.clearPicture(); });
}

QList<QSciImage*> ItemOperations::editPicture(Project& project, const QList<QSciImage*>& items, const QString& name,
    const std::function<void(QSciImage&)>& change)
{
    QList<QSciImage*> switched;
    std::copy_if(items.cbegin(), items.cend(), std::back_inserter(switched),
        [](const QSciImage* i) { return i->drawZInSciPaint(); });
    const QSciImage::Parts parts = switched.isEmpty() ? QSciImage::Parts(QSciImage::PicturePart)
                                                      : QSciImage::PicturePart | QSciImage::DisplayPart;
    apply(project, items, name, parts, [&](QSciImage& i) {
        change(i);
        if (i.drawZInSciPaint())
            i.setDrawSwitches(true, i.drawMaskInSciPaint(), i.drawObjectsInSciPaint(), false);
    });
    // A step that could not be recorded was rolled back, switches and all.
    switched.erase(
        std::remove_if(switched.begin(), switched.end(), [](const QSciImage* i) { return i->drawZInSciPaint(); }),
        switched.end());
    return switched;
}

QString ItemOperations::pictureShownText(const QList<QSciImage*>& switched)
{
    if (switched.size() == 1)
        return tr("\"%1\" showed its z-matrix; it now shows its picture, where the change was made.")
            .arg(switched.first()->name());
    return tr("%1 items showed their z-matrix; they now show their picture, where the change was made.")
        .arg(switched.size());
}

void ItemOperations::clearObjects(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Clear object layer"), QSciImage::ObjectsPart, [](QSciImage& i) { i.clearObjects(); });
}

void ItemOperations::clearMask(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Clear mask"), QSciImage::MaskPart, [](QSciImage& i) { i.clearMask(); });
}

void ItemOperations::selectAllMask(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Select all (mask)"), QSciImage::MaskPart, [](QSciImage& i) { i.selectAllMask(); });
}

void ItemOperations::unselectAllMask(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Unselect all (mask)"), QSciImage::MaskPart, [](QSciImage& i) { i.clearMask(); });
}

void ItemOperations::invertMask(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Invert selection (mask)"), QSciImage::MaskPart, [](QSciImage& i) { i.invertMask(); });
}

void ItemOperations::setColorGradient(Project& project, const QList<QSciImage*>& items, const ColorGradient& gradient)
{
    apply(project, items, tr("Select color gradient"), QSciImage::DisplayPart | QSciImage::PicturePart,
        [&gradient](QSciImage& i) {
            i.setColorGradient(gradient);
            if (i.drawZInSciPaint())
                i.mapZToPicture();
        });
}

void ItemOperations::setColorRange(Project& project, const QList<QSciImage*>& items, const ColorRange& range)
{
    // A range is chosen to be seen: an item showing its picture is switched to its z-matrix in the same step.
    apply(project, items, tr("Color range"), QSciImage::DisplayPart, [&range](QSciImage& i) {
        i.setColorRange(range);
        if (!i.drawZInSciPaint())
            i.setDrawSwitches(i.drawImageInSciPaint(), i.drawMaskInSciPaint(), i.drawObjectsInSciPaint(), true);
    });
}

void ItemOperations::setProperties(Project& project, QSciImage* item, const ItemProperties& properties)
{
    if (!item || ItemProperties::of(*item) == properties)
        return;
    apply(project, { item }, tr("Item properties"),
        QSciImage::HeaderPart | QSciImage::DisplayPart | QSciImage::PositionPart,
        [&properties](QSciImage& i) { properties.applyTo(i); });
}

bool ItemOperations::cutToOverlap(
    Project& project, const QList<QSciImage*>& items, ProgressSink* progress, QString* message)
{
    if (items.size() < 2)
        return true;
    ProgressSink& sink = sinkOr(progress);
    sink.begin(tr("Calculate minimal overlap"), items.size());
    const QRect overlap = boundingRect(items, true);
    sink.end();
    if (overlap.width() < 1 || overlap.height() < 1) {
        if (message)
            *message = tr("The selected items do not overlap.");
        return false;
    }
    OperationScope scope(&project, tabFor(project, items), tr("Cut items to overlap"));
    sink.begin(tr("Cut to overlap"), items.size());
    for (int i = 0; i < items.size(); ++i) {
        QSciImage* item = items.at(i);
        if (!scope.record(item, QSciImage::AllParts | QSciImage::PositionPart)) {
            sink.end();
            scope.rollback();
            return false;
        }
        item->resizeToRect(overlap.translated(-item->left(), -item->top()), 0.0);
        item->setPosition(overlap.left(), overlap.top());
        sink.step(i + 1);
    }
    sink.end();
    scope.commit();
    return true;
}

bool ItemOperations::expandToBorder(
    Project& project, const QList<QSciImage*>& items, bool fillWithMax, ProgressSink* progress, QString* message)
{
    if (items.size() < 2)
        return true;
    ProgressSink& sink = sinkOr(progress);
    sink.begin(tr("Calculate border"), items.size());
    const QRect border = boundingRect(items, false);
    sink.end();
    if (!fitsOrSays(border, message))
        return false;
    OperationScope scope(&project, tabFor(project, items), tr("Expand items to border"));
    sink.begin(tr("Expand to border"), items.size());
    for (int i = 0; i < items.size(); ++i) {
        QSciImage* item = items.at(i);
        if (!scope.record(item, QSciImage::AllParts | QSciImage::PositionPart)) {
            sink.end();
            scope.rollback();
            return false;
        }
        const double fill = fillWithMax ? item->zMax() : item->zMin();
        item->resizeToRect(border.translated(-item->left(), -item->top()), fill);
        item->setPosition(border.left(), border.top());
        sink.step(i + 1);
    }
    sink.end();
    scope.commit();
    return true;
}

QSciImage* ItemOperations::merge(
    Project& project, const QList<QSciImage*>& items, bool fillWithMax, ProgressSink* progress, QString* message)
{
    if (items.size() < 2)
        return nullptr;
    ProgressSink& sink = sinkOr(progress);
    const QRect border = boundingRect(items, false);
    if (!fitsOrSays(border, message))
        return nullptr;
    double fill = fillWithMax ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    for (const QSciImage* item : items)
        fill = fillWithMax ? std::max(fill, item->zMax()) : std::min(fill, item->zMin());

    // Paint bottom to top so that the item the tab shows on top wins where items overlap.
    QList<QSciImage*> stacked = items;
    std::stable_sort(stacked.begin(), stacked.end(), [&project](const QSciImage* a, const QSciImage* b) {
        const int ta = project.indexOf(project.tabOf(a)), tb = project.indexOf(project.tabOf(b));
        return ta != tb ? ta < tb : a->zPosInImageList() < b->zPosInImageList();
    });

    const QSciImage* first = items.first();
    auto* merged = new QSciImage(border.width(), border.height(), QColor(0, 0, 0, 0));
    QSciImage::SciValues values = first->sciValues();
    values.sizeX = values.xUnitPerPixel * border.width();
    values.sizeY = values.yUnitPerPixel * border.height();
    merged->setSciValues(values);
    merged->setZCalibration(first->zCalibrateMultiply(), first->zCalibrateAdd());
    merged->setInstrumentHeader(first->instrumentHeader());
    merged->setTextLines(first->textLines());
    merged->setDisplayElements(first->displayElements());
    merged->setColorGradient(first->colorGradient());
    merged->setDrawSwitches(first->drawImageInSciPaint(), first->drawMaskInSciPaint(), first->drawObjectsInSciPaint(),
        first->drawZInSciPaint());
    merged->setOpacity(first->opacity());
    std::fill(merged->zData(), merged->zData() + qsizetype(border.width()) * border.height(), fill);

    const int H = border.height();
    double* z = merged->zData();
    uchar* mask = merged->maskData();
    QImage& picture = merged->pictureRef();
    sink.begin(tr("Merge images"), stacked.size());
    for (int n = 0; n < stacked.size(); ++n) {
        const QSciImage* item = stacked.at(n);
        const int dx = item->left() - border.left();
        const int dyTop = item->top() - border.top();
        const int w = item->width(), h = item->height();
        const QImage& source = item->picture();
        for (int row = 0; row < h; ++row) {
            const int destRow = dyTop + row;
            const auto* src = reinterpret_cast<const QRgb*>(source.constScanLine(row));
            auto* dst = reinterpret_cast<QRgb*>(picture.scanLine(destRow)) + dx;
            std::copy(src, src + w, dst);
        }
        for (int x = 0; x < w; ++x) {
            // Rows count from the bottom in z and mask: item row y sits at merged row (H-1-destRowTop).
            const int destX = dx + x;
            const int destYBottom = H - (dyTop + h);
            std::copy(item->zData() + qsizetype(x) * h, item->zData() + qsizetype(x + 1) * h,
                z + qsizetype(destX) * H + destYBottom);
            std::copy(item->maskData() + qsizetype(x) * h, item->maskData() + qsizetype(x + 1) * h,
                mask + qsizetype(destX) * H + destYBottom);
        }
        sink.step(n + 1);
    }
    sink.end();
    merged->setName(items.first()->name() + tr(" (merged)"));
    merged->setPosition(border.left(), border.top());
    merged->setSelected(false);
    merged->setCreationTime(QDateTime::currentDateTime());
    merged->notifyChanged(QSciImage::AllParts);

    CollectionTab* tab = tabFor(project, items);
    OperationScope scope(&project, tab,
        fillWithMax ? tr("Merge images, set uncovered points to max(z)")
                    : tr("Merge images, set uncovered points to min(z)"));
    tab->addItem(merged);
    scope.recordCreated(merged);
    scope.commit();
    return merged;
}

QList<QSciImage*> ItemOperations::duplicate(Project& project, const QList<QSciImage*>& items)
{
    QList<QSciImage*> copies;
    if (items.isEmpty())
        return copies;
    OperationScope scope(&project, tabFor(project, items), tr("Duplicate items"));
    for (QSciImage* item : items) {
        CollectionTab* tab = project.tabOf(item);
        if (!tab)
            continue;
        QSciImage* copy = item->duplicate();
        copy->setCreationTime(QDateTime::currentDateTime());
        item->setSelected(false);
        copy->setSelected(true);
        tab->addItem(copy, tab->indexOf(item) + 1);
        scope.recordCreated(copy);
        copies.append(copy);
    }
    scope.commit();
    return copies;
}

void ItemOperations::thinMask(Project& project, const QList<QSciImage*>& items)
{
    apply(project, items, tr("Thinning"), QSciImage::MaskPart, [](QSciImage& item) {
        Thinning::thin(item.maskData(), item.width(), item.height());
        item.notifyChanged(QSciImage::MaskPart);
    });
}
