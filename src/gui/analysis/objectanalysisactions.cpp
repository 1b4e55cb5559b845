#include "objectanalysisactions.h"

#include "formobjectproperties.h"
#include "objectrecognitionpanel.h"

#include "core/analysis/objectpixelexport.h"
#include "core/analysis/objecttable.h"
#include "core/items/qsciimage.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tabletext.h"
#include "gui/app/documentsdock.h"
#include "gui/app/mainactions.h"
#include "gui/app/mainwindow.h"
#include "gui/processing/formimageprocessing.h"
#include "gui/tables/tablespanel.h"
#include "gui/tools/qtoolanalyseobject.h"
#include "gui/tools/toolbox.h"

#include <QTableWidget>

#include <QFileDialog>
#include <QTabWidget>

ObjectAnalysisActions::ObjectAnalysisActions(MainWindow* window, MainActions* actions, FormImageProcessing* processing)
    : QObject(window)
    , m_window(window)
    , m_panel(new ObjectRecognitionPanel(processing))
    , m_properties(new FormObjectProperties(window))
{
    processing->addPanel(m_panel);
    m_panel->readSettings();
    connect(m_panel, &ObjectRecognitionPanel::objectsFound, this, &ObjectAnalysisActions::addMeasuresTables);
    actions->wire("actionObject_recognition", this,
        [processing] { processing->showPanel(QStringLiteral("ObjectRecognitionPanel")); });
    actions->wire("actionObject_properties", this, [this] {
        m_properties->setItem(m_window->currentItem());
        m_properties->show();
        m_properties->raise();
    });
    m_properties->setProject(window->project());
    // Analysing an object by clicking makes it the chosen one of the properties list.
    if (auto* tool = qobject_cast<QToolAnalyseObject*>(window->toolBox()->tool(QStringLiteral("FIND_OBJECTS"))))
        connect(tool, &QToolAnalyseObject::objectAnalysed, this, [this](QSciImage* item, int index) {
            m_properties->setItem(item);
            m_properties->list()->selectRow(index);
        });
    connect(m_properties, &FormObjectProperties::measuresRequested, this, &ObjectAnalysisActions::addMeasuresTables);

    using P = ObjectPixelExport::Pixels;
    using F = ObjectPixelExport::Files;
    const struct {
        const char* name;
        P pixels;
        F files;
    } exports[] = {
        { "actionIn_one_file_objectPixels", P::Fill, F::AllInOne },
        { "actionIn_one_file_per_object_objectPixels", P::Fill, F::PerObject },
        { "actionIn_one_file_per_image_objectPixels", P::Fill, F::PerImage },
        { "actionAll_in_one_file_skeletonPixels", P::Skeleton, F::AllInOne },
        { "actionIn_one_file_per_object_skeletonPixels", P::Skeleton, F::PerObject },
        { "actionIn_one_file_per_image_skeletonPixels", P::Skeleton, F::PerImage },
        { "actionAll_in_one_file_largestSkeletonBranch", P::LargestBranch, F::AllInOne },
        { "actionIn_one_file_per_object_largestSkeletonBranch", P::LargestBranch, F::PerObject },
        { "actionIn_one_file_per_image_largestSkeletonBranch", P::LargestBranch, F::PerImage },
    };
    for (const auto& e : exports)
        actions->wire(e.name, this, [this, p = int(e.pixels), f = int(e.files)] { exportPixels(p, f); });
}

QList<const char*> ObjectAnalysisActions::exportActions()
{
    return { "actionIn_one_file_objectPixels", "actionIn_one_file_per_object_objectPixels",
        "actionIn_one_file_per_image_objectPixels", "actionAll_in_one_file_skeletonPixels",
        "actionIn_one_file_per_object_skeletonPixels", "actionIn_one_file_per_image_skeletonPixels",
        "actionAll_in_one_file_largestSkeletonBranch", "actionIn_one_file_per_object_largestSkeletonBranch",
        "actionIn_one_file_per_image_largestSkeletonBranch" };
}

void ObjectAnalysisActions::addMeasuresTables(const QList<QSciImage*>& items)
{
    QList<const QSciImage*> sources;
    for (const QSciImage* item : items)
        sources.append(item);
    const auto add = [this](const QVector<QStringList>& rows, const QString& title) {
        const int columns = rows.isEmpty() ? 0 : rows.first().size();
        auto model = TableText::toModel(rows, columns);
        if (!model)
            return emit messageRequested(title, tr("The measures do not fit into a table."));
        m_window->tablesPanel()->addTable(std::move(model), title);
    };
    add(ObjectTable::measures(sources, false), tr("Object measures"));
    if (items.size() > 1)
        add(ObjectTable::summary(sources, false), tr("Objects per image"));
    // The table is the result the user asked for: bring it into view.
    if (auto* dock = m_window->findChild<DocumentsDock*>()) {
        dock->show();
        dock->raise();
        dock->pages()->setCurrentWidget(dock->tablesPage());
    }
}

void ObjectAnalysisActions::exportPixels(int pixels, int files)
{
    QList<const QSciImage*> items;
    for (const QSciImage* item : m_window->selectedItems())
        items.append(item);
    if (items.isEmpty())
        return emit messageRequested(tr("Export"), tr("Select the items whose objects to export."));
    const auto mode = ObjectPixelExport::Files(files);
    const QString target = mode == ObjectPixelExport::Files::AllInOne
        ? QFileDialog::getSaveFileName(m_window, tr("Export object pixels"), QString(), tr("CSV files (*.csv)"))
        : QFileDialog::getExistingDirectory(m_window, tr("Folder for the object pixel files"));
    if (target.isEmpty())
        return;
    QString message;
    QStringList written;
    if (!ObjectPixelExport::write(items, ObjectPixelExport::Pixels(pixels), mode, target, &message, &written))
        return emit messageRequested(tr("Export"), message);
    m_window->appendOutput(tr("Object pixels written to %n file(s).", nullptr, written.size()));
}
