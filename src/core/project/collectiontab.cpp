#include "collectiontab.h"

#include "core/items/qsciimage.h"

#include <QSet>

CollectionTab::CollectionTab(const QString& name, QObject* parent)
    : QObject(parent)
    , m_name(name)
{
    setObjectName(name);
}

CollectionTab::~CollectionTab()
{
    qDeleteAll(m_items);
}

void CollectionTab::setName(const QString& name)
{
    if (name == m_name)
        return;
    m_name = name;
    setObjectName(name);
    for (QSciImage* item : qAsConst(m_items))
        item->setTabText(name);
    emit renamed(name);
}

void CollectionTab::addItem(QSciImage* item, int index)
{
    if (!item || m_items.contains(item))
        return;
    item->setParent(this);
    item->setTabText(m_name);
    if (index < 0 || index > m_items.size())
        index = m_items.size();
    m_items.insert(index, item);
    renumber();
    emit itemAdded(item);
}

QSciImage* CollectionTab::takeItem(QSciImage* item)
{
    const int index = m_items.indexOf(item);
    if (index < 0)
        return nullptr;
    m_items.removeAt(index);
    item->setParent(nullptr);
    renumber();
    emit itemRemoved(item);
    return item;
}

bool CollectionTab::setOrder(const QList<QSciImage*>& order)
{
    if (order.size() != m_items.size())
        return false;
    const QSet<QSciImage*> now(m_items.cbegin(), m_items.cend());
    const QSet<QSciImage*> wanted(order.cbegin(), order.cend());
    if (now != wanted)
        return false;
    if (order == m_items)
        return true;
    m_items = order;
    renumber();
    emit orderChanged();
    return true;
}

QList<QSciImage*> CollectionTab::selectedItems() const
{
    QList<QSciImage*> selected;
    for (QSciImage* item : m_items) {
        if (item->isSelected())
            selected.append(item);
    }
    return selected;
}

void CollectionTab::renumber()
{
    for (int i = 0; i < m_items.size(); ++i)
        m_items.at(i)->setZPosInImageList(i);
}
