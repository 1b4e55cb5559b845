#pragma once

#include <QWidget>

class CollectionTabPage;
class ItemInfoWidget;
class QLineEdit;
class QPushButton;
class QTabWidget;

/**
 * The main window's central widget: the tab-name strip, the collection tabs (`mainTabs`) with
 * one CollectionTabPage each, and the item info strip below them.
 */
class CentralArea final : public QWidget {
    Q_OBJECT

public:
    explicit CentralArea(QWidget* parent = nullptr);

    QTabWidget* tabs() const { return m_tabs; }
    ItemInfoWidget* itemInfo() const { return m_itemInfo; }
    CollectionTabPage* currentPage() const;
    CollectionTabPage* page(int index) const;

    /** Adds a tab named @p name (a numbered default when empty), makes it current, returns its page. */
    CollectionTabPage* addTab(const QString& name = QString());
    /** Gives the current tab the trimmed @p name; an empty name is refused. */
    bool renameCurrentTab(const QString& name);

signals:
    void currentPageChanged(CollectionTabPage* page);
    void contextMenuRequested(const QPoint& globalPos);

private:
    void onCurrentChanged(int index);

    QLineEdit* m_tabName;
    QPushButton* m_rename;
    QTabWidget* m_tabs;
    ItemInfoWidget* m_itemInfo;
    int m_tabsCreated = 0;
};
