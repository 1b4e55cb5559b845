#include "parallel.h"

#include <QFuture>
#include <QThreadPool>
#include <QVector>
#include <QtConcurrent/QtConcurrentRun>
#include <atomic>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define VELMORA_X86_VZEROUPPER 1

namespace {

__attribute__((target("avx"))) void zeroUpper()
{
    _mm256_zeroupper();
}

// Static initialisers may run before libgcc has read the processor's features.
const bool hasAvx = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx") != 0;
}();

} // namespace
#endif

void Parallel::clearVectorState()
{
#ifdef VELMORA_X86_VZEROUPPER
    if (hasAvx)
        zeroUpper();
#endif
}

void Parallel::forEach(int count, const std::function<void(int)>& body, Schedule schedule)
{
    const int threads = qMin(count, QThreadPool::globalInstance()->maxThreadCount());
    if (threads <= 1) {
        for (int i = 0; i < count; ++i) {
            clearVectorState();
            body(i);
        }
        return;
    }
    std::atomic<int> next { 0 };
    auto work = [&next, &body, count, threads, schedule](int thread) {
        if (schedule == Schedule::Contiguous) {
            const int end = int(qint64(count) * (thread + 1) / threads);
            for (int i = int(qint64(count) * thread / threads); i < end; ++i) {
                clearVectorState();
                body(i);
            }
            return;
        }
        for (int i = next++; i < count; i = next++) {
            clearVectorState();
            body(i);
        }
    };
    QVector<QFuture<void>> futures;
    for (int t = 1; t < threads; ++t)
        futures.append(QtConcurrent::run(work, t));
    work(0);
    // A helper that never got a thread is run here (QFuture takes queued tasks over).
    for (QFuture<void>& future : futures)
        future.waitForFinished();
}
