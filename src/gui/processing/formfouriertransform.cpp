#include "formfouriertransform.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

FormFourierTransform::FormFourierTransform(QWidget* parent)
    : QDialog(parent)
    , m_mode(new QComboBox(this))
    , m_spectra(new QRadioButton(tr("Make the spectra of the selected items"), this))
    , m_filter(new QRadioButton(tr("Filter: keep in the item only the frequencies selected on its spectrum"), this))
{
    m_spectra->setObjectName(QStringLiteral("rbSpectra"));
    m_filter->setObjectName(QStringLiteral("rbFilter"));
    m_spectra->setChecked(true);
    setObjectName(QStringLiteral("FormFourierTransform"));
    setWindowTitle(tr("Fourier transformation"));
    m_mode->setObjectName(QStringLiteral("cbSpectrum"));
    for (auto mode :
        { FourierTransform::Mode::Magnitude, FourierTransform::Mode::Phase, FourierTransform::Mode::LogPower })
        m_mode->addItem(FourierTransform::modeName(mode));
    m_mode->setCurrentIndex(int(FourierTransform::Mode::LogPower));
    auto* note = new QLabel(tr("Each selected item gets its spectrum beside it, the zero frequency in the middle. "
                               "To filter, select the frequencies to keep on a spectrum with the selection tools, "
                               "then select the item and that spectrum and choose the filter."),
        this);
    note->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(tr("Spectrum"), m_mode);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_spectra);
    layout->addLayout(form);
    layout->addWidget(m_filter);
    layout->addWidget(note);
    layout->addWidget(buttons);
}

FourierTransform::Mode FormFourierTransform::mode() const
{
    return FourierTransform::Mode(m_mode->currentIndex());
}

void FormFourierTransform::setMode(FourierTransform::Mode mode)
{
    m_mode->setCurrentIndex(int(mode));
}

void FormFourierTransform::offerFilter(bool possible, bool likely)
{
    m_filter->setEnabled(possible);
    (possible && likely ? m_filter : m_spectra)->setChecked(true);
}

bool FormFourierTransform::filtering() const
{
    return m_filter->isEnabled() && m_filter->isChecked();
}
