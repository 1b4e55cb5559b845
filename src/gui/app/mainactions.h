#pragma once

#include <initializer_list>

#include <QAction>
#include <QObject>

class QMenu;
class QMenuBar;

/**
 * Every action of the main menus, with its object name, text and shortcut, and the menus that
 * hold them. All actions start disabled: whoever connects one to its work enables it, so an
 * entry whose work has not been built cannot be chosen.
 */
class MainActions final : public QObject {
    Q_OBJECT

public:
    explicit MainActions(QObject* parent);

    /** The action of object name @p name; a name that is not in the table is a programming error. */
    QAction* get(const char* name) const;

    /** Connects @p action's triggered() to @p slot of @p receiver and enables it. */
    template <typename Receiver, typename Slot> QAction* wire(const char* name, Receiver* receiver, Slot slot) const
    {
        QAction* action = get(name);
        connect(action, &QAction::triggered, receiver, slot);
        action->setEnabled(true);
        return action;
    }

    /**
     * Fills @p bar with the File, Effects, Image processing, View and Help menus. A menu or sub-menu none of
     * whose entries can be chosen is disabled itself, and follows its entries from then on.
     */
    void buildMenus(QMenuBar* bar);

    /** Keeps @p menu, and every sub-menu it holds or is given later, disabled exactly while nothing in it is enabled.
     */
    void followEntries(QMenu* menu);

    QMenu* newMenu() const { return m_menuNew; }
    QMenu* exportMenu() const { return m_menuExport; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addAll(QMenu* menu, std::initializer_list<const char*> names) const;
    static void updateEnabled(QMenu* menu);

    QMenu* m_menuNew = nullptr;
    QMenu* m_menuExport = nullptr;
};
