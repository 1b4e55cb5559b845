#pragma once

#include "effectpanel.h"

#include "core/processing/qscilevelling.h"

class QCheckBox;
class QComboBox;
class QSpinBox;

/** Levelling against a background: the method, the polynomial's order, the three points and the fit region. */
class PlaneCorrectionPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit PlaneCorrectionPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    QString title() override;
    void readSettings() override;
    /** In three-point mode each pick replaces the oldest of the three points. */
    void pickPoint(const QPoint& point) override;

private:
    void showOptions(const QSciLevelling::Options& o);
    void collect();

    QSciLevelling m_effect;
    bool m_showing = false;
    QComboBox* m_method;
    QSpinBox* m_order;
    QCheckBox* m_masked;
    QWidget* m_pointsBox;
    QSpinBox* m_points[6];
    int m_nextPoint = 0;
};
