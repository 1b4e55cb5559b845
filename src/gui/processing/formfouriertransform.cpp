#include "formfouriertransform.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

FormFourierTransform::FormFourierTransform(QWidget* parent)
    : QDialog(parent)
    , m_mode(new QComboBox(this))
{
    setObjectName(QStringLiteral("FormFourierTransform"));
    setWindowTitle(tr("Fourier transformation"));
    m_mode->setObjectName(QStringLiteral("cbSpectrum"));
    for (auto mode :
        { FourierTransform::Mode::Magnitude, FourierTransform::Mode::Phase, FourierTransform::Mode::LogPower })
        m_mode->addItem(FourierTransform::modeName(mode));
    m_mode->setCurrentIndex(int(FourierTransform::Mode::LogPower));
    auto* note = new QLabel(tr("Each selected item gets its spectrum beside it, the zero frequency in the middle. "
                               "Select frequencies on a spectrum and use \"fft-filter\" of velmora-cli to keep "
                               "only them."),
        this);
    note->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(tr("Spectrum"), m_mode);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
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
