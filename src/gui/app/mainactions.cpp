#include "mainactions.h"

#include <QActionEvent>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <algorithm>

namespace {

struct ActionRow {
    const char* name;
    const char* text;
    const char* shortcut;
};

#define ROW(name, text, shortcut)                                                                                      \
    {                                                                                                                  \
        name, QT_TRANSLATE_NOOP("MainActions", text), shortcut                                                         \
    }

// clang-format off
const ActionRow actionRows[] = {
    ROW("actionTab", "Tab", "Ctrl+T"),
    ROW("actionTable", "Table", "Ctrl+L"),
    ROW("actionText", "Text", "Ctrl+E"),
    ROW("actionProject", "Project...", ""),
    ROW("actionItem_blank", "Item (blank)...", "Ctrl+I"),
    ROW("actionOpen_items", "Open", "Ctrl+O"),
    ROW("actionBrowse", "Browse", "Ctrl+B"),
    ROW("actionImport_movie", "Import movie", ""),
    ROW("actionSave_selected_items", "Save selected items", ""),
    ROW("actionSave_items_on_current_tab", "Save items on current tab", ""),
    ROW("actionOpen_project", "Open project", "Ctrl+J"),
    ROW("actionSave_project", "Save project", "Ctrl+S"),
    ROW("actionSave_project_as", "Save project as...", ""),
    ROW("action_reopen_last_project", "(Re-)open last project", "Ctrl+R"),
    ROW("actionPrint_visible_area", "Print visible area", "Ctrl+P"),
    ROW("actionQuit", "Quit", ""),
    ROW("actionPictures_s", "Pictures with display elements", ""),
    ROW("actionPictures_without_display_elements", "Images without display elements as pngs", ""),
    ROW("actionPictures_with_display_elements", ".png-files", ""),
    ROW("actionZ_Matrices", "Z-Matrices (text-files)", ""),
    ROW("actionMasks", "Masks (1,0 text-map)", ""),
    ROW("actionLaTeX_Codes", "LaTeX-Codes", ""),
    ROW("actionIn_one_file_objectPixels", "all in one file", ""),
    ROW("actionIn_one_file_per_object_objectPixels", "in one file per image and per object", ""),
    ROW("actionIn_one_file_per_image_objectPixels", "in one file per image", ""),
    ROW("actionAll_in_one_file_skeletonPixels", "all in one file", ""),
    ROW("actionIn_one_file_per_object_skeletonPixels", "in one file per image and per object", ""),
    ROW("actionIn_one_file_per_image_skeletonPixels", "in one file per image", ""),
    ROW("actionAll_in_one_file_largestSkeletonBranch", "all in one file", ""),
    ROW("actionIn_one_file_per_object_largestSkeletonBranch", "in one file per image and per object", ""),
    ROW("actionIn_one_file_per_image_largestSkeletonBranch", "in one file per image", ""),
    ROW("actionVisible_area_as_image", ".png-file", ""),
    ROW("actionPdf_file", ".pdf-file", ""),
    ROW("actionPostscript_file", "postscript(.ps)-file", ""),
    ROW("actionPdf_files", ".pdf-files", ""),
    ROW("actionPostscript_ps_files", "postscript(.ps)-files", ""),
    ROW("actionExport_movie", "Export selected images as movie", ""),
    ROW("actionPlane_correction", "Plane correction", "Alt+I, Alt+P"),
    ROW("actionDrift_correction", "Drift correction", "Alt+I, Alt+D"),
    ROW("actionObject_recognition", "Object recognition", "Alt+I, Alt+O"),
    ROW("actionZ_Matrix_manipulation", "Z-Matrix manipulation", "Alt+I, Alt+Z"),
    ROW("actionFourier_transformation", "Fourier transformation", "Alt+I, Alt+F"),
    ROW("actionDerivative", "Derivative", "Alt+I, Alt+E"),
    ROW("actionVoronoi_construction", "Voronoi construction", "Alt+I, Alt+V"),
    ROW("actionTransform_mask_to_objects", "Transform mask to objects", "Alt+I, Alt+T"),
    ROW("actionRoughness_analysis", "Roughness analysis", "Alt+I, Alt+R"),
    ROW("actionWatershed", "Watershed", "Alt+I, Alt+W"),
    ROW("actionDenoise", "Denoise", "Alt+I, Alt+N"),
    ROW("actionLattice", "Lattice", ""),
    ROW("actionCompose_images", "Compose image parts", ""),
    ROW("actionRecompose_images", "Recompose images", ""),
    ROW("actionPeak_and_Surface_manipulation", "Peak and surface correction", ""),
    ROW("actionMatrix_Convolution", "Matrix convolution", "Alt+E, Alt+M"),
    ROW("actionSobel_Edge_Detect", "Edge detection", "Alt+E, Alt+E"),
    ROW("actionGaussian_Blur", "Gaussian blur", "Alt+E, Alt+G"),
    ROW("actionSharpen", "Sharpen", "Alt+E, Alt+A"),
    ROW("actionUnsharp_Mask", "Unsharp mask", "Alt+E, Alt+U"),
    ROW("actionSmoothen", "Smoothen", "Alt+E, Alt+S"),
    ROW("actionThinning", "Thinning", "Alt+E, Alt+T"),
    ROW("actionToolbox", "Toolbox", "Alt+V, Alt+T"),
    ROW("actionComponents", "Components", "Alt+V, Alt+C"),
    ROW("actionDocuments", "Documents", "Alt+V, Alt+D"),
    ROW("actionStatusbar", "Statusbar", "Alt+V, Alt+S"),
    ROW("actionItem_Info_Window", "Item Info Window", "Alt+V, Alt+I"),
    ROW("actionFile_menu", "File menu", ""),
    ROW("actionHistory", "History", ""),
    ROW("actionZoom", "Zoom", ""),
    ROW("actionInfo_Settings", "Info && Settings", ""),
    ROW("actionObject_properties", "Object properties", ""),
    ROW("actionCurrent_item_views", "Current item-views", ""),
    ROW("actionInfo_Properties", "Item properties", ""),
    ROW("actionProgramOptions", "Options", ""),
    ROW("actionIntroduction", "Index / Introduction", ""),
    ROW("actionIndex", "Index", ""),
    ROW("actionContext_Help", "Context Help", ""),
    ROW("actionInfo", "Info", ""),
    ROW("actionPDF", "PDF", ""),
    ROW("actionPDF_2", "Open PDF-Help...", ""),
    ROW("actionEPub_2", "Export ePub-Help file...", ""),
    ROW("actionWindows_Help_chm", "Open Windows Help (chm)", ""),
    ROW("actionEPub", "ePub", ""),
    ROW("actionKindle_mobi", "Kindle (mobi)", ""),
    ROW("actionWord_Document_doc", "Word Document (doc)", ""),
};
// clang-format on

#undef ROW

// The View menu's toggles carry check marks.
const char* const checkableActions[] = { "actionToolbox", "actionComponents", "actionDocuments", "actionStatusbar",
    "actionItem_Info_Window", "actionFile_menu", "actionHistory", "actionZoom", "actionInfo_Settings" };

} // namespace

