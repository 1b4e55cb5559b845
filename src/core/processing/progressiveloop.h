#pragma once

#include <QString>
#include <functional>

class ProgressSink;

/**
 * Runs the units of long work over the cores in groups, and between groups reports progress and polls
 * for a stop on the calling thread, so a sink that processes events never runs on a worker thread.
 */
class ProgressiveLoop final {
public:
    /**
     * Calls @p body(i) for every i in [0, count) as one pass titled @p label; false when the sink asked to
     * stop (some units then never ran). A null @p progress runs everything at once.
     */
    [[nodiscard]] static bool run(
        int count, ProgressSink* progress, const QString& label, const std::function<void(int)>& body);
};
