#pragma once

#include <QObject>
#include <functional>

class QThread;

/** Runs a worker's job on a thread of its own; the thread and the worker delete themselves when the job returns. */
class WorkerThread final {
public:
    /** Moves @p worker (unparented) to a new thread and calls @p job there. Returns the running thread. */
    static QThread* start(QObject* worker, const std::function<void()>& job);
};