MainActions::MainActions(QObject* parent)
    : QObject(parent)
{
    setObjectName(QStringLiteral("mainActions"));
    for (const ActionRow& row : actionRows) {
        auto* action = new QAction(QCoreApplication::translate("MainActions", row.text), this);
        action->setObjectName(QLatin1String(row.name));
        if (*row.shortcut)
            action->setShortcut(QKeySequence::fromString(QLatin1String(row.shortcut), QKeySequence::PortableText));
        action->setEnabled(false);
    }
    for (const char* name : checkableActions)
        get(name)->setCheckable(true);
}

void MainActions::followEntries(QMenu* menu)
{
    menu->installEventFilter(this);
    for (QAction* action : menu->actions()) {
        if (action->menu())
            followEntries(action->menu());
    }
    updateEnabled(menu);
}

void MainActions::updateEnabled(QMenu* menu)
{
    const QList<QAction*> entries = menu->actions();
    // A sub-menu counts through its own menu action, which this rule keeps in step.
    menu->menuAction()->setEnabled(std::any_of(entries.cbegin(), entries.cend(),
        [](const QAction* entry) { return !entry->isSeparator() && entry->isEnabled() && entry->isVisible(); }));
}

bool MainActions::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::ActionAdded || type == QEvent::ActionChanged || type == QEvent::ActionRemoved) {
        if (auto* menu = qobject_cast<QMenu*>(watched)) {
            QAction* action = static_cast<QActionEvent*>(event)->action();
            if (type == QEvent::ActionAdded && action->menu())
                followEntries(action->menu());
            // Removal is announced before the action goes: look again once it has.
            if (type == QEvent::ActionRemoved)
                QMetaObject::invokeMethod(
                    this,
                    [menu = QPointer<QMenu>(menu)] {
                        if (menu)
                            updateEnabled(menu);
                    },
                    Qt::QueuedConnection);
            else
                updateEnabled(menu);
        }
    }
    return QObject::eventFilter(watched, event);
}

QAction* MainActions::get(const char* name) const
{
    auto* action = findChild<QAction*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
    if (!action)
        qFatal("MainActions: no action named %s", name);
    return action;
}

void MainActions::addAll(QMenu* menu, std::initializer_list<const char*> names) const
{
    for (const char* name : names) {
        if (name)
            menu->addAction(get(name));
        else
            menu->addSeparator();
    }
}

