#include "formcolorrange.h"

#include "core/display/siscale.h"
#include "core/items/qsciimage.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>

namespace {

/** @p value in the unit's readable prefix ("1.5 nm" for 1.5e-9 m), so that it reads back the same. */
QString valueText(double value, const QString& unit)
{
    const SiScale::Scaled scaled = SiScale::forMagnitude(value, unit);
    QString text = QString::number(value * scaled.factor, 'g', 8);
    if (!scaled.unit.isEmpty())
        text += QLatin1Char(' ') + scaled.unit;
    return text;
}

} // namespace

FormColorRange::FormColorRange(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("FormColorRange"));
    setWindowTitle(tr("Color range"));
    m_full = new QRadioButton(tr("Full range of the z-matrix"), this);
    m_full->setObjectName(QStringLiteral("rbFullRange"));
    m_fixed = new QRadioButton(tr("Fixed range"), this);
    m_fixed->setObjectName(QStringLiteral("rbFixedRange"));
    m_cut = new QRadioButton(tr("Cut outliers at both ends"), this);
    m_cut->setObjectName(QStringLiteral("rbCutRange"));
    m_minimum = new QLineEdit(this);
    m_minimum->setObjectName(QStringLiteral("leZMinimum"));
    m_maximum = new QLineEdit(this);
    m_maximum->setObjectName(QStringLiteral("leZMaximum"));
    m_percent = new QDoubleSpinBox(this);
    m_percent->setObjectName(QStringLiteral("sbCutPercent"));
    m_percent->setRange(0, 49.9);
    m_percent->setDecimals(2);
    m_percent->setSingleStep(0.5);
    m_percent->setSuffix(QStringLiteral(" %"));
    m_percent->setValue(1);
    m_info = new QLabel(this);
    m_info->setObjectName(QStringLiteral("lbZInfo"));

    auto* grid = new QGridLayout;
    grid->addWidget(m_full, 0, 0, 1, 3);
    grid->addWidget(m_fixed, 1, 0, 1, 3);
    grid->addWidget(new QLabel(tr("z minimum:"), this), 2, 1);
    grid->addWidget(m_minimum, 2, 2);
    grid->addWidget(new QLabel(tr("z maximum:"), this), 3, 1);
    grid->addWidget(m_maximum, 3, 2);
    grid->addWidget(m_cut, 4, 0, 1, 3);
    grid->addWidget(new QLabel(tr("at each end:"), this), 5, 1);
    grid->addWidget(m_percent, 5, 2);
    grid->setColumnMinimumWidth(0, 16);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_buttons->button(QDialogButtonBox::Ok)->setText(tr("Apply to all selected items"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_info);
    layout->addLayout(grid);
    layout->addWidget(m_buttons);

    for (QRadioButton* button : { m_full, m_fixed, m_cut })
        connect(button, &QRadioButton::toggled, this, &FormColorRange::updateState);
    connect(m_minimum, &QLineEdit::textChanged, this, &FormColorRange::updateState);
    connect(m_maximum, &QLineEdit::textChanged, this, &FormColorRange::updateState);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_full->setChecked(true);
}

void FormColorRange::setItems(const QList<QSciImage*>& items)
{
    const QSciImage* item = items.value(0);
    if (!item)
        return;
    m_unit = item->sciValues().zUnit;
    double low = 0, high = 0;
    item->zRange(&low, &high);
    m_info->setText(tr("%n selected item(s); the first spans z %1 to %2", nullptr, items.size())
                        .arg(valueText(low, m_unit), valueText(high, m_unit)));
    const ColorRange& range = item->colorRange();
    double shownLow = 0, shownHigh = 0;
    item->displayRange(&shownLow, &shownHigh);
    // The fields start from the range in use, so switching to fixed keeps the picture as it is.
    m_minimum->setText(valueText(std::isfinite(shownLow) ? shownLow : 0, m_unit));
    m_maximum->setText(valueText(std::isfinite(shownHigh) ? shownHigh : 1, m_unit));
    if (range.mode == ColorRange::Mode::Cut)
        m_percent->setValue(range.cutPercent);
    (range.mode == ColorRange::Mode::Fixed        ? m_fixed
            : range.mode == ColorRange::Mode::Cut ? m_cut
                                                  : m_full)
        ->setChecked(true);
    updateState();
}

ColorRange FormColorRange::range() const
{
    ColorRange range;
    if (m_fixed->isChecked()) {
        range.mode = ColorRange::Mode::Fixed;
        (void)ColorRange::parseValue(m_minimum->text(), m_unit, &range.minimum);
        (void)ColorRange::parseValue(m_maximum->text(), m_unit, &range.maximum);
    } else if (m_cut->isChecked()) {
        range.mode = ColorRange::Mode::Cut;
        range.cutPercent = m_percent->value();
    }
    return range;
}

void FormColorRange::updateState()
{
    m_minimum->setEnabled(m_fixed->isChecked());
    m_maximum->setEnabled(m_fixed->isChecked());
    m_percent->setEnabled(m_cut->isChecked());
    double value = 0;
    const bool minimumOk = ColorRange::parseValue(m_minimum->text(), m_unit, &value);
    const bool maximumOk = ColorRange::parseValue(m_maximum->text(), m_unit, &value);
    // A text that does not read is marked rather than silently taken as 0.
    m_minimum->setStyleSheet(minimumOk ? QString() : QStringLiteral("color: red"));
    m_maximum->setStyleSheet(maximumOk ? QString() : QStringLiteral("color: red"));
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(!m_fixed->isChecked() || (minimumOk && maximumOk));
}
