#include "formrawimport.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>

FormRawImport::FormRawImport(QWidget* parent)
    : QDialog(parent)
    , m_width(new QSpinBox(this))
    , m_height(new QSpinBox(this))
    , m_type(new QComboBox(this))
    , m_byteOrder(new QComboBox(this))
    , m_header(new QSpinBox(this))
{
    setWindowTitle(tr("Import raw data"));
    m_width->setRange(1, 1 << 20);
    m_height->setRange(1, 1 << 20);
    m_width->setValue(256);
    m_height->setValue(256);
    m_type->addItems(RawImport::typeNames());
    m_type->setCurrentIndex(int(RawImport::DataType::Float32));
    m_byteOrder->addItems({ tr("Little endian"), tr("Big endian") });
    m_header->setRange(0, 0x7FFFFFFF);
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("Width"), m_width);
    layout->addRow(tr("Height"), m_height);
    layout->addRow(tr("Data type"), m_type);
    layout->addRow(tr("Byte order"), m_byteOrder);
    layout->addRow(tr("Header size (bytes)"), m_header);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addRow(buttons);
}

RawImport::Options FormRawImport::options() const
{
    RawImport::Options o;
    o.width = m_width->value();
    o.height = m_height->value();
    o.type = RawImport::DataType(m_type->currentIndex());
    o.littleEndian = m_byteOrder->currentIndex() == 0;
    o.headerSize = m_header->value();
    return o;
}

void FormRawImport::setOptions(const RawImport::Options& o)
{
    m_width->setValue(o.width);
    m_height->setValue(o.height);
    m_type->setCurrentIndex(int(o.type));
    m_byteOrder->setCurrentIndex(o.littleEndian ? 0 : 1);
    m_header->setValue(int(qMin<qint64>(o.headerSize, 0x7FFFFFFF)));
}
