#pragma once

#include <QPointer>
#include <QWidget>

#include "core/items/qsciimage.h"

class CollectionTab;
class CollectionTabPage;
class ItemInfoWidget;
class Project;
class QLineEdit;
class QPushButton;
class QTabWidget;
class ToolMouseSink;

/**
 * The main window's central widget: the tab-name strip, the collection tabs (`mainTabs`) with one
 * CollectionTabPage per tab of the project, in the project's order, and the item info strip below them.
 * The project is the truth: pages come and go with its tabs, and the current page follows its current tab.
 */
class CentralArea final : public QWidget {
    Q_OBJECT

public:
    explicit CentralArea(QWidget* parent = nullptr);

    /** Shows @p project's tabs from now on. */
    void setProject(Project* project);

    QTabWidget* tabs() const { return m_tabs; }
    ItemInfoWidget* itemInfo() const { return m_itemInfo; }
    CollectionTabPage* currentPage() const;
    CollectionTabPage* page(int index) const;
    CollectionTabPage* pageFor(const CollectionTab* tab) const;
    QList<CollectionTabPage*> pages() const;

    /** Adds a project tab named @p name ("Tab N" when empty), makes it current and returns its page. */
    CollectionTabPage* addTab(const QString& name = QString());
    /** Gives the current tab the trimmed @p name; an empty name is refused. */
    bool renameCurrentTab(const QString& name);

    /** Gives the keyboard focus to the current tab's image area, where Ctrl+Z and the Menu key act on items. */
    void focusImageArea();
    /**
     * After Enter in @p field the focus goes back to the image area: a field keeping it would take Ctrl+Z and
     * Ctrl+Y for its own text.
     */
    void returnFocusOnEnter(QWidget* field);
    /** The Menu key and Shift+F10 in @p widget (the tool list) open the item menu, as in the image area. */
    void passMenuKeys(QWidget* widget);

    /** Mouse gestures go to @p sink first on every page, present and future. */
    void setToolMouseSink(ToolMouseSink* sink);
    void setItemsMovable(bool movable);

signals:
    void currentPageChanged(CollectionTabPage* page);
    void contextMenuRequested(const QPoint& globalPos);
    void zoomStepRequested(int steps);
    void itemsDragged(const QList<QSciImage*>& items, int dx, int dy);
    void pointHovered(QSciImage* item, const QPoint& point);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addPage(CollectionTab* tab);
    void removePage(CollectionTab* tab);
    void onCurrentChanged(int index);
    void onProjectCurrentChanged(int index);

    QPointer<Project> m_project;
    QLineEdit* m_tabName;
    QPushButton* m_rename;
    QTabWidget* m_tabs;
    ItemInfoWidget* m_itemInfo;
    ToolMouseSink* m_sink = nullptr;
    bool m_movable = true;
    bool m_following = false;
    QList<QObject*> m_menuKeyWidgets;
};
