#pragma once

#include "effectpanel.h"

#include "core/processing/qscidenoise.h"

class QDoubleSpinBox;
class QRadioButton;
class QSpinBox;

/** The options of denoise: the disc's radius, the number of loops and the region. */
class DenoisePanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit DenoisePanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    void readSettings() override;

private:
    void showOptions(const QSciDenoise::Options& o);
    void collect();

    QSciDenoise m_effect;
    bool m_showing = false;
    QDoubleSpinBox* m_radius;
    QSpinBox* m_loops;
    QRadioButton* m_entire;
    QRadioButton* m_selection;
};
