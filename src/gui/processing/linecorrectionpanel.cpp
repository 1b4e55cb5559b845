#include "linecorrectionpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QSpinBox>
#include <QVBoxLayout>

LineCorrectionPanel::LineCorrectionPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_method(new QComboBox(this))
    , m_masked(new QCheckBox(tr("Measure rows on the selected points only"), this))
    , m_threshold(new QDoubleSpinBox(this))
    , m_length(new QSpinBox(this))
{
    setObjectName(QStringLiteral("LineCorrectionPanel"));
    m_method->setObjectName(QStringLiteral("cbRowMethod"));
    for (auto method :
        { QSciRowAlignment::Method::Median, QSciRowAlignment::Method::Mean, QSciRowAlignment::Method::MedianDifference,
            QSciRowAlignment::Method::Linear, QSciRowAlignment::Method::Scars })
        m_method->addItem(QSciRowAlignment::methodName(method));
    m_masked->setObjectName(QStringLiteral("cbRowsFitToSelection"));
    m_threshold->setObjectName(QStringLiteral("dsbScarThreshold"));
    m_threshold->setRange(0.1, 100);
    m_threshold->setToolTip(tr("A scar jumps against both neighbouring rows by this many typical row-to-row steps"));
    m_length->setObjectName(QStringLiteral("sbScarLength"));
    m_length->setRange(1, 100000);
    m_length->setSuffix(tr(" points"));

    auto* form = new QFormLayout;
    form->addRow(tr("Method"), m_method);
    form->addRow(tr("Scar threshold"), m_threshold);
    form->addRow(tr("Shortest scar"), m_length);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_masked);
    layout->addStretch(1);

    connect(m_method, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LineCorrectionPanel::collect);
    connect(m_masked, &QCheckBox::toggled, this, &LineCorrectionPanel::collect);
    connect(m_threshold, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &LineCorrectionPanel::collect);
    connect(m_length, QOverload<int>::of(&QSpinBox::valueChanged), this, &LineCorrectionPanel::collect);
    showOptions(m_effect.options());
}

QString LineCorrectionPanel::title()
{
    return tr("Line correction");
}

void LineCorrectionPanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void LineCorrectionPanel::showOptions(const QSciRowAlignment::Options& o)
{
    m_showing = true;
    m_method->setCurrentIndex(int(o.method));
    const bool scars = o.method == QSciRowAlignment::Method::Scars;
    m_masked->setChecked(o.masked);
    m_masked->setEnabled(!scars);
    m_threshold->setValue(o.scarThreshold);
    m_threshold->setEnabled(scars);
    m_length->setValue(o.scarMinimumLength);
    m_length->setEnabled(scars);
    m_showing = false;
}

void LineCorrectionPanel::collect()
{
    if (m_showing)
        return;
    QSciRowAlignment::Options o;
    o.method = QSciRowAlignment::Method(m_method->currentIndex());
    o.masked = m_masked->isChecked();
    o.scarThreshold = m_threshold->value();
    o.scarMinimumLength = m_length->value();
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}
