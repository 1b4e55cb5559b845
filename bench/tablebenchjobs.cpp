#include "benchharness.h"

#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tableformularun.h"

#include <memory>

namespace {

/** A formula over every cell of a 1000 x 100 table, reading the cell above: the size of a large measures table. */
BenchJob formulaJob(const QString& name, const QString& formula)
{
    auto table = std::make_shared<QSciSimpleTableModel>(1000, 100);
    BenchJob job;
    job.name = name;
    job.prepare = [table]() { table->setAllCells(QVector<QString>(1000 * 100)); };
    job.run = [table, formula]() {
        const TableFormulaRun::Outcome outcome = TableFormulaRun().apply(*table, formula);
        if (outcome.visited != 100000)
            qFatal("table formula: not every cell was visited");
    };
    return job;
}

QList<BenchJob> tableJobs(BenchContext&)
{
    return { formulaJob(
                 QStringLiteral("table_formula_1000x100"), QStringLiteral("sin($row)*cos($col)+cell($row-2,$col-1)")),
        formulaJob(QStringLiteral("table_formula_text_1000x100"), QStringLiteral("1$row+$col")) };
}

const BenchRegistration registration(60, tableJobs);

} // namespace
