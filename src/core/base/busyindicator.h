#pragma once

/**
 * Tells the user that the program is working while core code blocks its thread: the window shows a busy cursor,
 * the command line nothing. Core code marks long stretches with a Scope; the front end installs the indicator.
 * Used from the GUI thread only.
 */
class BusyIndicator {
public:
    virtual ~BusyIndicator() = default;
    virtual void setBusy(bool busy) = 0;

    /** @p indicator from now on (nullptr: none); the caller keeps it alive while installed. */
    static void install(BusyIndicator* indicator);

    /** Busy for its lifetime; nested scopes count once. */
    class Scope final {
    public:
        Scope();
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };
};
