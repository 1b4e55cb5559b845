#include "denoisepanel.h"

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

DenoisePanel::DenoisePanel(QWidget* parent)
    : EffectPanel(parent)
    , m_radius(new QDoubleSpinBox(this))
    , m_loops(new QSpinBox(this))
    , m_entire(new QRadioButton(tr("Entire image"), this))
    , m_selection(new QRadioButton(tr("Selection"), this))
{
    setObjectName(QStringLiteral("DenoisePanel"));
    m_radius->setObjectName(QStringLiteral("dsbRadius"));
    m_radius->setRange(0, 1000);
    m_radius->setDecimals(2);
    m_radius->setSingleStep(0.5);
    m_radius->setSuffix(tr(" px"));
    m_radius->setToolTip(tr("Neighbours within this distance enter the median"));
    m_loops->setObjectName(QStringLiteral("sbNumberOfLoops"));
    m_loops->setRange(1, 100);
    m_entire->setObjectName(QStringLiteral("rbEntireImage"));
    m_selection->setObjectName(QStringLiteral("rbSelection"));

    auto* form = new QFormLayout;
    form->addRow(tr("Radius"), m_radius);
    form->addRow(tr("Number of loops"), m_loops);
    QWidget* regionBox = choiceGroup(tr("Region"), { m_entire, m_selection }, [this] { collect(); });
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(regionBox);
    layout->addStretch(1);

    connect(m_radius, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &DenoisePanel::collect);
    connect(m_loops, QOverload<int>::of(&QSpinBox::valueChanged), this, &DenoisePanel::collect);
    showOptions(m_effect.options());
}

void DenoisePanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void DenoisePanel::showOptions(const QSciDenoise::Options& o)
{
    m_showing = true;
    m_radius->setValue(o.radius);
    m_loops->setValue(o.loops);
    (o.selectionOnly ? m_selection : m_entire)->setChecked(true);
    m_showing = false;
}

void DenoisePanel::collect()
{
    if (m_showing)
        return;
    m_effect.setOptions({ m_radius->value(), m_loops->value(), m_selection->isChecked() });
    emit changed();
}
