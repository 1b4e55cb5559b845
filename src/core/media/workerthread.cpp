#include "workerthread.h"

#include <QThread>

QThread* WorkerThread::start(QObject* worker, const std::function<void()>& job)
{
    auto* thread = new QThread;
    worker->moveToThread(thread);
    QObject::connect(thread, &QThread::started, worker, [thread, job] {
        job();
        thread->quit();
    });
    QObject::connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
    return thread;
}
