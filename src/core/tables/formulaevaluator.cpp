#include "formulaevaluator.h"

#include "qscisimpletablemodel.h"

#include <QRegularExpression>
#include <QScriptEngine>

#include <cmath>

namespace {

const char* const PiText = "3.1415926535897932384626433832795028841971693993751058209749445923078164062862089986280"
                           "348253421170679";

const QString ArgumentPrefix = QStringLiteral("__velmoraArg");

QScriptValue failed()
{
    return QScriptValue(QStringLiteral("NaN"));
}

/** Every function of a formula takes exactly @p count numbers. */
bool numbers(QScriptContext* context, int count, double* values)
{
    if (context->argumentCount() != count)
        return false;
    for (int i = 0; i < count; ++i) {
        const QScriptValue argument = context->argument(i);
        if (!argument.isNumber())
            return false;
        values[i] = argument.toNumber();
    }
    return true;
}

template <double (*F)(double)> QScriptValue unary(QScriptContext* context, QScriptEngine*, void*)
{
    double x;
    return numbers(context, 1, &x) ? QScriptValue(F(x)) : failed();
}

double square(double x)
{
    return x * x;
}

double sinD(double x)
{
    return std::sin(x);
}
double cosD(double x)
{
    return std::cos(x);
}
double tanD(double x)
{
    return std::tan(x);
}
double asinD(double x)
{
    return std::asin(x);
}
double acosD(double x)
{
    return std::acos(x);
}
double atanD(double x)
{
    return std::atan(x);
}
double sinhD(double x)
{
    return std::sinh(x);
}
double coshD(double x)
{
    return std::cosh(x);
}
double tanhD(double x)
{
    return std::tanh(x);
}
double expD(double x)
{
    return std::exp(x);
}
double log10D(double x)
{
    return std::log10(x);
}
double lnD(double x)
{
    return std::log(x);
}
double sqrtD(double x)
{
    return std::sqrt(x);
}
double absD(double x)
{
    return std::fabs(x);
}
double ceilD(double x)
{
    return std::ceil(x);
}
double floorD(double x)
{
    return std::floor(x);
}

QScriptValue power(QScriptContext* context, QScriptEngine*, void*)
{
    double v[2];
    return numbers(context, 2, v) ? QScriptValue(std::pow(v[0], v[1])) : failed();
}

QScriptValue pi(QScriptContext* context, QScriptEngine*, void*)
{
    return numbers(context, 0, nullptr) ? QScriptValue(QString::fromLatin1(PiText).toDouble()) : failed();
}

bool identifierChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('$') || c == QLatin1Char('.')
        || c == QLatin1Char('\\');
}

/** A value that reads the same as a number literal and as a number argument. */
bool plainNumber(const QString& value)
{
    // Digits, optionally one point with digits after it, and no leading zero that could read as octal.
    const qsizetype n = value.size();
    if (n == 0 || (n > 1 && value.at(0) == QLatin1Char('0') && value.at(1) != QLatin1Char('.')))
        return false;
    bool point = false;
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char('.')) {
            if (point || i == 0 || i == n - 1)
                return false;
            point = true;
        } else if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return false;
        }
    }
    return true;
}

QChar marker(int i)
{
    return QChar(0xE000 + i);
}

} // namespace

struct FormulaFunctions {
    static QScriptValue cell(QScriptContext* context, QScriptEngine*, void* data)
    {
        const auto* self = static_cast<const FormulaEvaluator*>(data);
        double v[2];
        if (!self->m_table || !numbers(context, 2, v))
            return failed();
        const QSciSimpleTableModel& table = *self->m_table;
        if (!(v[0] >= 0 && v[1] >= 0 && v[0] < table.rows() && v[1] < table.columns()))
            return failed();
        return QScriptValue(table.cellValue(int(v[0]), int(v[1])));
    }

    static QScriptValue z(QScriptContext* context, QScriptEngine*, void* data)
    {
        const auto* self = static_cast<const FormulaEvaluator*>(data);
        double v[2];
        if (!self->m_hasImage || !numbers(context, 2, v))
            return failed();
        const FormulaImage& image = self->m_image;
        // Truncation toward zero lets -0.5 through as column 0.
        const double x = std::trunc(v[0]), y = std::trunc(v[1]);
        if (!(x >= 0 && y >= 0 && x < image.width && y < image.height))
            return failed();
        return QScriptValue(image.values[qsizetype(y) * image.width + qsizetype(x)]);
    }
};

