#pragma once

#include "qscieffect.h"

/**
 * Drift along the rows: each row is shifted by the offset at which it correlates best with the row below it,
 * accumulated from the first row, with a parabola through the correlation peak for the fraction of a point.
 */
class QSciDriftCorrection final : public QSciEffect {
public:
    struct Options {
        int maximumShift = 10; ///< points either way, between two neighbouring rows
    };

    QSciDriftCorrection() = default;
    explicit QSciDriftCorrection(const Options& options)
        : m_options(options)
    {
    }

    const Options& options() const { return m_options; }
    void setOptions(const Options& options) { m_options = options; }

    QString name() const override;
    std::unique_ptr<QSciEffect> clone() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return false; }
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

    /** The shift of @p row against @p below (row(x + s) matches below(x)), in points. */
    static double rowShift(const double* below, const double* row, int length, int maximumShift);

private:
    Options m_options;
};
