#pragma once

#include <functional>

#include <QString>

/**
 * The one fatal routine, for states the program cannot continue from. It shows the critical box
 * "Critical error: program terminated.", writes "Critical error: " and the detail in UTF-8 to
 * stderr, and ends the program with std::abort(): unwinding an exception through Qt's event loop
 * is undefined, and an abort keeps the failing state for a core dump.
 */
class FatalError final {
public:
    using Ending = std::function<void()>;

    /** Reports @p detail and ends the program; returns only when a test has replaced the ending. */
    static void terminate(const QString& detail);

    /** Replaces the ending step (std::abort by default); returns the previous one. For tests. */
    static Ending setEnding(Ending ending);
};
