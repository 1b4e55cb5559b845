#pragma once

#include "core/processing/fouriertransform.h"

#include <QDialog>

class QComboBox;
class QRadioButton;

/**
 * Asks which spectrum of the selected items to make, or, with an item and its spectrum selected, whether to keep
 * in the item only the frequencies selected (masked) on the spectrum.
 */
class FormFourierTransform final : public QDialog {
    Q_OBJECT

public:
    explicit FormFourierTransform(QWidget* parent = nullptr);

    FourierTransform::Mode mode() const;
    void setMode(FourierTransform::Mode mode);
    /** Offers the filter only when two items are selected; it is then the default if one of them has a mask. */
    void offerFilter(bool possible, bool likely);
    bool filtering() const;

private:
    QComboBox* m_mode;
    QRadioButton* m_spectra;
    QRadioButton* m_filter;
};