void MainActions::buildMenus(QMenuBar* bar)
{
    QMenu* file = bar->addMenu(tr("File"));
    file->setObjectName(QStringLiteral("menuFile"));
    m_menuNew = file->addMenu(tr("New"));
    m_menuNew->setObjectName(QStringLiteral("menuNew"));
    addAll(m_menuNew, { "actionTab", "actionTable", "actionText", "actionProject", "actionItem_blank" });
    addAll(file,
        { "actionOpen_items", "actionBrowse", "actionImport_movie", nullptr, "actionSave_selected_items",
            "actionSave_items_on_current_tab", nullptr, "actionOpen_project", "actionSave_project",
            "actionSave_project_as", "action_reopen_last_project", nullptr });

    m_menuExport = file->addMenu(tr("Export selected..."));
    m_menuExport->setObjectName(QStringLiteral("menuExport"));
    addAll(m_menuExport,
        { "actionPictures_s", "actionPictures_without_display_elements", "actionZ_Matrices", "actionMasks",
            "actionLaTeX_Codes", nullptr });
    QMenu* objectPixels = m_menuExport->addMenu(tr("Objects pixels"));
    addAll(objectPixels,
        { "actionIn_one_file_objectPixels", "actionIn_one_file_per_object_objectPixels",
            "actionIn_one_file_per_image_objectPixels" });
    QMenu* skeleton = m_menuExport->addMenu(tr("Objects' skeleton pixels"));
    addAll(skeleton,
        { "actionAll_in_one_file_skeletonPixels", "actionIn_one_file_per_object_skeletonPixels",
            "actionIn_one_file_per_image_skeletonPixels" });
    QMenu* branch = m_menuExport->addMenu(tr("Objects' largest skeleton branch pixels"));
    addAll(branch,
        { "actionAll_in_one_file_largestSkeletonBranch", "actionIn_one_file_per_object_largestSkeletonBranch",
            "actionIn_one_file_per_image_largestSkeletonBranch" });
    QMenu* pictures = m_menuExport->addMenu(tr("Images with display elements as..."));
    addAll(pictures, { "actionPictures_with_display_elements", "actionPdf_files", "actionPostscript_ps_files" });
    QMenu* visible = m_menuExport->addMenu(tr("Export visible area as..."));
    addAll(visible, { "actionVisible_area_as_image", "actionPdf_file", "actionPostscript_file" });
    addAll(file, { "actionExport_movie", nullptr, "actionPrint_visible_area", nullptr, "actionQuit" });

    QMenu* effects = bar->addMenu(tr("Effects"));
    effects->setObjectName(QStringLiteral("menuEffects"));
    addAll(effects,
        { "actionMatrix_Convolution", "actionSobel_Edge_Detect", "actionGaussian_Blur", "actionSharpen",
            "actionUnsharp_Mask", "actionSmoothen", "actionThinning" });

    QMenu* processing = bar->addMenu(tr("Image processing"));
    processing->setObjectName(QStringLiteral("menuImageProcessing"));
    addAll(processing,
        { "actionPlane_correction", "actionDrift_correction", "actionObject_recognition", "actionZ_Matrix_manipulation",
            "actionFourier_transformation", "actionDerivative", "actionVoronoi_construction",
            "actionTransform_mask_to_objects", "actionRoughness_analysis", "actionWatershed", "actionDenoise", nullptr,
            "actionLattice", "actionCompose_images", "actionRecompose_images", "actionPeak_and_Surface_manipulation" });

    QMenu* view = bar->addMenu(tr("View"));
    view->setObjectName(QStringLiteral("menuView"));
    addAll(
        view, { "actionToolbox", "actionComponents", "actionDocuments", "actionStatusbar", "actionItem_Info_Window" });
    QMenu* toolbars = view->addMenu(tr("Toolbars"));
    toolbars->setObjectName(QStringLiteral("menuToolbars"));
    addAll(toolbars, { "actionFile_menu", "actionHistory", "actionZoom", "actionInfo_Settings" });
    addAll(view,
        { nullptr, "actionObject_properties", "actionCurrent_item_views", "actionInfo_Properties", nullptr,
            "actionProgramOptions" });

    QMenu* help = bar->addMenu(tr("Help"));
    help->setObjectName(QStringLiteral("menuHelp"));
    addAll(help,
        { "actionIntroduction", "actionIndex", "actionContext_Help", nullptr, "actionPDF", "actionEPub",
            "actionKindle_mobi", "actionWord_Document_doc", nullptr, "actionPDF_2", "actionEPub_2",
            "actionWindows_Help_chm", nullptr, "actionInfo" });

    for (QAction* top : bar->actions()) {
        if (top->menu())
            followEntries(top->menu());
    }
}
