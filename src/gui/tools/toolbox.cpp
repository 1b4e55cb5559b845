#include "toolbox.h"

#include "qtoolalignbypoi.h"
#include "qtoolanalyseobject.h"
#include "qtoolcolorize.h"
#include "qtoolcolorpicker.h"
#include "qtooldefcursor.h"
#include "qtooldrawpaintbrush.h"
#include "qtooldrawpencil.h"
#include "qtooleditobject.h"
#include "qtoolellipseselection.h"
#include "qtoolellipseshape.h"
#include "qtooleraser.h"
#include "qtoolfillbucket.h"
#include "qtoolfreehandlinesselection.h"
#include "qtoolfreehandselection.h"
#include "qtoolmagicwandselection.h"
#include "qtoolmeasuredistance.h"
#include "qtoollineprofile.h"
#include "qtoolmoveselection.h"
#include "qtoolrectangleselection.h"
#include "qtoolrectshape.h"
#include "qtoolroundrectshape.h"
#include "qtooldrawcurve.h"
#include "qtoolfreehandlinesshape.h"
#include "qtoolfreehandshape.h"
#include "qtoollatextext.h"
#include "qtoollattice.h"
#include "qtoolresolvedoubletip.h"
#include "qtoolsmoothen.h"
#include "tooloverlayitem.h"

#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "gui/app/collectiontabpage.h"
#include "gui/app/toolsdock.h"

#include <QGraphicsScene>
#include <QLayout>
#include <QTreeWidget>
#include <limits>

namespace {

enum Heading { Select = 0, Scientific = 1, Draw = 2, Shapes = 3 };

const QString defaultCursor = QStringLiteral("DEF_CURSOR");

} // namespace

ToolBox::ToolBox(ToolsDock* dock, QObject* parent)
    : QObject(parent)
    , m_list(dock->toolList())
    , m_options(dock->optionArea())
{
    addTool(Select, tr("Pointer"), new QToolDefCursor);
    addTool(Select, tr("Rectangle selection"), new QToolRectangleSelection);
    addTool(Select, tr("Ellipse selection"), new QToolEllipseSelection);
    addTool(Select, tr("Freehand selection"), new QToolFreehandSelection);
    addTool(Select, tr("Freehand lines selection"), new QToolFreehandLinesSelection);
    addTool(Select, tr("Magic wand"), new QToolMagicWandSelection);
    addTool(Select, tr("Move selection"), new QToolMoveSelection);
    addTool(Scientific, tr("Measure distance"), new QToolMeasureDistance);
    addTool(Scientific, tr("Edit object"), new QToolEditObject);
    addTool(Scientific, tr("Analyse object"), new QToolAnalyseObject);
    addTool(Scientific, tr("Line profile"), new QToolLineProfile);
    addTool(Draw, tr("Pick colour"), new QToolColorPicker);
    addTool(Draw, tr("Fill bucket"), new QToolFillBucket);
    addTool(Draw, tr("Pencil"), new QToolDrawPencil);
    addTool(Draw, tr("Paintbrush"), new QToolDrawPaintbrush);
    addTool(Draw, tr("Eraser"), new QToolEraser);
    addTool(Shapes, tr("Rectangle"), new QToolRectShape);
    addTool(Shapes, tr("Ellipse"), new QToolEllipseShape);
    addTool(Shapes, tr("Rounded rectangle"), new QToolRoundRectShape);
    addTool(Scientific, tr("Lattice"), new QToolLattice);
    addTool(Scientific, tr("Align by point of interest"), new QToolAlignByPoi);
    addTool(Scientific, tr("Resolve double tip"), new QToolResolveDoubleTip);
    addTool(Scientific, tr("LaTeX formula"), new QToolLatexText);
    addTool(Draw, tr("Curve"), new QToolDrawCurve);
    addTool(Draw, tr("Colorize"), new QToolColorize);
    addTool(Draw, tr("Smoothen z"), new QToolSmoothen);
    addTool(Shapes, tr("Freehand shape"), new QToolFreehandShape);
    addTool(Shapes, tr("Freehand lines"), new QToolFreehandLinesShape);

    // The tools die with the option area, which may go before this object does.
    connect(m_options, &QObject::destroyed, this, [this] {
        m_tools.clear();
        m_current = nullptr;
    });
    connect(m_list, &QTreeWidget::currentItemChanged, this, &ToolBox::onListCurrentChanged);
    setCurrentTool(defaultCursor);
}

ToolBox::~ToolBox()
{
    if (m_overlayScene)
        delete m_overlayItem;
}

void ToolBox::addTool(int heading, const QString& title, QTool* tool)
{
    const QString id = tool->identifier();
    auto* entry = new QTreeWidgetItem(m_list->topLevelItem(heading), QStringList { title });
    entry->setData(0, Qt::UserRole, id);
    m_entries.insert(id, entry);
    m_tools.insert(id, tool);
    m_order.append(id);

    tool->setObjectName(QStringLiteral("tool_") + id);
    tool->setParent(m_options);
    tool->hide();
    m_options->layout()->addWidget(tool);

    connect(tool, &QTool::itemsMovableRequested, this, &ToolBox::onItemsMovableRequested);
    connect(tool, &QTool::outputRequested, this, &ToolBox::outputRequested);
    connect(tool, &QTool::statusMessageRequested, this, &ToolBox::statusMessageRequested);
    connect(tool, &QTool::overlayChanged, this, &ToolBox::showOverlay);
    connect(tool, &QTool::overlayCleared, this, &ToolBox::hideOverlay);
}

