#include "segmentationactions.h"

#include "core/items/qsciimage.h"
#include "core/project/segmentationoperations.h"
#include "core/project/voronoioperations.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tabletext.h"
#include "gui/app/mainactions.h"
#include "gui/app/mainwindow.h"
#include "gui/tables/tablespanel.h"

#include <QInputDialog>
#include <QStatusBar>

SegmentationActions::SegmentationActions(MainWindow* window, MainActions* actions)
    : QObject(window)
    , m_window(window)
{
    actions->wire("actionTransform_mask_to_objects", this, [this] { maskToObjects(); });
    actions->wire("actionWatershed", this, [this] { watershed(); });
    actions->wire("actionVoronoi_construction", this, [this] { voronoi(); });
}

void SegmentationActions::maskToObjects()
{
    const QList<QSciImage*> items = m_window->selectedItems();
    const QString title = tr("Transform mask to objects");
    if (items.isEmpty())
        return;
    const QStringList choices { tr("8-connected (edges and corners)"), tr("4-connected (edges only)") };
    bool ok = false;
    const QString choice = QInputDialog::getItem(m_window, title, tr("Neighbours:"), choices, 0, false, &ok);
    if (!ok)
        return;
    QString message;
    const int connectivity = choice == choices.at(1) ? 4 : 8;
    if (SegmentationOperations::maskToObjects(*m_window->project(), items, connectivity, &message)
        != SegmentationOperations::Outcome::Applied)
        return emit messageRequested(title, message);
    m_window->appendOutput(message.toHtmlEscaped());
    m_window->statusBar()->showMessage(message, 10000);
}

void SegmentationActions::watershed()
{
    const QList<QSciImage*> items = m_window->selectedItems();
    const QString title = tr("Watershed");
    if (items.isEmpty())
        return;
    bool ok = false;
    const double depth = QInputDialog::getDouble(m_window, title,
        tr("Minimum depth of a grain's peak above its saddle (z units, 0: a twentieth of the z range).\nThe mask is "
           "flooded, or without one the points above the mean height."),
        0, 0, 1e300, 6, &ok);
    if (!ok)
        return;
    QString message;
    if (SegmentationOperations::watershed(*m_window->project(), items, depth, &message)
        != SegmentationOperations::Outcome::Applied)
        return emit messageRequested(title, message);
    m_window->appendOutput(message.toHtmlEscaped());
    m_window->statusBar()->showMessage(message, 10000);
}

void SegmentationActions::voronoi()
{
    QSciImage* item = m_window->currentItem();
    const QString title = tr("Voronoi construction");
    if (!item)
        return;
    if (item->objects().isEmpty())
        return emit messageRequested(title, VoronoiOperations::noObjectsText());
    const QStringList choices { tr("New item: cells by object number"), tr("New item: cells by area"),
        tr("Cell borders into the mask") };
    bool ok = false;
    const QString choice = QInputDialog::getItem(m_window, title, tr("Result:"), choices, 0, false, &ok);
    if (!ok)
        return;
    QList<VoronoiOperations::Cell> cells;
    QString message;
    if (!VoronoiOperations::construct(
            *m_window->project(), item, VoronoiOperations::Output(choices.indexOf(choice)), &cells, &message))
        return emit messageRequested(title, message);
    const QString unit = VoronoiOperations::areaUnit(*item);
    QVector<QStringList> rows { { tr("Object"), tr("Centre x [px]"), tr("Centre y [px]"), tr("Points"),
        unit.isEmpty() ? tr("Area") : tr("Area [%1]").arg(unit) } };
    for (const VoronoiOperations::Cell& c : cells)
        rows.append({ QString::number(c.objectNumber), QString::number(c.centre.x()), QString::number(c.centre.y()),
            QString::number(c.points), QString::number(c.area) });
    if (auto model = TableText::toModel(rows, rows.first().size()))
        m_window->tablesPanel()->addTable(std::move(model), tr("Voronoi cells of %1").arg(item->name()));
    m_window->appendOutput(tr("%1: %n Voronoi cell(s)", nullptr, cells.size()).arg(item->name()).toHtmlEscaped());
}
