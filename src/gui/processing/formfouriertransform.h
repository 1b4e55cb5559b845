#pragma once

#include "core/processing/fouriertransform.h"

#include <QDialog>

class QComboBox;

/** Asks which spectrum of the selected items to make. */
class FormFourierTransform final : public QDialog {
    Q_OBJECT

public:
    explicit FormFourierTransform(QWidget* parent = nullptr);

    FourierTransform::Mode mode() const;
    void setMode(FourierTransform::Mode mode);

private:
    QComboBox* m_mode;
};
