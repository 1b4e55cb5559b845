#pragma once

#include <QList>
#include <QtGlobal>

class QObject;
class QSciImage;

/**
 * What the history needs from the owner of the tabs (the project) to put items back: the history sits
 * below the project and knows tabs only as opaque handles.
 */
class QSciHistoryHost {
public:
    virtual ~QSciHistoryHost() = default;
    /** The tab holding @p item, or nullptr. */
    virtual QObject* historyTabOf(const QSciImage* item) const = 0;
    /** The items of @p tab in stacking order, bottom first. */
    virtual QList<QSciImage*> historyTabItems(QObject* tab) const = 0;
    virtual void historySetTabOrder(QObject* tab, const QList<QSciImage*>& order) = 0;
    /** Takes ownership of @p item and puts it at @p index (clamped) of @p tab's stacking order. */
    virtual void historyInsertItem(QObject* tab, QSciImage* item, int index) = 0;
    /** Removes @p item from its tab and deletes it. */
    virtual void historyDeleteItem(QSciImage* item) = 0;
    /** An undo or redo brought back the item of serial @p oldSerial as the new object @p replacement. */
    virtual void historyItemReplaced(quint64 oldSerial, QSciImage* replacement) = 0;
};
