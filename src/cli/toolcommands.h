#pragma once

#include "clicommand.h"

#include <QList>
#include <QPair>
#include <functional>

class CliArgs;
class Project;
class QSciImage;

/** The `apply` operations of the tools that change an item: the double-tip removal and the brushes. */
class ToolCommands final {
public:
    using Operation = std::function<int(CliContext&, CliArgs&, Project&, QSciImage*)>;
    static QList<QPair<QString, Operation>> operations();
    static QString usage();
};
