#include "project.h"

#include "collectiontab.h"

#include "core/history/qscihistorymanager.h"
#include "core/items/qsciimage.h"

Project::Project(QObject* parent)
    : QObject(parent)
{
}

Project::~Project()
{
    QSciHistoryManager::instance()->forget(this);
    clear();
}

CollectionTab* Project::addTab(const QString& name)
{
    ++m_tabCounter;
    auto* tab = new CollectionTab(name.isEmpty() ? tr("Tab %1").arg(m_tabCounter) : name, this);
    m_tabs.append(tab);
    // Any change on a tab makes the project worth saving.
    connect(tab, &CollectionTab::itemAdded, this, [this] { setModified(true); });
    connect(tab, &CollectionTab::itemRemoved, this, [this] { setModified(true); });
    connect(tab, &CollectionTab::orderChanged, this, [this] { setModified(true); });
    connect(tab, &CollectionTab::renamed, this, [this] { setModified(true); });
    emit tabAdded(tab);
    if (m_current < 0)
        setCurrentIndex(0);
    return tab;
}

void Project::removeTab(CollectionTab* tab)
{
    const int index = m_tabs.indexOf(tab);
    if (index < 0)
        return;
    m_tabs.removeAt(index);
    emit tabRemoved(tab);
    delete tab;
    if (m_current >= m_tabs.size())
        setCurrentIndex(m_tabs.size() - 1);
    else if (index <= m_current)
        emit currentTabChanged(m_current);
}

void Project::clear()
{
    while (!m_tabs.isEmpty())
        removeTab(m_tabs.last());
    m_current = -1;
    m_tabCounter = 0;
}

void Project::setCurrentIndex(int index)
{
    if (index < -1 || index >= m_tabs.size() || index == m_current)
        return;
    m_current = index;
    emit currentTabChanged(index);
}

CollectionTab* Project::tabOf(const QSciImage* item) const
{
    for (CollectionTab* tab : m_tabs) {
        if (tab->contains(item))
            return tab;
    }
    return nullptr;
}

QList<QSciImage*> Project::allItems() const
{
    QList<QSciImage*> items;
    for (CollectionTab* tab : m_tabs)
        items += tab->items();
    return items;
}

QList<QSciImage*> Project::selectedItems(bool currentTabOnly) const
{
    if (currentTabOnly)
        return currentTab() ? currentTab()->selectedItems() : QList<QSciImage*>();
    QList<QSciImage*> items;
    for (CollectionTab* tab : m_tabs)
        items += tab->selectedItems();
    return items;
}

void Project::setModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    emit modifiedChanged(modified);
}

QObject* Project::historyTabOf(const QSciImage* item) const
{
    return tabOf(item);
}

QList<QSciImage*> Project::historyTabItems(QObject* tab) const
{
    auto* collection = qobject_cast<CollectionTab*>(tab);
    return collection && m_tabs.contains(collection) ? collection->items() : QList<QSciImage*>();
}

void Project::historySetTabOrder(QObject* tab, const QList<QSciImage*>& order)
{
    if (auto* collection = qobject_cast<CollectionTab*>(tab))
        collection->setOrder(order);
}

void Project::historyInsertItem(QObject* tab, QSciImage* item, int index)
{
    auto* collection = qobject_cast<CollectionTab*>(tab);
    if (!collection || !m_tabs.contains(collection))
        collection = currentTab() ? currentTab() : addTab();
    collection->addItem(item, index);
}

void Project::historyDeleteItem(QSciImage* item)
{
    if (CollectionTab* tab = tabOf(item))
        delete tab->takeItem(item);
}

void Project::historyItemReplaced(quint64 oldSerial, QSciImage* replacement)
{
    emit itemReplaced(oldSerial, replacement);
}
