#pragma once

#include <QString>

/**
 * Progress and cancel for long work. The window shows a dialog, the CLI a terminal bar;
 * core code only reports and polls.
 */
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    /** Starts a pass of @p total steps titled @p label. */
    virtual void begin(const QString& label, int total) = 0;
    virtual void step(int done) = 0;
    virtual void end() = 0;
    /** True once the user asked to stop; polled between units of work. */
    virtual bool isCancelled() const { return false; }
};

/** A sink that reports nothing and never cancels. */
class NullProgressSink final : public ProgressSink {
public:
    void begin(const QString&, int) override { }
    void step(int) override { }
    void end() override { }
};
