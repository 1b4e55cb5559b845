#pragma once

#include "core/display/colorrange.h"

#include <QDialog>
#include <QList>

class QDialogButtonBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSciImage;

/**
 * Chooses which z values the gradient spans: the full range, a fixed minimum and maximum typed in the item's
 * z unit (with any SI prefix of it), or the range left after cutting a percentage of outliers at each end.
 * The window applies the result to every selected item, so a series is coloured alike.
 */
class FormColorRange final : public QDialog {
    Q_OBJECT

public:
    explicit FormColorRange(QWidget* parent = nullptr);

    /** Shows the range of the first of @p items and its z unit. */
    void setItems(const QList<QSciImage*>& items);
    /** The range chosen; valid once the dialog was accepted. */
    ColorRange range() const;

private:
    void updateState();

    QRadioButton* m_full = nullptr;
    QRadioButton* m_fixed = nullptr;
    QRadioButton* m_cut = nullptr;
    QLineEdit* m_minimum = nullptr;
    QLineEdit* m_maximum = nullptr;
    QDoubleSpinBox* m_percent = nullptr;
    QLabel* m_info = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    QString m_unit;
};
