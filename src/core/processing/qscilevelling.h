#pragma once

#include "qscieffect.h"

#include <QPoint>

/** The options of QSciLevelling. */
struct LevellingOptions {
    enum class Method { Plane, Polynomial, ThreePoints, Facet, ZeroMinimum };

    Method method = Method::Plane;
    int order = 2; ///< of the polynomial, 1 to 4
    bool masked = false; ///< fit to the selected points only
    QPoint points[3] = { QPoint(0, 0), QPoint(1, 0), QPoint(0, 1) }; ///< x column, y row from the bottom
};

/**
 * The levelling of a whole z-matrix against a background: a least-squares plane or polynomial, a plane through
 * three points, the dominant facet, or just the minimum. The background is fitted to every point or to the
 * selected points only, and taken away from every point.
 */
class QSciLevelling final : public QSciEffectOf<QSciLevelling, LevellingOptions> {
public:
    using Method = LevellingOptions::Method;
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
    bool facet(const EffectInput& input, double* out, ProgressSink* progress) const;
};
