#include "formnewimage.h"

#include "core/settings/options.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString WidthKey = QStringLiteral("FormNewImage.width");
const QString HeightKey = QStringLiteral("FormNewImage.height");
const QString ColorKey = QStringLiteral("FormNewImage.color");

QSpinBox* sideBox(QWidget* parent, const QString& objectName)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(1, FormNewImage::MaximumSide);
    box->setSuffix(FormNewImage::tr(" points"));
    return box;
}

} // namespace

FormNewImage::FormNewImage(QWidget* parent)
    : QDialog(parent)
    , m_width(sideBox(this, QStringLiteral("sbWidth")))
    , m_height(sideBox(this, QStringLiteral("sbHeight")))
    , m_colorButton(new QPushButton(tr("Color"), this))
{
    setObjectName(QStringLiteral("FormNewImage"));
    setWindowTitle(tr("Create new image"));
    m_colorButton->setObjectName(QStringLiteral("pbBackgroundColor"));
    m_colorButton->setAutoDefault(false);
    m_colorButton->setIconSize(QSize(28, 14));
    connect(m_colorButton, &QPushButton::clicked, this, &FormNewImage::chooseColor);

    auto* form = new QFormLayout;
    form->addRow(tr("Width:"), m_width);
    form->addRow(tr("Height:"), m_height);
    form->addRow(tr("Background color:"), m_colorButton);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("pbOk"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("pbCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FormNewImage::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FormNewImage::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    loadSettings();
}

int FormNewImage::width() const
{
    return m_width->value();
}

int FormNewImage::height() const
{
    return m_height->value();
}

void FormNewImage::setColor(const QColor& color)
{
    m_color = color;
    QPixmap swatch(28, 14);
    swatch.fill(color);
    QPainter painter(&swatch);
    painter.setPen(QColor(96, 96, 96));
    painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    painter.end();
    m_colorButton->setIcon(QIcon(swatch));
    m_colorButton->setToolTip(Options::formatColor(color));
}

void FormNewImage::loadSettings()
{
    m_width->setValue(Options::getInt(WidthKey, 100));
    m_height->setValue(Options::getInt(HeightKey, 100));
    setColor(Options::getColor(ColorKey, QColor(Qt::white)));
}

void FormNewImage::showEvent(QShowEvent* event)
{
    // The dialog lives for the whole run: each opening starts from the last accepted values.
    if (!event->spontaneous())
        loadSettings();
    QDialog::showEvent(event);
}

void FormNewImage::chooseColor()
{
    const QColor chosen = QColorDialog::getColor(m_color, this, tr("Background color"), QColorDialog::ShowAlphaChannel);
    if (chosen.isValid())
        setColor(chosen);
}

void FormNewImage::accept()
{
    Options::setInt(WidthKey, width());
    Options::setInt(HeightKey, height());
    Options::setColor(ColorKey, m_color);
    QDialog::accept();
}
