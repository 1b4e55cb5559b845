#include "voronoioperations.h"

#include "collectiontab.h"
#include "itemoperations.h"
#include "operationscope.h"
#include "project.h"

#include "core/analysis/objectmeasures.h"
#include "core/analysis/voronoicells.h"
#include "core/items/qsciimage.h"
#include "core/items/qscisingleobject.h"

#include <QCoreApplication>
#include <algorithm>
#include <memory>

namespace {

/** Points between an item and the one made from it on the tab. */
constexpr int Gap = 10;

} // namespace

QString VoronoiOperations::noObjectsText()
{
    return QCoreApplication::translate(
        "VoronoiOperations", "The item holds no objects: find or make objects first, their centres seed the cells.");
}

QString VoronoiOperations::areaUnit(const QSciImage& item)
{
    const QString x = item.sciValues().xUnit, y = item.sciValues().yUnit;
    if (x.isEmpty() && y.isEmpty())
        return QString();
    return x == y ? QString(x + QStringLiteral("^2")) : QString(x + QLatin1Char('*') + y);
}

bool VoronoiOperations::construct(
    Project& project, QSciImage* item, Output output, QList<Cell>* cells, QString* message, QSciImage** made)
{
    if (made)
        *made = nullptr;
    const QList<QSciSingleObject>& objects = item->objects();
    if (objects.isEmpty()) {
        if (message)
            *message = noObjectsText();
        return false;
    }
    const QSciImage::SciValues& sci = item->sciValues();
    const double xStep = sci.xUnitPerPixel > 0 ? sci.xUnitPerPixel : 1;
    const double yStep = sci.yUnitPerPixel > 0 ? sci.yUnitPerPixel : 1;
    QVector<QPointF> centres;
    centres.reserve(objects.size());
    for (const QSciSingleObject& o : objects)
        centres.append(ObjectMeasures::centroidOfArea(o));
    const int w = item->width(), h = item->height();
    const std::vector<int> label = VoronoiCells::label(centres, w, h, xStep, yStep);
    const std::vector<qint64> counts = VoronoiCells::counts(label, centres.size());
    QList<Cell> list;
    for (int i = 0; i < objects.size(); ++i)
        list.append(Cell { objects.at(i).objectNumber > 0 ? objects.at(i).objectNumber : i + 1, centres.at(i),
            counts[size_t(i)], double(counts[size_t(i)]) * xStep * yStep });
    if (cells)
        *cells = list;

    const QString name = QCoreApplication::translate("VoronoiOperations", "Voronoi construction");
    if (output == Output::MaskBorders) {
        const QVector<uchar> mask = VoronoiCells::borders(label, w, h);
        ItemOperations::apply(
            project, { item }, name, QSciImage::MaskPart, [&mask](QSciImage& target) { (void)target.setMask(mask); });
        return true;
    }
    CollectionTab* tab = project.tabOf(item);
    if (!tab)
        return false;
    QVector<double> z(qsizetype(w) * h);
    for (qsizetype p = 0; p < z.size(); ++p) {
        const Cell& cell = list.at(label[size_t(p)]);
        z[p] = output == Output::CellArea ? cell.area : cell.objectNumber;
    }
    auto result = std::make_unique<QSciImage>(w, h, Qt::white);
    if (!result->setZMatrix(z))
        return false;
    QSciImage::SciValues s = sci;
    s.zUnit = output == Output::CellArea ? areaUnit(*item) : QString();
    result->setSciValues(s);
    result->setColorGradient(item->colorGradient());
    result->setName(item->name() + QStringLiteral(" (")
        + (output == Output::CellArea ? QCoreApplication::translate("VoronoiOperations", "Voronoi cell areas")
                                      : QCoreApplication::translate("VoronoiOperations", "Voronoi cells"))
        + QLatin1Char(')'));
    (void)result->setMask(VoronoiCells::borders(label, w, h));
    result->mapZToPicture();

    OperationScope scope(&project, tab, name);
    QSciImage* added = result.release();
    // Right of everything on the tab: a spectrum or an earlier map often sits right beside the item.
    int right = item->right();
    for (const QSciImage* other : tab->items())
        right = std::max(right, other->right());
    added->setPosition(right + 1 + Gap, item->top());
    item->setSelected(false);
    added->setSelected(true);
    tab->addItem(added, tab->indexOf(item) + 1);
    scope.recordCreated(added);
    scope.commit();
    if (made)
        *made = added;
    return true;
}
