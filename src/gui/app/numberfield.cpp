#include "numberfield.h"

#include <QLocale>
#include <cmath>

NumberField::NumberField(QWidget* parent)
    : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &NumberField::textWasEdited);
    setValue(0);
}

void NumberField::setValue(double value)
{
    m_value = value;
    setText(format(value));
    setValid(true);
}

bool NumberField::parse(const QString& text, double* value)
{
    const QString trimmed = text.trimmed();
    bool ok = false;
    double parsed = QLocale::c().toDouble(trimmed, &ok);
    if (!ok)
        parsed = QLocale().toDouble(trimmed, &ok);
    if (!ok || !std::isfinite(parsed))
        return false;
    *value = parsed;
    return true;
}

QString NumberField::format(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

void NumberField::textWasEdited(const QString& text)
{
    double parsed = 0;
    const bool ok = parse(text, &parsed);
    setValid(ok);
    if (!ok)
        return;
    m_value = parsed;
    emit valueEdited(parsed);
}

void NumberField::setValid(bool valid)
{
    // A red frame rather than a refusal: the user may pass through "1e" on the way to "1e-9".
    setStyleSheet(valid ? QString() : QStringLiteral("QLineEdit { background: #ffd8d8; }"));
    if (valid != m_valid) {
        m_valid = valid;
        emit validityChanged(valid);
    }
}
