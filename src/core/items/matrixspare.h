#pragma once

#include <QVector>

/**
 * One z-matrix let go by a load, kept for the next load of the same size: undo, redo and reverting reload an
 * item of one size again and again. A fresh matrix of tens of megabytes makes the kernel clear every page
 * before it is written, a tenth of a load; glibc keeps smaller buffers for reuse itself, but hands those
 * above 32 MB back to the system at once.
 */
class MatrixSpare final {
public:
    /** Matrices above this many bytes are not kept, so that the spare never holds much memory. */
    static constexpr qsizetype MaxBytes = qsizetype(64) << 20;

    /**
     * Keeps @p z when nothing else shares it and it is within MaxBytes. Returns what the caller is to let go:
     * the spare kept before, or @p z itself when it was not kept.
     */
    static QVector<double> keep(QVector<double>&& z);
    /** The spare when it holds exactly @p points values (their contents are stale), else an empty vector. */
    static QVector<double> take(qsizetype points);
};
