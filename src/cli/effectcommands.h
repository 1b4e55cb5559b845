#pragma once

#include "clicommand.h"

class CliArgs;
class Project;
class QSciImage;

/** The `apply` operations of the image-processing dialog; each returns a CliExit. */
class EffectCommands final {
public:
    static int denoise(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static int derivative(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item);
    static QString usage();
};
