#pragma once

#include <QLineEdit>

/**
 * A line edit for one real number of any magnitude (1e-9 as well as 12345.678), where a spin box's fixed
 * decimals would round. A value set and left alone comes back bit for bit. Accepts the C form and the
 * form of the user's locale; emits valueEdited() on every edit that reads as a number.
 */
class NumberField final : public QLineEdit {
    Q_OBJECT

public:
    explicit NumberField(QWidget* parent = nullptr);

    void setValue(double value);
    /** The number shown; the last valid one while the text does not read as a number. */
    double value() const { return m_value; }
    bool isValid() const { return m_valid; }

    /** Parses @p text in the C form or in the user's locale. */
    static bool parse(const QString& text, double* value);
    /** The shortest text that reads back to exactly @p value. */
    static QString format(double value);

signals:
    void valueEdited(double value);
    void validityChanged(bool valid);

private:
    void textWasEdited(const QString& text);
    void setValid(bool valid);

    double m_value = 0;
    bool m_valid = true;
};
