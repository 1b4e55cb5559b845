#pragma once

#include "effectpanel.h"

#include "core/processing/qscirowalignment.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

/** Scan-line corrections: row alignment by one of its methods, or scar removal with its threshold. */
class LineCorrectionPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit LineCorrectionPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    QString title() override;
    void readSettings() override;

private:
    void showOptions(const QSciRowAlignment::Options& o);
    void collect();

    QSciRowAlignment m_effect;
    bool m_showing = false;
    QComboBox* m_method;
    QCheckBox* m_masked;
    QDoubleSpinBox* m_threshold;
    QSpinBox* m_length;
};
