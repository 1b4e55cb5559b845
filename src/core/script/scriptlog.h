#pragma once

#include <QString>

/** The script engine's fixed lines on standard output ("Init scripting", "QSciScriptCore: Registered ..."). */
class ScriptLog final {
public:
    static void line(const QString& text);
    /** Quiet mode for tests and for programs whose standard output is the script's own. */
    static void setQuiet(bool quiet);
};
