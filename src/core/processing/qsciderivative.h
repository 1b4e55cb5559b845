#pragma once

#include "qscieffect.h"

#include <QVector>

/** The options of QSciDerivative. */
struct DerivativeOptions {
    enum class Mode { Gradient, Directional };
    enum class Border { Replicate, Wrap };

    Mode mode = Mode::Gradient;
    int points = 1; ///< n >= 1
    int order = 1; ///< passes
    int originFactor = 0; ///< f
    Border border = Border::Replicate;
    bool xDirection = true;
    bool yDirection = true;
    int angle = 0; ///< 0, 45, ..., 315 degrees; y points down the image
    bool selectionOnly = false;
};

/**
 * Replaces z by a discrete first derivative: the gradient magnitude from sums of n neighbours on each side,
 * or a directional derivative over the (2n+1)^2 - 1 neighbours weighted by a shading angle. Each of
 * `order` passes works on the previous pass's result and adds f times its input.
 */
class QSciDerivative final : public QSciEffectOf<QSciDerivative, DerivativeOptions> {
public:
    using Mode = DerivativeOptions::Mode;
    using Border = DerivativeOptions::Border;
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return m_options.selectionOnly; }
    bool check(int width, int height, bool anySelected, QString* message) const override;
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

    /** The shading angles in the order "Increase angle" steps through them. */
    static const QVector<int>& angles();
    /** The weight of the neighbour at (dx, dy), dy counted down the image, for @p angle. */
    static int weight(int angle, int dx, int dy);
    static QString tooManyPointsText();
};
