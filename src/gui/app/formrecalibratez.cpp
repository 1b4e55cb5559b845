#include "formrecalibratez.h"

#include "numberfield.h"

#include "core/items/qsciimage.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>

namespace {

QString rangeText(double zMin, double zMax)
{
    return FormRecalibrateZ::tr("%1 to %2").arg(NumberField::format(zMin), NumberField::format(zMax));
}

} // namespace

FormRecalibrateZ::FormRecalibrateZ(QWidget* parent)
    : QDialog(parent)
    , m_multiply(new NumberField(this))
    , m_add(new NumberField(this))
    , m_current(new QLabel(this))
    , m_result(new QLabel(this))
{
    setObjectName(QStringLiteral("FormRecalibrateZ"));
    setWindowTitle(tr("Recalibrate z-matrix"));
    m_multiply->setObjectName(QStringLiteral("leMultiply"));
    m_add->setObjectName(QStringLiteral("leAdd"));
    m_current->setObjectName(QStringLiteral("lbCurrentRange"));
    m_result->setObjectName(QStringLiteral("lbResultingRange"));
    m_multiply->setValue(1);
    m_add->setValue(0);

    auto* formula = new QLabel(tr("z' = z \u00b7 multiply + add"), this);
    auto* form = new QFormLayout;
    form->addRow(formula);
    form->addRow(tr("Multiply:"), m_multiply);
    form->addRow(tr("Add:"), m_add);
    form->addRow(tr("Current z range:"), m_current);
    form->addRow(tr("Resulting z range:"), m_result);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setObjectName(QStringLiteral("pbOk"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("pbCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FormRecalibrateZ::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FormRecalibrateZ::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    for (NumberField* field : { m_multiply, m_add }) {
        connect(field, &NumberField::valueEdited, this, &FormRecalibrateZ::updateResult);
        connect(field, &NumberField::validityChanged, this, &FormRecalibrateZ::updateResult);
    }
    updateResult();
}

void FormRecalibrateZ::setItems(const QList<QSciImage*>& items)
{
    if (items.isEmpty()) {
        m_hasRange = false;
        updateResult();
        return;
    }
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    for (const QSciImage* item : items) {
        double itemMin = 0, itemMax = 0;
        item->zRange(&itemMin, &itemMax);
        low = std::min(low, itemMin);
        high = std::max(high, itemMax);
    }
    setZRange(low, high);
}

void FormRecalibrateZ::setZRange(double zMin, double zMax)
{
    m_zMin = zMin;
    m_zMax = zMax;
    m_hasRange = true;
    updateResult();
}

double FormRecalibrateZ::multiply() const
{
    return m_multiply->value();
}

double FormRecalibrateZ::add() const
{
    return m_add->value();
}

void FormRecalibrateZ::resultingRange(double* zMin, double* zMax) const
{
    const double a = m_zMin * multiply() + add();
    const double b = m_zMax * multiply() + add();
    // A negative factor turns the range round.
    *zMin = std::min(a, b);
    *zMax = std::max(a, b);
}

void FormRecalibrateZ::updateResult()
{
    const bool valid = m_multiply->isValid() && m_add->isValid();
    m_ok->setEnabled(valid);
    if (!m_hasRange) {
        m_current->setText(tr("no item"));
        m_result->clear();
        return;
    }
    m_current->setText(rangeText(m_zMin, m_zMax));
    if (!valid) {
        m_result->setText(tr("not a number"));
        return;
    }
    double low = 0, high = 0;
    resultingRange(&low, &high);
    m_result->setText(rangeText(low, high));
}
