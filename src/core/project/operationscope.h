#pragma once

#include "core/items/qsciimage.h"

#include <QList>
#include <QPointer>
#include <QSet>
#include <QString>
#include <memory>

#include "core/base/busyindicator.h"

class CollectionTab;
class Project;

/**
 * One user-visible change to items: the single place where operations record what they are about to
 * change, so undo can bring it back. Record an item's parts BEFORE changing them. A scope that is
 * destroyed without commit() is cancelled. From the first large item recorded on, the program counts as busy.
 */
class OperationScope final {
public:
    OperationScope(Project* project, CollectionTab* tab, const QString& name);
    ~OperationScope();
    OperationScope(const OperationScope&) = delete;
    OperationScope& operator=(const OperationScope&) = delete;

    QString name() const { return m_name; }
    /**
     * Parameters of the operation ("radius=2") for the processing log: commit() adds a line of the name and
     * these to each item whose z-matrix, mask or objects were recorded, so the line is undone with the change.
     */
    void setLogParameters(const QString& parameters) { m_logParameters = parameters; }
    /** Saves @p parts of @p item as they are now; false when that failed and the item must not change. */
    [[nodiscard]] bool record(QSciImage* item, QSciImage::Parts parts);
    /** @p item was just made by the operation; undo removes it again. */
    void recordCreated(QSciImage* item);
    /** @p item is about to leave its tab (deleted or moved); undo puts it back. False: it must stay. */
    [[nodiscard]] bool recordRemoval(QSciImage* item);
    /** The stacking order of @p tab is about to change. */
    void recordOrder(CollectionTab* tab);
    void commit();
    void cancel();
    /** Takes back what was changed so far and cancels: a cancelled operation leaves no trace. */
    void rollback();

    /** Items of at least this many points make an operation long enough for a busy cursor. */
    static constexpr qint64 BusyPoints = qint64(1) << 20;

private:
    std::unique_ptr<BusyIndicator::Scope> m_busy;
    Project* m_project;
    CollectionTab* m_tab;
    QString m_name;
    QString m_logParameters;
    QSet<quint64> m_loggedSerials;
    QList<QPointer<QSciImage>> m_logged;
    bool m_open = true;
    bool m_owns = false;
};
