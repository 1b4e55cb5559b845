#include "zformulapanel.h"

#include "core/tables/formulaevaluator.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>
#include <limits>

namespace {

QDoubleSpinBox* bound(const char* name, QWidget* parent)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setRange(-std::numeric_limits<double>::max(), std::numeric_limits<double>::max());
    box->setDecimals(6);
    return box;
}

} // namespace

ZFormulaPanel::ZFormulaPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_formula(new QLineEdit(this))
    , m_clip(new QCheckBox(tr("Clip to the range"), this))
    , m_low(bound("dsbClipLow", this))
    , m_high(bound("dsbClipHigh", this))
    , m_invert(new QCheckBox(tr("Invert (z becomes max + min - z)"), this))
    , m_whole(new QRadioButton(tr("Whole image"), this))
    , m_selected(new QRadioButton(tr("Selected area(s)"), this))
{
    setObjectName(QStringLiteral("ZFormulaPanel"));
    m_formula->setObjectName(QStringLiteral("leZFormula"));
    m_formula->setToolTip(tr("Functions: %1").arg(FormulaEvaluator::functionHelp().join(QStringLiteral(", "))));
    m_clip->setObjectName(QStringLiteral("cbClip"));
    m_invert->setObjectName(QStringLiteral("cbInvert"));
    m_whole->setObjectName(QStringLiteral("rbZFormulaWholeImage"));
    m_selected->setObjectName(QStringLiteral("rbZFormulaSelection"));

    auto* help = new QLabel(
        tr("$z is the point's value, $x its column and $y its row from the top; z(x, y) reads any point."), this);
    help->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(tr("z ="), m_formula);
    form->addRow(QString(), help);
    form->addRow(QString(), m_clip);
    form->addRow(tr("From"), m_low);
    form->addRow(tr("To"), m_high);
    form->addRow(QString(), m_invert);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(choiceGroup(tr("Region"), { m_whole, m_selected }, [this] { collect(); }));
    layout->addStretch(1);

    connect(m_formula, &QLineEdit::textChanged, this, &ZFormulaPanel::collect);
    for (QCheckBox* box : { m_clip, m_invert })
        connect(box, &QCheckBox::toggled, this, &ZFormulaPanel::collect);
    for (QDoubleSpinBox* box : { m_low, m_high })
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &ZFormulaPanel::collect);
    showOptions(m_effect.options());
}

void ZFormulaPanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void ZFormulaPanel::showOptions(const QSciZFormula::Options& o)
{
    m_showing = true;
    if (m_formula->text() != o.formula)
        m_formula->setText(o.formula);
    m_clip->setChecked(o.clip);
    m_low->setValue(o.clipLow);
    m_high->setValue(o.clipHigh);
    m_low->setEnabled(o.clip);
    m_high->setEnabled(o.clip);
    m_invert->setChecked(o.invert);
    (o.selectionOnly ? m_selected : m_whole)->setChecked(true);
    m_showing = false;
}

void ZFormulaPanel::collect()
{
    if (m_showing)
        return;
    QSciZFormula::Options o;
    o.formula = m_formula->text();
    o.clip = m_clip->isChecked();
    o.clipLow = m_low->value();
    o.clipHigh = m_high->value();
    o.invert = m_invert->isChecked();
    o.selectionOnly = m_selected->isChecked();
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}