FormulaEvaluator::FormulaEvaluator(const QString& formula, const QSciSimpleTableModel* table, const FormulaImage* image)
    : m_table(table)
    , m_image(image ? *image : FormulaImage())
    , m_hasImage(image && image->values && image->width > 0 && image->height > 0)
    , m_engine(new QScriptEngine)
    , m_prepared(prepare(formula))
{
    registerFunctions();
}

FormulaEvaluator::~FormulaEvaluator()
{
    m_function = QScriptValue();
    m_arguments.clear();
    delete m_engine;
}

QString FormulaEvaluator::prepare(const QString& formula)
{
    QString text = formula;
    text.remove(QLatin1Char(' '));
    text.remove(QLatin1Char('\t'));
    text.replace(QLatin1Char('^'), QLatin1String("'^'"));
    return text;
}

void FormulaEvaluator::registerFunctions()
{
    struct Entry {
        const char* name;
        QScriptEngine::FunctionWithArgSignature function;
        int arguments;
    };
    const Entry entries[] = { { "z", FormulaFunctions::z, 2 }, { "cell", FormulaFunctions::cell, 2 },
        { "sin", unary<sinD>, 1 }, { "cos", unary<cosD>, 1 }, { "tan", unary<tanD>, 1 }, { "arcsin", unary<asinD>, 1 },
        { "arccos", unary<acosD>, 1 }, { "arctan", unary<atanD>, 1 }, { "sinh", unary<sinhD>, 1 },
        { "cosh", unary<coshD>, 1 }, { "tanh", unary<tanhD>, 1 }, { "power", power, 2 }, { "exp", unary<expD>, 1 },
        { "log10", unary<log10D>, 1 }, { "ln", unary<lnD>, 1 }, { "sqrt", unary<sqrtD>, 1 },
        { "square", unary<square>, 1 }, { "abs", unary<absD>, 1 }, { "ceil", unary<ceilD>, 1 },
        { "floor", unary<floorD>, 1 }, { "pi", pi, 0 } };
    QScriptValue global = m_engine->globalObject();
    for (const Entry& entry : entries) {
        QScriptValue function = m_engine->newFunction(entry.function, this);
        function.setProperty(QStringLiteral("length"), entry.arguments);
        global.setProperty(QLatin1String(entry.name), function);
    }
}

void FormulaEvaluator::setCompilationEnabled(bool enabled)
{
    m_compilationEnabled = enabled;
    m_compileTried = false;
    m_compiled = false;
}

void FormulaEvaluator::compileFor(const Variables& variables)
{
    m_compileTried = true;
    m_compiled = false;
    if (!m_compilationEnabled || variables.size() > 0x100)
        return;
    static const QRegularExpression unsafe(QStringLiteral("['\"`{};\\\\]|//|/\\*"));
    static const QRegularExpression plainName(QStringLiteral("^[$A-Za-z_]+$"));
    if (m_prepared.contains(unsafe) || m_prepared.contains(ArgumentPrefix))
        return;
    QStringList names;
    QString marked = m_prepared;
    for (int i = 0; i < variables.size(); ++i) {
        // Values are digits and points, so a later name can never be completed by an earlier value.
        if (!variables.at(i).first.contains(plainName))
            return;
        names.append(variables.at(i).first);
        marked.replace(variables.at(i).first, QString(marker(i)));
    }
    QString body, sample;
    for (int i = 0; i < marked.size(); ++i) {
        const QChar c = marked.at(i);
        const int variable = c.unicode() - 0xE000;
        if (variable < 0 || variable >= variables.size()) {
            body.append(c);
            sample.append(c);
            continue;
        }
        // A variable next to a name, a number, an increment or an assignment would read differently as an argument.
        const QStringView before = QStringView(marked).left(i).right(2);
        const QStringView after = QStringView(marked).mid(i + 1, 2);
        auto isMarker = [&](QChar m) { return m.unicode() >= 0xE000 && m.unicode() < 0xE000 + variables.size(); };
        if ((!before.isEmpty() && (identifierChar(before.back()) || isMarker(before.back())))
            || before == QLatin1String("++") || before == QLatin1String("--")
            || (!after.isEmpty() && (identifierChar(after.front()) || isMarker(after.front())))
            || after.startsWith(QLatin1String("++")) || after.startsWith(QLatin1String("--"))
            || (after.startsWith(QLatin1Char('=')) && after != QLatin1String("==")))
            return;
        body.append(ArgumentPrefix + QString::number(variable));
        sample.append(QLatin1Char('1'));
    }
    QStringList parameters;
    for (int i = 0; i < variables.size(); ++i)
        parameters.append(ArgumentPrefix + QString::number(i));
    const QString source = QStringLiteral("(function(") + parameters.join(QLatin1Char(','))
        + QStringLiteral("){return(") + body + QStringLiteral("\n);})");
    if (QScriptEngine::checkSyntax(sample).state() != QScriptSyntaxCheckResult::Valid
        || QScriptEngine::checkSyntax(source).state() != QScriptSyntaxCheckResult::Valid)
        return;
    QScriptValue function = m_engine->evaluate(source);
    if (m_engine->hasUncaughtException() || !function.isFunction()) {
        m_engine->clearExceptions();
        return;
    }
    m_function = function;
    m_compiledNames = names;
    m_compiled = true;
}

