#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QSciImage;

/**
 * One collection tab of the project: owns its items and keeps their stacking order (index 0 is the
 * bottom, drawn first). Each item's zPosInImageList and tabText are kept in step with the tab.
 */
class CollectionTab final : public QObject {
    Q_OBJECT

public:
    explicit CollectionTab(const QString& name, QObject* parent = nullptr);
    ~CollectionTab() override;

    QString name() const { return m_name; }
    void setName(const QString& name);

    /** Items in stacking order, bottom first. */
    const QList<QSciImage*>& items() const { return m_items; }
    int count() const { return m_items.size(); }
    int indexOf(const QSciImage* item) const { return m_items.indexOf(const_cast<QSciImage*>(item)); }
    bool contains(const QSciImage* item) const { return indexOf(item) >= 0; }

    /** Takes ownership; the item goes on top unless @p index says where (clamped). */
    void addItem(QSciImage* item, int index = -1);
    /** Gives up ownership and returns the item (unparented), or nullptr when it is not on this tab. */
    QSciImage* takeItem(QSciImage* item);
    /** Replaces the stacking order; @p order must hold exactly this tab's items. */
    bool setOrder(const QList<QSciImage*>& order);

    /** Selected items in stacking order. */
    QList<QSciImage*> selectedItems() const;

signals:
    void renamed(const QString& name);
    void itemAdded(QSciImage* item);
    void itemRemoved(QSciImage* item);
    void orderChanged();

private:
    void renumber();

    QString m_name;
    QList<QSciImage*> m_items;
};
