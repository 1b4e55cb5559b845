#include "qscizformula.h"

#include "core/base/progresssink.h"
#include "core/settings/options.h"
#include "core/tables/formulaevaluator.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("QSciZFormula", text);
}

bool isIdentity(const QString& formula)
{
    return FormulaEvaluator::prepare(formula) == QLatin1String("$z");
}

} // namespace

QString QSciZFormula::name() const
{
    return tr("Z-Matrix manipulation");
}

void QSciZFormula::readSettings()
{
    m_options.formula = ::Options::getString(QStringLiteral("ZMatrixManipulation.formula"), m_options.formula);
    m_options.clip = ::Options::getBool(QStringLiteral("ZMatrixManipulation.clip"), false);
    m_options.clipLow = ::Options::getDouble(QStringLiteral("ZMatrixManipulation.clipLow"), 0);
    m_options.clipHigh = ::Options::getDouble(QStringLiteral("ZMatrixManipulation.clipHigh"), 1);
    m_options.invert = ::Options::getBool(QStringLiteral("ZMatrixManipulation.invert"), false);
}

void QSciZFormula::writeSettings() const
{
    ::Options::setString(QStringLiteral("ZMatrixManipulation.formula"), m_options.formula);
    ::Options::setBool(QStringLiteral("ZMatrixManipulation.clip"), m_options.clip);
    ::Options::setDouble(QStringLiteral("ZMatrixManipulation.clipLow"), m_options.clipLow);
    ::Options::setDouble(QStringLiteral("ZMatrixManipulation.clipHigh"), m_options.clipHigh);
    ::Options::setBool(QStringLiteral("ZMatrixManipulation.invert"), m_options.invert);
}

bool QSciZFormula::check(int width, int height, bool anySelected, QString* message) const
{
    const auto fail = [message](const QString& text) {
        if (message)
            *message = text;
        return false;
    };
    if (m_options.clip && !(m_options.clipLow <= m_options.clipHigh))
        return fail(tr("The lower clipping value must not lie above the upper one."));
    if (!isIdentity(m_options.formula)) {
        // A formula that cannot even be evaluated in the middle of a flat 3 x 3 piece is written wrongly; one
        // that gives no number there (a neighbour further away, a root of a negative value) may still work.
        const double ones[9] = { 1, 1, 1, 1, 1, 1, 1, 1, 1 };
        const FormulaImage image { 3, 3, ones };
        FormulaEvaluator evaluator(m_options.formula, nullptr, &image);
        bool ok = false;
        const QString result = evaluator.evaluate(
            { { QStringLiteral("$z"), QStringLiteral("1") }, { QStringLiteral("$x"), QStringLiteral("1") },
                { QStringLiteral("$y"), QStringLiteral("1") } },
            &ok);
        if (!ok && result != QLatin1String("NaN"))
            return fail(tr("The formula gives no number: %1 = %2").arg(m_options.formula, result));
    }
    return QSciEffect::check(width, height, anySelected, message);
}

bool QSciZFormula::run(const EffectInput& input, double* out, ProgressSink* progress) const
{
    const int w = input.width, h = input.height;
    const QRect region = this->region(input);
    if (region.isEmpty())
        return true;
    const auto visited
        = [&](int x, int y) { return !m_options.selectionOnly || (input.mask && input.mask[size_t(x) * h + y]); };
    if (!isIdentity(m_options.formula)) {
        // z(x, y) reads the matrix as it is shown: rows from the top, one row after the other.
        std::vector<double> shown(size_t(w) * h);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y)
                shown[size_t(h - 1 - y) * w + x] = input.z[size_t(x) * h + y];
        const FormulaImage image { w, h, shown.data() };
        // One script engine, on this thread: the engine is not shared between threads.
        FormulaEvaluator evaluator(m_options.formula, nullptr, &image);
        if (progress)
            progress->begin(name(), region.width());
        for (int x = region.left(); x <= region.right(); ++x) {
            if (progress && (x - region.left()) % std::max(1, region.width() / 10) == 0) {
                progress->step(x - region.left());
                if (progress->isCancelled()) {
                    progress->end();
                    return false;
                }
            }
            for (int y = region.top(); y <= region.bottom(); ++y) {
                if (!visited(x, y))
                    continue;
                const size_t i = size_t(x) * h + y;
                bool ok = false;
                const QString result
                    = evaluator.evaluate({ { QStringLiteral("$z"), QString::number(input.z[i], 'g', 17) },
                                             { QStringLiteral("$x"), QString::number(x) },
                                             { QStringLiteral("$y"), QString::number(h - 1 - y) } },
                        &ok);
                // Infinity counts as a number to the evaluator; a height it is not.
                bool parsed = false;
                const double value = result.toDouble(&parsed);
                if (ok && parsed && std::isfinite(value))
                    out[i] = value;
            }
        }
        if (progress)
            progress->end();
    }
    if (m_options.clip)
        for (int x = region.left(); x <= region.right(); ++x)
            for (int y = region.top(); y <= region.bottom(); ++y)
                if (visited(x, y))
                    out[size_t(x) * h + y] = std::clamp(out[size_t(x) * h + y], m_options.clipLow, m_options.clipHigh);
    if (m_options.invert) {
        double low = HUGE_VAL, high = -HUGE_VAL;
        for (int x = region.left(); x <= region.right(); ++x)
            for (int y = region.top(); y <= region.bottom(); ++y)
                if (visited(x, y) && std::isfinite(out[size_t(x) * h + y])) {
                    low = std::min(low, out[size_t(x) * h + y]);
                    high = std::max(high, out[size_t(x) * h + y]);
                }
        for (int x = region.left(); x <= region.right(); ++x)
            for (int y = region.top(); y <= region.bottom(); ++y)
                if (visited(x, y))
                    out[size_t(x) * h + y] = high + low - out[size_t(x) * h + y];
    }
    return true;
}

QString QSciZFormula::logParameters() const
{
    const Options& o = m_options;
    QString text = QStringLiteral("formula=") + o.formula;
    if (o.clip)
        text += QStringLiteral(", clip=%1:%2").arg(o.clipLow).arg(o.clipHigh);
    if (o.invert)
        text += QStringLiteral(", invert");
    if (o.selectionOnly)
        text += QStringLiteral(", selection");
    return text;
}
