#pragma once

#include "effectpanel.h"

#include "core/processing/qscizformula.h"

class QCheckBox;
class QDoubleSpinBox;
class QLineEdit;
class QRadioButton;

/** Z-matrix manipulation: the formula, clipping to a range, inversion and the region. */
class ZFormulaPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit ZFormulaPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    void readSettings() override;

private:
    void showOptions(const QSciZFormula::Options& o);
    void collect();

    QSciZFormula m_effect;
    bool m_showing = false;
    QLineEdit* m_formula;
    QCheckBox* m_clip;
    QDoubleSpinBox* m_low;
    QDoubleSpinBox* m_high;
    QCheckBox* m_invert;
    QRadioButton* m_whole;
    QRadioButton* m_selected;
};
