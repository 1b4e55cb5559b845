#pragma once

#include <QString>

struct CliContext;

/** `info` on files that are not native: instrument, picture and raw files, through the core importers. */
class CliInstruments final {
public:
    /** Prints the channel list as JSON; returns the exit code. */
    static int info(CliContext& context, const QString& path);
};
