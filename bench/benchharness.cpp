#include "benchharness.h"

#include <QElapsedTimer>
#include <algorithm>

double benchMedianMs(const BenchJob& job, int reps)
{
    if (job.prepare)
        job.prepare();
    job.run();
    QVector<double> times;
    for (int i = 0; i < reps; ++i) {
        if (job.prepare)
            job.prepare();
        QElapsedTimer timer;
        timer.start();
        job.run();
        times.append(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    const int n = times.size();
    return n % 2 ? times.at(n / 2) : 0.5 * (times.at(n / 2 - 1) + times.at(n / 2));
}

namespace {

QList<QPair<int, BenchJobFactory>>& factories()
{
    static QList<QPair<int, BenchJobFactory>> list;
    return list;
}

} // namespace

BenchRegistration::BenchRegistration(int order, BenchJobFactory factory)
{
    factories().append({ order, factory });
}

QList<QPair<int, BenchJobFactory>> benchFactories()
{
    QList<QPair<int, BenchJobFactory>> list = factories();
    std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    return list;
}
