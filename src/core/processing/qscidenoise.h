#pragma once

#include "qscieffect.h"

/**
 * Removes spikes with the median over a disc of radius r (the upper median for an even count). Neighbours
 * outside the image are left out. Every pass reads the matrix as it was before the first, so further passes
 * give the same result as one.
 */
class QSciDenoise final : public QSciEffect {
public:
    struct Options {
        double radius = 1;
        int loops = 1;
        bool selectionOnly = false;
    };

    QSciDenoise() = default;
    explicit QSciDenoise(const Options& options)
        : m_options(options)
    {
    }

    const Options& options() const { return m_options; }
    void setOptions(const Options& options) { m_options = options; }

    QString name() const override;
    std::unique_ptr<QSciEffect> clone() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return m_options.selectionOnly; }
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

private:
    Options m_options;
};
