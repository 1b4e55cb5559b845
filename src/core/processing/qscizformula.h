#pragma once

#include "qscieffect.h"

/** The options of QSciZFormula. */
struct ZFormulaOptions {
    QString formula = QStringLiteral("$z");
    bool clip = false;
    double clipLow = 0;
    double clipHigh = 1;
    bool invert = false;
    bool selectionOnly = false;
};

/**
 * Z-matrix manipulation: a formula over the point's own value `$z`, its column `$x` and its row `$y` (counted
 * from the top, as the item is shown), which may also read any point through `z(x, y)`; then, if asked, the
 * values clipped to a range and the matrix turned upside down (z becomes max + min - z). A point where the formula
 * gives no number keeps its value.
 */
class QSciZFormula final : public QSciEffectOf<QSciZFormula, ZFormulaOptions> {
public:
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return m_options.selectionOnly; }
    bool check(int width, int height, bool anySelected, QString* message) const override;
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;
};
