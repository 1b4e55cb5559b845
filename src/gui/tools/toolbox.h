#pragma once

#include "toolmousesink.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

class CollectionTabPage;
class Project;
class QGraphicsScene;
class QTool;
class QTreeWidget;
class QTreeWidgetItem;
class ToolOverlayItem;
class ToolsDock;

/**
 * The tool box: fills the dock's tool list under its four headings, shows the current tool's panel in
 * the option area, owns the tools (as children of that area) and passes them the mouse of the tabs'
 * views. Shows a tool's preview over the item it works on, in that item's scene.
 */
class ToolBox final : public QObject, public ToolMouseSink {
    Q_OBJECT

public:
    /** "DEF_CURSOR" is the current tool at first. */
    explicit ToolBox(ToolsDock* dock, QObject* parent = nullptr);
    ~ToolBox() override;

    void setProject(Project* project);
    Project* project() const;

    /** Every tool's identifier, in list order. */
    QStringList identifiers() const { return m_order; }
    QTool* tool(const QString& identifier) const { return m_tools.value(identifier); }
    QTool* currentTool() const { return m_current; }
    /** Makes @p identifier current: selects its entry, shows its panel and activates it. */
    void setCurrentTool(const QString& identifier);
    /** True exactly while the default pointer is current: the views let the user drag items. */
    bool itemsMovable() const { return m_itemsMovable; }
    /**
     * Lets the tools take @p page's mouse and keeps its items movable exactly while the default pointer is
     * current. Call for every page; a destroyed page is forgotten.
     */
    void attachPage(CollectionTabPage* page);
    /** The page of the last gesture a tool took. */
    CollectionTabPage* currentPage() const;

    void toolModifiersPressed(Qt::KeyboardModifiers modifiers) override;
    bool toolMousePressed(
        CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button) override;
    void toolMouseMoved(CollectionTabPage* page, QSciImage* item, const QPoint& point) override;
    void toolMouseReleased(
        CollectionTabPage* page, QSciImage* item, const QPoint& point, Qt::MouseButton button) override;

signals:
    void itemsMovableChanged(bool movable);
    /** A tool reports a line of HTML for the output page. */
    void outputRequested(const QString& html);
    /** A tool's note for the status bar. */
    void statusMessageRequested(const QString& text);

private:
    /** Ends a drag whose item went away (deleted, or replaced by an undo). */
    void dropOrphanedDrag();
    void addTool(int heading, const QString& title, QTool* tool);
    void onListCurrentChanged(QTreeWidgetItem* entry);
    void onItemsMovableRequested(bool movable);
    /** @p point, given in @p from's points (the tab's without @p from), in the points of the tool's own item. */
    QPoint toToolPoints(QSciImage* from, const QPoint& point) const;
    void showOverlay();
    void hideOverlay();

    QTreeWidget* m_list;
    QWidget* m_options;
    QPointer<Project> m_project;
    QHash<QString, QTool*> m_tools;
    QHash<QString, QTreeWidgetItem*> m_entries;
    QStringList m_order;
    QTool* m_current = nullptr;
    bool m_itemsMovable = true;
    QPointer<CollectionTabPage> m_page;
    QList<QPointer<CollectionTabPage>> m_pages;
    QPointer<QGraphicsScene> m_overlayScene;
    ToolOverlayItem* m_overlayItem = nullptr;
};
