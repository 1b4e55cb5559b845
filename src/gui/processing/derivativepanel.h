#pragma once

#include "effectpanel.h"

#include "core/processing/qsciderivative.h"

class QComboBox;
class QLabel;
class QRadioButton;
class QSpinBox;

/** The options of the derivative: mode, neighbours, order, origin factor, border rule, directions and region. */
class DerivativePanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit DerivativePanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    void readSettings() override;

private:
    void showOptions(const QSciDerivative::Options& o);
    void collect();
    void stepAngle(int step);

    QSciDerivative m_effect;
    bool m_showing = false;
    QRadioButton* m_gradient;
    QRadioButton* m_directional;
    QSpinBox* m_points;
    QSpinBox* m_order;
    QSpinBox* m_origin;
    QComboBox* m_border;
    QRadioButton* m_xy;
    QRadioButton* m_x;
    QRadioButton* m_y;
    QLabel* m_angle;
    QRadioButton* m_whole;
    QRadioButton* m_selected;
};
