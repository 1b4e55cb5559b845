#include "spectrumoperations.h"

#include "collectiontab.h"
#include "itemoperations.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"
#include "core/processing/qscieffect.h"

#include <QCoreApplication>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("SpectrumOperations", text);
}

/** Points between an item and its spectrum on the tab. */
constexpr int Gap = 10;

} // namespace

QList<QSciImage*> SpectrumOperations::addSpectra(
    Project& project, const QList<QSciImage*>& items, FourierTransform::Mode mode)
{
    QList<QSciImage*> added;
    if (items.isEmpty())
        return added;
    OperationScope scope(&project, project.tabOf(items.first()), tr("Fourier transformation"));
    for (QSciImage* item : items) {
        CollectionTab* tab = project.tabOf(item);
        std::unique_ptr<QSciImage> spectrum = FourierTransform::spectrum(*item, mode);
        if (!tab || !spectrum)
            continue;
        QSciImage* made = spectrum.release();
        made->setPosition(item->right() + 1 + Gap, item->top());
        item->setSelected(false);
        made->setSelected(true);
        tab->addItem(made, tab->indexOf(item) + 1);
        scope.recordCreated(made);
        added.append(made);
    }
    scope.commit();
    return added;
}

bool SpectrumOperations::filter(Project& project, QSciImage* item, const QSciImage& spectrum, QString* message)
{
    if (spectrum.size() != item->size()) {
        if (message)
            *message = tr("The spectrum must have the size of the item: %1 x %2 points.")
                           .arg(item->width())
                           .arg(item->height());
        return false;
    }
    if (spectrum.maskSelectedCount() == 0) {
        if (message)
            *message = QSciEffect::nothingSelectedText();
        return false;
    }
    QVector<double> z(item->zMatrix().size());
    FourierTransform::filter(item->zData(), item->width(), item->height(), spectrum.maskData(), z.data());
    ItemOperations::apply(
        project, { item }, tr("Fourier filter"), QSciImage::ZPart | QSciImage::PicturePart, [&z](QSciImage& target) {
            if (target.setZMatrix(z) && !target.drawZInSciPaint())
                target.mapZToPicture();
        });
    return true;
}
