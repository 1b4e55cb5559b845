#pragma once

#include "clicommand.h"

#include <QList>
#include <QPair>
#include <functional>

class CliArgs;
class Project;
class QSciImage;
struct ObjectRecognitionOptions;

/** Object recognition on the command line: the `objects` command and `apply ... objects`. */
class ObjectCommands final {
public:
    using Operation = std::function<int(CliContext&, CliArgs&, Project&, QSciImage*)>;
    static QList<QPair<QString, Operation>> operations();

    /**
     * Reads the recognition options: every option given ticks its check box, every other one stays unticked.
     * False with the problem when a value does not read.
     */
    static bool parseOptions(CliArgs& args, ObjectRecognitionOptions* options, QString* problem);
    /** Recognises the objects of @p item; prints the count. */
    static int recognise(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static QString optionUsage();
};
