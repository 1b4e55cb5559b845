#include "filterpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

QDoubleSpinBox* number(const char* name, double low, double high, QWidget* parent)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setRange(low, high);
    box->setDecimals(2);
    box->setSingleStep(0.5);
    return box;
}

} // namespace

FilterPanel::FilterPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_form(new QFormLayout)
    , m_kind(new QComboBox(this))
    , m_sigma(number("dsbSigma", 0, 1000, this))
    , m_amount(number("dsbAmount", -100, 100, this))
    , m_kernel(new QLineEdit(this))
    , m_normalise(new QCheckBox(tr("Divide by the sum of the weights"), this))
    , m_direction(new QComboBox(this))
    , m_radius(number("dsbSmoothenRadius", 0, 1000, this))
    , m_despike(number("dsbDespikeSigma", 0.1, 100, this))
    , m_whole(new QRadioButton(tr("Whole image"), this))
    , m_selected(new QRadioButton(tr("Selected area(s)"), this))
{
    setObjectName(QStringLiteral("FilterPanel"));
    m_kind->setObjectName(QStringLiteral("cbFilter"));
    for (int k = 0; k <= int(QSciFilter::Kind::Despike); ++k)
        m_kind->addItem(QSciFilter::kindName(QSciFilter::Kind(k)));
    m_kernel->setObjectName(QStringLiteral("leKernel"));
    m_kernel->setToolTip(tr("Rows from the top separated by ';', weights by ','; odd sizes up to 15 x 15"));
    m_normalise->setObjectName(QStringLiteral("cbNormalise"));
    m_direction->setObjectName(QStringLiteral("cbSobelDirection"));
    m_direction->addItems({ tr("Magnitude"), tr("X direction"), tr("Y direction") });
    m_sigma->setSuffix(tr(" px"));
    m_radius->setSuffix(tr(" px"));
    m_whole->setObjectName(QStringLiteral("rbFilterWholeImage"));
    m_selected->setObjectName(QStringLiteral("rbFilterSelection"));

    m_form->addRow(tr("Filter"), m_kind);
    m_form->addRow(tr("Sigma"), m_sigma);
    m_form->addRow(tr("Amount"), m_amount);
    m_form->addRow(tr("Kernel"), m_kernel);
    m_form->addRow(QString(), m_normalise);
    m_form->addRow(tr("Direction"), m_direction);
    m_form->addRow(tr("Radius"), m_radius);
    m_form->addRow(tr("Peaks beyond (standard deviations)"), m_despike);
    QWidget* regionBox = choiceGroup(tr("Region"), { m_whole, m_selected }, [this] { collect(); });
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_form);
    layout->addWidget(regionBox);
    layout->addStretch(1);

    connect(m_kind, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &FilterPanel::collect);
    connect(m_direction, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &FilterPanel::collect);
    for (QDoubleSpinBox* box : { m_sigma, m_amount, m_radius, m_despike })
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &FilterPanel::collect);
    connect(m_kernel, &QLineEdit::textChanged, this, &FilterPanel::collect);
    connect(m_normalise, &QCheckBox::toggled, this, &FilterPanel::collect);
    showOptions(m_effect.options());
}

QString FilterPanel::title()
{
    return tr("Filters");
}

void FilterPanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void FilterPanel::setKind(QSciFilter::Kind kind)
{
    m_kind->setCurrentIndex(int(kind));
}

void FilterPanel::showOptions(const QSciFilter::Options& o)
{
    m_showing = true;
    using Kind = QSciFilter::Kind;
    m_kind->setCurrentIndex(int(o.kind));
    m_sigma->setValue(o.sigma);
    m_amount->setValue(o.amount);
    if (!m_kernel->hasFocus())
        m_kernel->setText(QSciFilter::kernelText(o.kernel));
    m_normalise->setChecked(o.normalise);
    m_direction->setCurrentIndex(int(o.direction));
    m_radius->setValue(o.radius);
    m_despike->setValue(o.despikeSigma);
    (o.selectionOnly ? m_selected : m_whole)->setChecked(true);
    const auto show = [this](QWidget* field, bool visible) {
        field->setVisible(visible);
        m_form->labelForField(field)->setVisible(visible);
    };
    show(m_sigma, o.kind == Kind::Gaussian || o.kind == Kind::Unsharp);
    show(m_amount, o.kind == Kind::Unsharp);
    show(m_kernel, o.kind == Kind::Convolution);
    m_normalise->setVisible(o.kind == Kind::Convolution);
    show(m_direction, o.kind == Kind::Sobel);
    show(m_radius, o.kind == Kind::Smoothen);
    show(m_despike, o.kind == Kind::Despike);
    m_showing = false;
}

void FilterPanel::collect()
{
    if (m_showing)
        return;
    QSciFilter::Options o = m_effect.options();
    o.kind = QSciFilter::Kind(m_kind->currentIndex());
    o.sigma = m_sigma->value();
    o.amount = m_amount->value();
    Convolution::Kernel kernel;
    const bool kernelOk = QSciFilter::parseKernel(m_kernel->text(), &kernel);
    if (kernelOk)
        o.kernel = kernel;
    m_kernel->setStyleSheet(kernelOk ? QString() : QStringLiteral("color: red"));
    o.normalise = m_normalise->isChecked();
    o.direction = QSciFilter::Direction(m_direction->currentIndex());
    o.radius = m_radius->value();
    o.despikeSigma = m_despike->value();
    o.selectionOnly = m_selected->isChecked();
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}
