#pragma once

#include "core/import/rawimport.h"

#include <QDialog>

class QComboBox;
class QSpinBox;

/** Asks how a raw binary file is laid out: width, height, data type, byte order and header size. */
class FormRawImport final : public QDialog {
    Q_OBJECT

public:
    explicit FormRawImport(QWidget* parent = nullptr);
    RawImport::Options options() const;
    void setOptions(const RawImport::Options& options);

private:
    QSpinBox* m_width = nullptr;
    QSpinBox* m_height = nullptr;
    QComboBox* m_type = nullptr;
    QComboBox* m_byteOrder = nullptr;
    QSpinBox* m_header = nullptr;
};
