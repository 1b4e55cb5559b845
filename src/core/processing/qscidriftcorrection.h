#pragma once

#include "qscieffect.h"

/** The options of QSciDriftCorrection. */
struct DriftCorrectionOptions {
    int maximumShift = 10; ///< points either way, between two neighbouring rows
};

/**
 * Drift along the rows: each row is shifted by the offset at which it correlates best with the row below it,
 * accumulated from the first row, with a parabola through the correlation peak for the fraction of a point.
 */
class QSciDriftCorrection final : public QSciEffectOf<QSciDriftCorrection, DriftCorrectionOptions> {
public:
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return false; }
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

    /** The shift of @p row against @p below (row(x + s) matches below(x)), in points. */
    static double rowShift(const double* below, const double* row, int length, int maximumShift);
};
