#include "itemclipboard.h"

#include "collectiontab.h"
#include "itemarrangement.h"
#include "operationscope.h"
#include "project.h"

#include "core/items/qsciimage.h"

#include <QCoreApplication>

ItemClipboard::ItemClipboard(QObject* parent)
    : QObject(parent)
{
}

ItemClipboard::~ItemClipboard()
{
    clear();
}

void ItemClipboard::clear()
{
    qDeleteAll(m_items);
    m_items.clear();
}

void ItemClipboard::copy(const QList<QSciImage*>& items)
{
    if (items.isEmpty())
        return;
    clear();
    for (const QSciImage* item : items)
        m_items.append(item->duplicate());
    emit changed();
}

void ItemClipboard::cut(Project& project, const QList<QSciImage*>& items)
{
    copy(items);
    ItemArrangement::remove(project, items, QCoreApplication::translate("ItemClipboard", "Cut"));
}

QList<QSciImage*> ItemClipboard::paste(Project& project, CollectionTab* tab)
{
    QList<QSciImage*> pasted;
    if (!tab || m_items.isEmpty())
        return pasted;
    OperationScope scope(&project, tab, QCoreApplication::translate("ItemClipboard", "Paste"));
    for (QSciImage* item : tab->items())
        item->setSelected(false);
    for (const QSciImage* source : qAsConst(m_items)) {
        QSciImage* copy = source->duplicate();
        copy->setCreationTime(QDateTime::currentDateTime());
        copy->setSelected(true);
        tab->addItem(copy);
        scope.recordCreated(copy);
        pasted.append(copy);
    }
    scope.commit();
    return pasted;
}
