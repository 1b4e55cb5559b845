#pragma once

#include "core/history/qscihistoryhost.h"

#include <QList>
#include <QObject>
#include <QString>

class CollectionTab;
class QSciImage;

/**
 * The project: its collection tabs, the current tab, and whether anything changed since the last save.
 * The window, the CLI and scripts reach items only through it and through ItemOperations.
 */
class Project final : public QObject, public QSciHistoryHost {
    Q_OBJECT

public:
    explicit Project(QObject* parent = nullptr);
    ~Project() override;

    const QList<CollectionTab*>& tabs() const { return m_tabs; }
    CollectionTab* tab(int index) const { return m_tabs.value(index); }
    int indexOf(const CollectionTab* tab) const { return m_tabs.indexOf(const_cast<CollectionTab*>(tab)); }
    /** Adds a tab (named "Tab N" when @p name is empty) and returns it. */
    CollectionTab* addTab(const QString& name = QString());
    /** Removes and deletes a tab with its items. */
    void removeTab(CollectionTab* tab);
    /** Deletes every tab. */
    void clear();

    CollectionTab* currentTab() const { return m_tabs.value(m_current); }
    int currentIndex() const { return m_current; }
    void setCurrentIndex(int index);

    /** The tab that holds @p item, or nullptr. */
    CollectionTab* tabOf(const QSciImage* item) const;
    /** All items, tab by tab, each tab bottom first. */
    QList<QSciImage*> allItems() const;
    /** Selected items, in list order: tab by tab, bottom first; only the current tab's when @p currentTabOnly. */
    QList<QSciImage*> selectedItems(bool currentTabOnly = false) const;

    bool isModified() const { return m_modified; }
    void setModified(bool modified);
    QString fileName() const { return m_fileName; }
    void setFileName(const QString& fileName) { m_fileName = fileName; }

    // The history puts items back through these.
    QObject* historyTabOf(const QSciImage* item) const override;
    QList<QSciImage*> historyTabItems(QObject* tab) const override;
    void historySetTabOrder(QObject* tab, const QList<QSciImage*>& order) override;
    void historyInsertItem(QObject* tab, QSciImage* item, int index) override;
    void historyDeleteItem(QSciImage* item) override;
    void historyItemReplaced(quint64 oldSerial, QSciImage* replacement) override;

signals:
    /** An undo or redo brought an item back as a new object. */
    void itemReplaced(quint64 oldSerial, QSciImage* replacement);
    void tabAdded(CollectionTab* tab);
    void tabRemoved(CollectionTab* tab);
    void currentTabChanged(int index);
    void modifiedChanged(bool modified);

private:
    QList<CollectionTab*> m_tabs;
    int m_current = -1;
    bool m_modified = false;
    QString m_fileName;
    int m_tabCounter = 0;
};
