#pragma once

#include <QList>
#include <QObject>

class CollectionTab;
class Project;
class QSciImage;

/**
 * The program's own item clipboard: deep copies taken by cut and copy, pasted as new items.
 * Kept in the core so scripts and the window share one clipboard.
 */
class ItemClipboard final : public QObject {
    Q_OBJECT

public:
    explicit ItemClipboard(QObject* parent = nullptr);
    ~ItemClipboard() override;

    bool isEmpty() const { return m_items.isEmpty(); }
    int count() const { return m_items.size(); }
    void copy(const QList<QSciImage*>& items);
    /** Copies, then deletes the items in one transaction ("Cut"). */
    void cut(Project& project, const QList<QSciImage*>& items);
    /** New copies of the clipboard on @p tab, on top and selected, in one transaction ("Paste"). */
    QList<QSciImage*> paste(Project& project, CollectionTab* tab);

signals:
    void changed();

private:
    void clear();

    QList<QSciImage*> m_items;
};
