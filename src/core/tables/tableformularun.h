#pragma once

#include <QPair>
#include <QSet>
#include <QString>
#include <QVector>
#include <functional>

class QSciSimpleTableModel;

/**
 * Applies one formula to a table, cell by cell, row by row and left to right. A good result is written at
 * once, so later cells read it through `cell` and a formula can build a recurrence down a column; a failed
 * cell keeps its text and is reported.
 */
class TableFormulaRun final {
public:
    enum class Decision { Skip, SkipAll, Stop };
    struct Failure {
        int row;
        int column;
        QString result;
    };
    struct Outcome {
        qint64 visited = 0; ///< positions counted, selected or not
        qint64 written = 0;
        QVector<Failure> failures;
        bool stopped = false;
    };

    /** Asked for every failed cell until it answers SkipAll; absent means skip all. */
    std::function<Decision(const Failure&)> onFailure;
    /** Called at every tenth position with the count so far; returning false stops the run. */
    std::function<bool(qint64 visited)> checkpoint;

    /** With @p selection, only those (row, column) cells are computed; the others still count as visited. */
    Outcome apply(
        QSciSimpleTableModel& table, const QString& formula, const QSet<QPair<int, int>>* selection = nullptr) const;
};