void ToolBox::setProject(Project* project)
{
    if (m_project)
        disconnect(m_project, nullptr, this, nullptr);
    m_project = project;
    for (QTool* tool : qAsConst(m_tools))
        tool->setProject(project);
    // An undo that brings an item back makes a new object: a drag on the old one cannot go on.
    if (project)
        connect(project, &Project::itemReplaced, this, &ToolBox::dropOrphanedDrag);
}

void ToolBox::dropOrphanedDrag()
{
    if (m_current && m_current->isDragActive() && !m_current->item()) {
        m_current->cancelDrag();
        hideOverlay();
    }
}

Project* ToolBox::project() const
{
    return m_project;
}

CollectionTabPage* ToolBox::currentPage() const
{
    return m_page;
}

void ToolBox::setCurrentTool(const QString& identifier)
{
    QTool* next = m_tools.value(identifier);
    if (!next)
        return;
    if (next != m_current) {
        if (m_current) {
            m_current->cancelDrag();
            m_current->hide();
        }
        // A preview kept after a gesture (a lattice, a double-tip result) belongs to the tool being left.
        hideOverlay();
        m_current = next;
        m_current->show();
        next->activate(identifier);
    }
    // Keeps the list in step when called from code; re-entry from the list's signal ends above.
    m_list->setCurrentItem(m_entries.value(identifier));
}

void ToolBox::onListCurrentChanged(QTreeWidgetItem* entry)
{
    const QString id = entry ? entry->data(0, Qt::UserRole).toString() : QString();
    if (!id.isEmpty())
        setCurrentTool(id);
    else if (m_current) // a heading: keep the tool, mark its entry again
        m_list->setCurrentItem(m_entries.value(m_current->identifier()));
}

void ToolBox::attachPage(CollectionTabPage* page)
{
    if (!page)
        return;
    m_pages.removeAll(nullptr);
    if (!m_pages.contains(page))
        m_pages.append(page);
    page->setToolMouseSink(this);
    page->setItemsMovable(m_itemsMovable);
}

void ToolBox::onItemsMovableRequested(bool movable)
{
    m_itemsMovable = movable;
    for (const QPointer<CollectionTabPage>& page : qAsConst(m_pages)) {
        if (page)
            page->setItemsMovable(movable);
    }
    emit itemsMovableChanged(movable);
}

QPoint ToolBox::toToolPoints(QSciImage* from, const QPoint& point) const
{
    const QSciImage* own = m_current ? m_current->item() : nullptr;
    if (!own || from == own)
        return point;
    // Without an item the view gives points of the tab itself.
    const QPoint origin = from ? QPoint(from->left(), from->top()) : QPoint();
    return point + origin - QPoint(own->left(), own->top());
}

void ToolBox::toolModifiersPressed(Qt::KeyboardModifiers modifiers)
{
    if (m_current)
        m_current->setModifiers(modifiers);
}

bool ToolBox::toolMousePressed(CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button)
{
    if (!m_current || m_current->identifier() == defaultCursor)
        return false;
    dropOrphanedDrag();
    // The view then opens the item menu; a click that did nothing must not cost the mask or an undo step.
    if (button == Qt::RightButton && !m_current->takesRightButton() && !m_current->isDragActive())
        return false;
    // A drag in progress (a polygon being built) stays on its item.
    if (!m_current->isDragActive()) {
        if (!item)
            return false;
        m_current->setTarget(page, item);
    }
    m_page = page;
    const QPoint p = toToolPoints(item, point);
    m_current->recordPosition(p);
    m_current->beginDrag(p, button);
    return true;
}

void ToolBox::toolMouseMoved(CollectionTabPage*, QSciImage* item, const QPoint& point)
{
    if (!m_current || m_current->identifier() == defaultCursor)
        return;
    const QPoint p = toToolPoints(item, point);
    m_current->recordPosition(p);
    // Hover moves must not disturb the points a later release without a press applies.
    if (m_current->isDragActive())
        m_current->updateDrag(p);
}

void ToolBox::toolMouseReleased(CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button)
{
    if (!m_current || m_current->identifier() == defaultCursor)
        return;
    if (!m_current->item() && item)
        m_current->setTarget(page, item);
    const QPoint p = toToolPoints(item, point);
    m_current->recordPosition(p);
    m_current->endDrag(p, button);
}

void ToolBox::showOverlay()
{
    auto* tool = qobject_cast<QTool*>(sender());
    CollectionTabPage* page = tool ? tool->view() : nullptr;
    const QSciImage* item = tool ? tool->item() : nullptr;
    if (!page || !item)
        return;
    if (m_overlayScene != page->scene()) {
        if (m_overlayScene)
            delete m_overlayItem;
        m_overlayItem = new ToolOverlayItem;
        m_overlayItem->setZValue(std::numeric_limits<double>::max());
        page->scene()->addItem(m_overlayItem);
        m_overlayScene = page->scene();
    }
    m_overlayItem->showFrom(tool, QPointF(item->left(), item->top()));
}

void ToolBox::hideOverlay()
{
    if (m_overlayScene && m_overlayItem)
        m_overlayItem->hide();
}
