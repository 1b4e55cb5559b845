#pragma once

#include <QPair>
#include <QScriptValue>
#include <QString>
#include <QVector>

class QScriptEngine;
class QSciSimpleTableModel;

/** The z values that `z(x, y)` reads in a formula over an image: row-major, value (x, y) at y * width + x. */
struct FormulaImage {
    int width = 0;
    int height = 0;
    const double* values = nullptr;
};

/**
 * One formula, prepared once and evaluated for many cells or pixels. Blanks and tabs are dropped and every
 * "^" becomes a quoted string, so that a power written with "^" fails instead of computing an xor. Variables
 * are replaced textually, in list order, before each evaluation.
 *
 * Re-parsing the text for every cell is slow, so when the formula is a plain expression whose variables stand
 * alone, it is compiled once into a function of the variables and called per cell; anything where textual
 * replacement could mean something else (quotes, comments, a variable glued to a name or a number) is
 * evaluated as text, exactly as written.
 */
class FormulaEvaluator final {
public:
    using Variables = QVector<QPair<QString, QString>>;

    /** @p table is what `cell` reads and @p image what `z` reads; either may be absent. */
    explicit FormulaEvaluator(
        const QString& formula, const QSciSimpleTableModel* table = nullptr, const FormulaImage* image = nullptr);
    ~FormulaEvaluator();
    FormulaEvaluator(const FormulaEvaluator&) = delete;
    FormulaEvaluator& operator=(const FormulaEvaluator&) = delete;

    /**
     * The result as text; @p ok is true only for a number that is not NaN. Infinity counts as a number.
     * The variable names must be known before the first call: the compiled form is built for them.
     */
    QString evaluate(const Variables& variables, bool* ok);

    const QString& preparedFormula() const { return m_prepared; }
    /** Whether evaluate() runs the compiled function (exposed for tests; the results must not differ). */
    bool isCompiled() const { return m_compiled; }
    /** Turns the compiled path off, so that tests can compare both. */
    void setCompilationEnabled(bool enabled);

    /** The variables of a table cell: "$row", "$col" and "$column", counted from 1. */
    static Variables cellVariables(int row, int column);
    /** The functions a formula knows, as the formula page lists them. */
    static QStringList functionHelp();

    static QString prepare(const QString& formula);

private:
    void registerFunctions();
    void compileFor(const Variables& variables);
    QString evaluateText(const Variables& variables, bool* ok);
    static QString resultText(const QScriptValue& value, bool* ok);

    const QSciSimpleTableModel* m_table;
    FormulaImage m_image;
    bool m_hasImage;
    QScriptEngine* m_engine;
    QString m_prepared;

    bool m_compileTried = false;
    bool m_compiled = false;
    bool m_compilationEnabled = true;
    QStringList m_compiledNames;
    QScriptValue m_function;
    QScriptValueList m_arguments;

    friend struct FormulaFunctions;
};
