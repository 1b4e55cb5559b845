#pragma once

#include "qscieffect.h"

/** The options of QSciRowAlignment. */
struct RowAlignmentOptions {
    enum class Method { Median, Mean, MedianDifference, Linear, Scars };

    Method method = Method::Median;
    bool masked = false;
    double scarThreshold = 3; ///< a scar jumps by more than this many typical row-to-row differences
    int scarMinimumLength = 4; ///< points in a row
};

/**
 * Corrections of scan lines (the rows): per-row offsets by the median or mean of the row, by the median of the
 * differences to the row below, or a per-row line; and the repair of single-row scars, rows that jump against
 * both neighbours. With the mask, offsets come from the selected points of each row.
 */
class QSciRowAlignment final : public QSciEffectOf<QSciRowAlignment, RowAlignmentOptions> {
public:
    using Method = RowAlignmentOptions::Method;
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return false; }
    bool check(int width, int height, bool anySelected, QString* message) const override;
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

    static QString methodName(Method method);

private:
    bool removeScars(const EffectInput& input, double* out) const;
};
