#include "cliargs.h"
#include "clicommand.h"
#include "cliprogress.h"

#include "core/base/atomicfile.h"
#include "core/base/messages.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tablefile.h"
#include "core/tables/tableformularun.h"
#include "core/tables/tabletext.h"

#include <QFile>
#include <QFileInfo>

namespace {

bool parsePositive(const QString& text, int* value)
{
    bool ok = false;
    *value = text.toInt(&ok);
    return ok && *value > 0;
}

/** "r,c;r,c;..." with cells counted from 0; false on anything else. */
bool parseSelection(const QString& text, QSet<QPair<int, int>>* cells)
{
    for (const QString& pair : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QStringList parts = pair.split(QLatin1Char(','));
        bool okRow = false, okColumn = false;
        const int row = parts.value(0).trimmed().toInt(&okRow);
        const int column = parts.value(1).trimmed().toInt(&okColumn);
        if (parts.size() != 2 || !okRow || !okColumn || row < 0 || column < 0)
            return false;
        cells->insert({ row, column });
    }
    return true;
}

int runFormula(CliContext& ctx, CliArgs& args)
{
    const QString rowsText = args.takeRequired(QStringLiteral("--rows"));
    const QString columnsText = args.takeRequired(QStringLiteral("--cols"));
    const QString formula = args.takeRequired(QStringLiteral("--formula"));
    const QString input = args.takeOption(QStringLiteral("--in"));
    bool selected = false;
    const QString selectionText = args.takeOption(QStringLiteral("--only-selected"), &selected);
    const QString output = args.takeOption(QStringLiteral("--out"));
    QString usage = args.usageError();
    int rows = 0, columns = 0;
    QSet<QPair<int, int>> selection;
    if (usage.isEmpty() && !args.positional().isEmpty())
        usage = QStringLiteral("formula takes no FILE: %1").arg(args.positional().first());
    if (usage.isEmpty() && (!parsePositive(rowsText, &rows) || !parsePositive(columnsText, &columns)))
        usage = QStringLiteral("--rows and --cols need positive numbers");
    if (usage.isEmpty() && selected && !parseSelection(selectionText, &selection))
        usage = QStringLiteral("--only-selected needs cells as \"row,col;row,col;...\"");
    if (!usage.isEmpty()) {
        ctx.err << usage << Qt::endl;
        return CliUsage;
    }
    if (qint64(rows) * columns > QSciSimpleTableModel::MaxCells)
        return ctx.fail(QStringLiteral("A table may hold at most %1 cells").arg(QSciSimpleTableModel::MaxCells));

    QSciSimpleTableModel table(rows, columns);
    if (!input.isEmpty()) {
        if (!QFileInfo::exists(input))
            return ctx.fail(Messages::fileDoesNotExist(input));
        QFile file(input);
        if (!file.open(QIODevice::ReadOnly))
            return ctx.fail(Messages::unableToOpenFile(input));
        const TableText::Parsed parsed = TableText::parse(QString::fromUtf8(file.readAll()));
        if (parsed.rows.size() > rows || parsed.columns > columns)
            return ctx.fail(QStringLiteral("%1 holds %2 rows and %3 columns, more than the table's %4 x %5")
                                .arg(input)
                                .arg(parsed.rows.size())
                                .arg(parsed.columns)
                                .arg(rows)
                                .arg(columns));
        QVector<QString> cells(qsizetype(rows) * columns);
        for (int r = 0; r < parsed.rows.size(); ++r)
            for (int c = 0; c < parsed.rows.at(r).size(); ++c)
                cells[qsizetype(r) * columns + c] = parsed.rows.at(r).at(c);
        table.setAllCells(cells);
    }

    CliProgress progress(ctx.progressOnTerminal);
    const qint64 total = qint64(rows) * columns;
    progress.begin(QStringLiteral("formula"), int(qMin<qint64>(total, INT_MAX)));
    TableFormulaRun run;
    run.checkpoint = [&](qint64 visited) {
        if (visited % 1000 == 0)
            progress.step(int(qMin<qint64>(visited, INT_MAX)));
        return true;
    };
    const TableFormulaRun::Outcome outcome = run.apply(table, formula, selected ? &selection : nullptr);
    progress.end();
    for (const TableFormulaRun::Failure& failure : outcome.failures)
        ctx.err << failure.row << ',' << failure.column << ": " << failure.result << '\n';
    ctx.err.flush();

    QString message;
    if (TableFile::isTableFileName(output)) {
        if (!TableFile::write(output, table, QFileInfo(output).fileName(), &message))
            return ctx.fail(message);
        return CliSuccess;
    }
    const QString csv = TableText::toCsv(table);
    if (output.isEmpty()) {
        ctx.out << csv;
        return CliSuccess;
    }
    if (!AtomicFile::write(output, csv.toUtf8(), &message))
        return ctx.fail(message);
    return CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("formula"),
    QStringLiteral("formula --rows R --cols C --formula F [--in CSV] [--only-selected \"r,c;r,c;...\"] [--out "
                   "CSV|TABLE.table.velm]"),
    QStringLiteral(
        "applies a table formula to every (or every selected) cell and writes the table as CSV or a table file"),
    runFormula, 60 } });

} // namespace
