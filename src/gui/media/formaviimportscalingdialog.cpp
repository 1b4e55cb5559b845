#include "formaviimportscalingdialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>

namespace {

constexpr int MaximumSide = 16000;

QSpinBox* sideBox(QWidget* parent, const QString& name)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(1, MaximumSide);
    box->setSuffix(FormAviImportScalingDialog::tr(" points"));
    return box;
}

} // namespace

FormAviImportScalingDialog::FormAviImportScalingDialog(QWidget* parent)
    : QDialog(parent)
    , m_scale(new QCheckBox(tr("Scale the frames"), this))
    , m_width(sideBox(this, QStringLiteral("sbScaleWidth")))
    , m_height(sideBox(this, QStringLiteral("sbScaleHeight")))
    , m_keepAspect(new QCheckBox(tr("Keep the aspect ratio"), this))
{
    setObjectName(QStringLiteral("FormAviImportScalingDialog"));
    setWindowTitle(tr("Scaling of imported frames"));
    m_scale->setObjectName(QStringLiteral("cbScale"));
    m_keepAspect->setObjectName(QStringLiteral("cbKeepAspect"));
    m_keepAspect->setChecked(true);
    connect(m_width, QOverload<int>::of(&QSpinBox::valueChanged), this, &FormAviImportScalingDialog::widthEdited);
    connect(m_height, QOverload<int>::of(&QSpinBox::valueChanged), this, &FormAviImportScalingDialog::heightEdited);
    const auto enable = [this] {
        for (QWidget* widget :
            { static_cast<QWidget*>(m_width), static_cast<QWidget*>(m_height), static_cast<QWidget*>(m_keepAspect) })
            widget->setEnabled(m_scale->isChecked());
    };
    connect(m_scale, &QCheckBox::toggled, this, enable);

    auto* form = new QFormLayout;
    form->addRow(m_scale);
    form->addRow(tr("Width:"), m_width);
    form->addRow(tr("Height:"), m_height);
    form->addRow(m_keepAspect);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("pbOk"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    enable();
}

void FormAviImportScalingDialog::setOriginalSize(const QSize& size)
{
    if (!size.isValid() || size == m_original)
        return;
    m_original = size;
    m_updating = true;
    m_width->setValue(size.width());
    m_height->setValue(size.height());
    m_updating = false;
}

QSize FormAviImportScalingDialog::scaleTo() const
{
    return m_scale->isChecked() ? QSize(m_width->value(), m_height->value()) : QSize();
}

QString FormAviImportScalingDialog::summary() const
{
    const QSize size = scaleTo();
    return size.isValid() ? tr("scaled to %1 x %2").arg(size.width()).arg(size.height()) : tr("as in the movie");
}

void FormAviImportScalingDialog::widthEdited(int width)
{
    if (m_updating || !m_keepAspect->isChecked())
        return;
    m_updating = true;
    m_height->setValue(qMax(1, int(std::lround(double(width) * m_original.height() / m_original.width()))));
    m_updating = false;
}

void FormAviImportScalingDialog::heightEdited(int height)
{
    if (m_updating || !m_keepAspect->isChecked())
        return;
    m_updating = true;
    m_width->setValue(qMax(1, int(std::lround(double(height) * m_original.width() / m_original.height()))));
    m_updating = false;
}
