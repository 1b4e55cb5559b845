#pragma once

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

/** The field every job works on: W·H doubles column by column, rows from the bottom. */
struct BenchField {
    int width = 0;
    int height = 0;
    QVector<double> z;
};

/** One timed job: `prepare` runs untimed before every repetition, `run` is timed. */
struct BenchJob {
    QString name;
    std::function<void()> run;
    std::function<void()> prepare;
};

/** Context the job lists are built from. */
struct BenchContext {
    BenchField field;
    QString workDir; ///< a scratch folder, removed at exit
    quint64 seed = 12345;
    int threads = 0;
    QString file; ///< an input file for jobs that read one (--file)
};

using BenchJobFactory = QList<BenchJob> (*)(BenchContext& context);

/** A job file registers its factory with a static instance of this; main.cpp runs them by @p order. */
struct BenchRegistration {
    BenchRegistration(int order, BenchJobFactory factory);
};

QList<QPair<int, BenchJobFactory>> benchFactories();

/** Times a job: one untimed warm-up, then @p reps timed runs; returns the median in ms. */
double benchMedianMs(const BenchJob& job, int reps);
