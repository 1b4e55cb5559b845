#pragma once

#include <QMenu>

/**
 * The context menu of the item list and of the image area, built once. Each entry's object name
 * is the name of the receiver's slot it triggers; entries start disabled and the receiver enables
 * those whose work exists. The first line is an informative, disabled count of selected items.
 */
class ItemContextMenu final : public QMenu {
    Q_OBJECT

public:
    /** Builds the menu and connects every entry to the slot of its name on @p receiver. */
    ItemContextMenu(QWidget* parent, QObject* receiver);

    QAction* entry(const char* slotName) const;
    /** Enables or disables an entry; a group is enabled while any of its entries is. */
    void setEntryEnabled(const char* slotName, bool enabled);
    QAction* selectionLine() const { return m_selectionLine; }
    void setSelectedCount(int count);

    /** The slots that could not be connected; empty when the receiver has them all. */
    const QStringList& missingSlots() const { return m_missingSlots; }

private:
    void addEntry(QMenu* menu, QObject* receiver, const char* text, const char* slotName);

    QAction* m_selectionLine;
    QStringList m_missingSlots;
};