QString FormulaEvaluator::evaluate(const Variables& variables, bool* ok)
{
    if (!m_compileTried)
        compileFor(variables);
    bool callable = m_compiled && variables.size() == m_compiledNames.size();
    for (int i = 0; callable && i < variables.size(); ++i)
        callable = variables.at(i).first == m_compiledNames.at(i) && plainNumber(variables.at(i).second);
    if (!callable)
        return evaluateText(variables, ok);
    m_arguments.clear();
    for (const auto& variable : variables)
        m_arguments.append(QScriptValue(variable.second.toDouble()));
    const QScriptValue value = m_function.call(m_engine->globalObject(), m_arguments);
    bool good = false;
    const QString text = resultText(value, &good);
    if (m_engine->hasUncaughtException())
        m_engine->clearExceptions();
    // Error messages quote the expression; the user must see it as written, not with argument names.
    if (!good)
        return evaluateText(variables, ok);
    if (ok)
        *ok = true;
    return text;
}

QString FormulaEvaluator::evaluateText(const Variables& variables, bool* ok)
{
    QString text = m_prepared;
    for (const auto& variable : variables)
        text.replace(variable.first, variable.second);
    const QScriptValue value = m_engine->evaluate(text, QString(), 1);
    const QString result = resultText(value, ok);
    if (m_engine->hasUncaughtException())
        m_engine->clearExceptions();
    return result;
}

QString FormulaEvaluator::resultText(const QScriptValue& value, bool* ok)
{
    const QString text = value.toString();
    if (ok)
        *ok = value.isNumber() && text.toLower() != QLatin1String("nan");
    return text;
}

FormulaEvaluator::Variables FormulaEvaluator::cellVariables(int row, int column)
{
    const QString r = QString::number(row + 1), c = QString::number(column + 1);
    return { { QStringLiteral("$row"), r }, { QStringLiteral("$col"), c }, { QStringLiteral("$column"), c } };
}

QStringList FormulaEvaluator::functionHelp()
{
    return { QStringLiteral("pi()"), QStringLiteral("floor(value)"), QStringLiteral("ceil(value)"),
        QStringLiteral("abs(value)"), QStringLiteral("square(value)"), QStringLiteral("sqrt(value)"),
        QStringLiteral("log10(value)"), QStringLiteral("ln(value)"), QStringLiteral("exp(value)"),
        QStringLiteral("power(base, exp)"), QStringLiteral("arctan(x_radiant)"), QStringLiteral("arccos(x_radiant)"),
        QStringLiteral("arcsin(x_radiant)"), QStringLiteral("tanh(x_radiant)"), QStringLiteral("cosh(x_radiant)"),
        QStringLiteral("sinh(x_radiant)"), QStringLiteral("tan(x_radiant)"), QStringLiteral("cos(x_radiant)"),
        QStringLiteral("sin(x_radiant)"), QStringLiteral("cell($row,$col)"), QStringLiteral("$col"),
        QStringLiteral("$row") };
}
