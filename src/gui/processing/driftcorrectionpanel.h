#pragma once

#include "effectpanel.h"

#include "core/processing/qscidriftcorrection.h"

class QSpinBox;

/** Drift correction: how far a row may move against the row below it. */
class DriftCorrectionPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit DriftCorrectionPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    void readSettings() override;

private:
    QSciDriftCorrection m_effect;
    QSpinBox* m_shift;
};
