#include "progressiveloop.h"

#include "core/base/parallel.h"
#include "core/base/progresssink.h"

#include <QThreadPool>
#include <algorithm>

bool ProgressiveLoop::run(int count, ProgressSink* progress, const QString& label, const std::function<void(int)>& body)
{
    if (!progress) {
        Parallel::forEach(count, body);
        return true;
    }
    // Groups of a few units per thread keep every core busy; at least ten of them keep the bar moving.
    const int threads = std::max(1, QThreadPool::globalInstance()->maxThreadCount());
    const int group = std::max(1, std::min(4 * threads, (count + 9) / 10));
    progress->begin(label, count);
    for (int start = 0; start < count; start += group) {
        if (progress->isCancelled()) {
            progress->end();
            return false;
        }
        const int n = std::min(group, count - start);
        Parallel::forEach(n, [&body, start](int i) { body(start + i); });
        progress->step(start + n);
    }
    progress->end();
    return true;
}
