#include "core/tables/formulaevaluator.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tableformularun.h"

#include <QtTest>

#include <cmath>

namespace {

QString eval(const QString& formula, int row = 0, int column = 0, bool* ok = nullptr,
    const QSciSimpleTableModel* table = nullptr, bool compiled = true)
{
    FormulaEvaluator evaluator(formula, table);
    evaluator.setCompilationEnabled(compiled);
    bool good = false;
    const QString result = evaluator.evaluate(FormulaEvaluator::cellVariables(row, column), &good);
    if (ok)
        *ok = good;
    return result;
}

} // namespace

class TestTableFormula : public QObject {
    Q_OBJECT

private slots:
    void preparationAndVariables_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("result");
        QTest::newRow("row counts from 1") << "$row" << 0 << 0 << true << "1";
        QTest::newRow("col and column") << "$row*100+$col*10+$column" << 2 << 4 << false << "";
        QTest::newRow("col") << "$row*100+$col" << 2 << 4 << true << "305";
        QTest::newRow("caret is an error") << "2^3" << 0 << 0 << false << "";
        QTest::newRow("rows is not a variable") << "sin($row)+$rows" << 0 << 0 << false << "";
        QTest::newRow("blanks and tabs") << "s i n(\t$row )" << 0 << 0 << true
                                         << QString::number(std::sin(1.0), 'g', 17);
        QTest::newRow("variables glued to digits") << "1$row" << 4 << 0 << true << "15";
        QTest::newRow("case-sensitive") << "$ROW" << 0 << 0 << false << "";
        QTest::newRow("NaN fails") << "0/0" << 0 << 0 << false << "NaN";
        QTest::newRow("NaN text fails") << "sqrt(-1)" << 0 << 0 << false << "NaN";
        QTest::newRow("infinity is a number") << "1/0" << 0 << 0 << true << "Infinity";
        QTest::newRow("a string fails") << "'12'" << 0 << 0 << false << "12";
        QTest::newRow("syntax error fails") << "1+" << 0 << 0 << false << "";
        QTest::newRow("empty fails") << "" << 0 << 0 << false << "undefined";
        QTest::newRow("parens cannot escape") << "1)+(2" << 0 << 0 << false << "";
        QTest::newRow("error quotes the text") << "cell($row)($col)" << 0 << 0 << false << "";
        QTest::newRow("comma expression") << "$row,$col" << 0 << 6 << true << "7";
    }

    void preparationAndVariables()
    {
        QFETCH(QString, formula);
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(bool, ok);
        QFETCH(QString, result);
        // Both the compiled function and plain text evaluation must agree on every case.
        for (bool compiled : { true, false }) {
            bool good = !ok;
            const QString text = eval(formula, row, column, &good, nullptr, compiled);
            QCOMPARE(good, ok);
            QVERIFY2(!text.contains(QLatin1String("__")), qPrintable(text));
            if (!result.isEmpty())
                QCOMPARE(text, result);
        }
    }

    void preparedTextAndCompilation()
    {
        QCOMPARE(FormulaEvaluator::prepare(QStringLiteral(" 2 ^\t3 ")), QStringLiteral("2'^'3"));
        FormulaEvaluator plain(QStringLiteral("cell($row-1,$col-1)*2"));
        bool ok = false;
        plain.evaluate(FormulaEvaluator::cellVariables(0, 0), &ok);
        QVERIFY(plain.isCompiled());
        FormulaEvaluator glued(QStringLiteral("1$row"));
        glued.evaluate(FormulaEvaluator::cellVariables(0, 0), &ok);
        QVERIFY(!glued.isCompiled());
    }

    void everyFunction_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<double>("expected");
        const double x = 0.3;
        QTest::newRow("sin") << "sin(0.3)" << std::sin(x);
        QTest::newRow("cos") << "cos(0.3)" << std::cos(x);
        QTest::newRow("tan") << "tan(0.3)" << std::tan(x);
        QTest::newRow("arcsin") << "arcsin(0.3)" << std::asin(x);
        QTest::newRow("arccos") << "arccos(0.3)" << std::acos(x);
        QTest::newRow("arctan") << "arctan(0.3)" << std::atan(x);
        QTest::newRow("sinh") << "sinh(0.3)" << std::sinh(x);
        QTest::newRow("cosh") << "cosh(0.3)" << std::cosh(x);
        QTest::newRow("tanh") << "tanh(0.3)" << std::tanh(x);
        QTest::newRow("power") << "power(2,10)" << 1024.0;
        QTest::newRow("exp") << "exp(0.3)" << std::exp(x);
        QTest::newRow("log10") << "log10(1000)" << 3.0;
        QTest::newRow("ln") << "ln(0.3)" << std::log(x);
        QTest::newRow("sqrt") << "sqrt(2)" << std::sqrt(2.0);
        QTest::newRow("square") << "square(-3)" << 9.0;
        QTest::newRow("abs") << "abs(-2.5)" << 2.5;
        QTest::newRow("ceil") << "ceil(-2.5)" << -2.0;
        QTest::newRow("floor") << "floor(-2.5)" << -3.0;
        QTest::newRow("pi") << "pi()" << 3.14159265358979323846;
    }

    void everyFunction()
    {
        QFETCH(QString, formula);
        QFETCH(double, expected);
        bool ok = false;
        const QString text = eval(formula, 0, 0, &ok);
        QVERIFY2(ok, qPrintable(text));
        QCOMPARE(text.toDouble(), expected);
    }

    void functionsRefuseWrongArguments()
    {
        for (const char* formula :
            { "sin()", "sin(1,2)", "sin('1')", "power(2)", "pi(1)", "cell(0)", "z(0,0)", "abs(true)", "sqrt(sin())" }) {
            bool ok = true;
            const QString text = eval(QLatin1String(formula), 0, 0, &ok);
            QVERIFY2(!ok, formula);
            QVERIFY2(text.startsWith(QLatin1String("NaN")), qPrintable(text));
        }
    }

    void cellReadsTheTable()
    {
        QSciSimpleTableModel table(3, 2);
        table.setCellText(0, 0, QStringLiteral("7.5"));
        table.setCellText(2, 1, QStringLiteral("-1"));
        table.setCellText(1, 1, QStringLiteral("Infinity"));
        bool ok = false;
        QCOMPARE(eval(QStringLiteral("cell(0,0)"), 0, 0, &ok, &table), QStringLiteral("7.5"));
        QCOMPARE(eval(QStringLiteral("cell($row-1,$col-1)"), 2, 1, &ok, &table), QStringLiteral("-1"));
        QCOMPARE(eval(QStringLiteral("cell(1,1)"), 0, 0, &ok, &table), QStringLiteral("Infinity"));
        QCOMPARE(eval(QStringLiteral("cell(1.9,0.2)"), 0, 0, &ok, &table), QStringLiteral("0")); // empty reads as 0
        for (const char* outside : { "cell(-1,0)", "cell(0,-0.5)", "cell(3,0)", "cell(0,2)", "cell(0/0,0)" }) {
            eval(QLatin1String(outside), 0, 0, &ok, &table);
            QVERIFY2(!ok, outside);
        }
    }

    void zReadsTheImage()
    {
        const double values[] = { 1, 2, 3, 4, 5, 6 };
        const FormulaImage image { 3, 2, values };
        FormulaEvaluator evaluator(QStringLiteral("z(2.9,1)+z(-0.5,0)"), nullptr, &image);
        bool ok = false;
        QCOMPARE(evaluator.evaluate({}, &ok), QStringLiteral("7"));
        FormulaEvaluator outside(QStringLiteral("z(3,0)"), nullptr, &image);
        outside.evaluate({}, &ok);
        QVERIFY(!ok);
    }

    void runWritesAtOnceSoRecurrencesWork()
    {
        QSciSimpleTableModel table(5, 2);
        table.setCellText(0, 0, QStringLiteral("1"));
        TableFormulaRun run;
        // Row 0 reads cell(-1, ...) and fails, so it keeps its seed; every later row doubles the one above.
        const auto outcome = run.apply(table, QStringLiteral("cell($row-2,$col-1)*2"));
        QCOMPARE(outcome.visited, qint64(10));
        QCOMPARE(outcome.failures.size(), 2);
        QCOMPARE(outcome.failures.at(0).row, 0);
        QCOMPARE(outcome.failures.at(0).result, QStringLiteral("NaN"));
        QCOMPARE(table.cellText(0, 0), QStringLiteral("1"));
        QCOMPARE(table.cellText(4, 0), QStringLiteral("16"));
        QCOMPARE(table.cellText(4, 1), QStringLiteral("0"));
    }

    void runVisitsOnlySelectedAndHonoursDecisions()
    {
        QSciSimpleTableModel table(3, 3);
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                table.setCellText(r, c, QStringLiteral("x"));
        const QSet<QPair<int, int>> selection { { 0, 1 }, { 2, 2 } };
        TableFormulaRun run;
        const auto outcome = run.apply(table, QStringLiteral("$row*10+$col"), &selection);
        QCOMPARE(outcome.visited, qint64(9));
        QCOMPARE(outcome.written, qint64(2));
        QCOMPARE(table.cellText(0, 1), QStringLiteral("12"));
        QCOMPARE(table.cellText(2, 2), QStringLiteral("33"));
        QCOMPARE(table.cellText(1, 1), QStringLiteral("x"));

        int asked = 0;
        run.onFailure = [&](const TableFormulaRun::Failure&) {
            return ++asked == 2 ? TableFormulaRun::Decision::Stop : TableFormulaRun::Decision::Skip;
        };
        const auto stopped = run.apply(table, QStringLiteral("nothing"));
        QVERIFY(stopped.stopped);
        QCOMPARE(stopped.visited, qint64(2));
        asked = 0;
        run.onFailure = [&](const TableFormulaRun::Failure&) {
            ++asked;
            return TableFormulaRun::Decision::SkipAll;
        };
        const auto all = run.apply(table, QStringLiteral("nothing"));
        QCOMPARE(asked, 1);
        QCOMPARE(all.failures.size(), 9);
        run.onFailure = nullptr;
        run.checkpoint = [](qint64 visited) { return visited < 20; };
        QSciSimpleTableModel big(10, 10);
        QCOMPARE(run.apply(big, QStringLiteral("1")).visited, qint64(20));
    }
};

QTEST_GUILESS_MAIN(TestTableFormula)
#include "tst_tableformula.moc"
