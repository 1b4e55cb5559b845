#pragma once

#include "clicommand.h"

#include <QList>
#include <QPair>
#include <functional>

class CliArgs;
class Project;
class QSciImage;

/** The `apply` operations of the image-processing dialog; each returns a CliExit. */
class EffectCommands final {
public:
    using Operation = std::function<int(CliContext&, CliArgs&, Project&, QSciImage*)>;
    /** Every effect operation by its name on the command line. */
    static QList<QPair<QString, Operation>> operations();

    static int denoise(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int derivative(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int levelPlane(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int levelPolynomial(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int levelThreePoints(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int levelFacet(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int zeroMinimum(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int alignRows(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int removeScars(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int drift(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static QString usage();
};
