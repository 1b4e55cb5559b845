#pragma once

#include <functional>

/**
 * Runs a loop body over the cores: the calling thread and the global thread pool's threads share the indices.
 * Exactly as many threads work as the pool allows, the caller included; safe to call from a pool thread.
 */
class Parallel final {
public:
    enum class Schedule {
        /** Threads take the next index as they become free: for tasks of uneven cost. */
        Dynamic,
        /** Each thread takes one contiguous run of indices: for equal tasks over neighbouring memory. */
        Contiguous,
    };

    /**
     * Calls @p body(i) for every i in [0, count); returns when all are done. Keep each call short (a few
     * milliseconds at most) and the count well above the thread count, so that the threads share the work evenly.
     */
    static void forEach(int count, const std::function<void(int)>& body, Schedule schedule = Schedule::Dynamic);

    /**
     * Marks the upper halves of the AVX registers as unused (vzeroupper) on x86 processors that have them. Some
     * systems hand threads that state marked as in use, seen in virtual machines, and every SSE instruction then
     * pays a transition penalty, slowing the SSE loops of this program several times over until something
     * clears it. forEach() calls this before every index; call it now and then in other long SSE loops.
     */
    static void clearVectorState();
};
