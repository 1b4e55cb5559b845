#pragma once

#include "effectpanel.h"

#include "core/processing/qscifilter.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLineEdit;
class QRadioButton;

/** The filters of the Effects menu: the filter and the options it takes. */
class FilterPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit FilterPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    QString title() override;
    void readSettings() override;
    /** Makes @p kind the chosen filter. */
    void setKind(QSciFilter::Kind kind);

private:
    void showOptions(const QSciFilter::Options& o);
    void collect();

    QSciFilter m_effect;
    bool m_showing = false;
    QFormLayout* m_form;
    QComboBox* m_kind;
    QDoubleSpinBox* m_sigma;
    QDoubleSpinBox* m_amount;
    QLineEdit* m_kernel;
    QCheckBox* m_normalise;
    QComboBox* m_direction;
    QDoubleSpinBox* m_radius;
    QDoubleSpinBox* m_despike;
    QRadioButton* m_whole;
    QRadioButton* m_selected;
};
