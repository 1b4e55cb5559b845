#pragma once

#include <QList>
#include <QString>
#include <functional>

class Project;
class QSciImage;

/**
 * The glue of a change to z-matrices outside the effects dialog (tools, their command-line twins): one
 * history transaction, and an item that shows its picture gets it re-rendered from the new heights, as
 * the effects do, so that the change does not stay hidden.
 */
class ZEdit final {
public:
    static void apply(Project& project, const QList<QSciImage*>& items, const QString& name,
        const std::function<void(QSciImage&)>& change);
};
