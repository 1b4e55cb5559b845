#include "matrixspare.h"

#include <mutex>
#include <utility>

namespace {

std::mutex& spareLock()
{
    static std::mutex lock;
    return lock;
}

QVector<double>& spare()
{
    static QVector<double> matrix;
    return matrix;
}

} // namespace

QVector<double> MatrixSpare::keep(QVector<double>&& z)
{
    if (z.isEmpty() || !z.isDetached() || qsizetype(z.size()) * qsizetype(sizeof(double)) > MaxBytes)
        return std::move(z);
    std::lock_guard<std::mutex> lock(spareLock());
    std::swap(spare(), z);
    return std::move(z);
}

QVector<double> MatrixSpare::take(qsizetype points)
{
    std::lock_guard<std::mutex> lock(spareLock());
    if (spare().isEmpty() || qsizetype(spare().size()) != points)
        return {};
    return std::exchange(spare(), QVector<double>());
}
