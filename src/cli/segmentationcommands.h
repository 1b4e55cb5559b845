#pragma once

#include "clicommand.h"

#include <QList>
#include <QPair>
#include <functional>

class CliArgs;
class Project;
class QSciImage;

/** `apply ... mask-to-objects` and `apply ... watershed`: regions of an item into object records. */
class SegmentationCommands final {
public:
    using Operation = std::function<int(CliContext&, CliArgs&, Project&, QSciImage*)>;
    static QList<QPair<QString, Operation>> operations();
    static QString usage();
};
