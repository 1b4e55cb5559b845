#pragma once

#include "qscieffect.h"

/** The options of QSciDenoise. */
struct DenoiseOptions {
    double radius = 1;
    int loops = 1;
    bool selectionOnly = false;
};

/**
 * Removes spikes with the median over a disc of radius r (the upper median for an even count). Neighbours
 * outside the image are left out. Every pass reads the matrix as it was before the first, so further passes
 * give the same result as one.
 */
class QSciDenoise final : public QSciEffectOf<QSciDenoise, DenoiseOptions> {
public:
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return m_options.selectionOnly; }
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;
};
