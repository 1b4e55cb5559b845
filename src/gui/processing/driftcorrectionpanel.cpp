#include "driftcorrectionpanel.h"

#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

DriftCorrectionPanel::DriftCorrectionPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_shift(new QSpinBox(this))
{
    setObjectName(QStringLiteral("DriftCorrectionPanel"));
    m_shift->setObjectName(QStringLiteral("sbMaximumShift"));
    m_shift->setRange(1, 1000);
    m_shift->setSuffix(tr(" points"));
    auto* form = new QFormLayout;
    form->addRow(tr("Largest shift between rows"), m_shift);
    auto* note = new QLabel(tr("Each row moves to where it matches the row below it best."), this);
    note->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addStretch(1);
    connect(m_shift, QOverload<int>::of(&QSpinBox::valueChanged), this, [this](int value) {
        m_effect.setOptions({ value });
        emit changed();
    });
    m_shift->setValue(m_effect.options().maximumShift);
}

void DriftCorrectionPanel::readSettings()
{
    m_effect.readSettings();
    const QSignalBlocker quiet(m_shift);
    m_shift->setValue(m_effect.options().maximumShift);
}
