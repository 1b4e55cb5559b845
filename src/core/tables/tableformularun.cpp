#include "tableformularun.h"

#include "formulaevaluator.h"
#include "qscisimpletablemodel.h"

TableFormulaRun::Outcome TableFormulaRun::apply(
    QSciSimpleTableModel& table, const QString& formula, const QSet<QPair<int, int>>* selection) const
{
    Outcome outcome;
    FormulaEvaluator evaluator(formula, &table);
    bool ask = bool(onFailure);
    for (int row = 0; row < table.rows(); ++row) {
        for (int column = 0; column < table.columns(); ++column) {
            ++outcome.visited;
            if (!selection || selection->contains({ row, column })) {
                bool ok = false;
                const QString result = evaluator.evaluate(FormulaEvaluator::cellVariables(row, column), &ok);
                if (ok) {
                    table.setCellText(row, column, result);
                    ++outcome.written;
                } else {
                    outcome.failures.append({ row, column, result });
                    if (ask) {
                        const Decision decision = onFailure(outcome.failures.constLast());
                        if (decision == Decision::Stop) {
                            outcome.stopped = true;
                            return outcome;
                        }
                        ask = decision == Decision::Skip;
                    }
                }
            }
            if (outcome.visited % 10 == 0 && checkpoint && !checkpoint(outcome.visited)) {
                outcome.stopped = true;
                return outcome;
            }
        }
    }
    return outcome;
}
