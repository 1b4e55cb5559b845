#include "formadvancedalignment.h"

#include "core/settings/options.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString LayoutKey = QStringLiteral("FormAdvancedAlignment.layout");
const QString SpacingKey = QStringLiteral("FormAdvancedAlignment.spacing");

using Layout = ItemArrangement::Layout;

struct Choice {
    Layout layout;
    const char* objectName;
    const char* text;
};

// The stored number is the enum's value; keep the order of ItemArrangement::Layout.
const Choice Choices[] = {
    { Layout::RowByTop, "rbRowByTop", QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a row, aligned at the top") },
    { Layout::RowByBottom, "rbRowByBottom",
        QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a row, aligned at the bottom") },
    { Layout::RowByCenter, "rbRowByCenter",
        QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a row, centered vertically") },
    { Layout::ColumnByLeft, "rbColumnByLeft",
        QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a column, aligned at the left") },
    { Layout::ColumnByRight, "rbColumnByRight",
        QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a column, aligned at the right") },
    { Layout::ColumnByCenter, "rbColumnByCenter",
        QT_TRANSLATE_NOOP("FormAdvancedAlignment", "In a column, centered horizontally") },
};

} // namespace

FormAdvancedAlignment::FormAdvancedAlignment(QWidget* parent)
    : QDialog(parent)
    , m_layouts(new QButtonGroup(this))
    , m_spacing(new QSpinBox(this))
{
    setObjectName(QStringLiteral("FormAdvancedAlignment"));
    setWindowTitle(tr("Advanced alignment"));

    auto* group = new QGroupBox(tr("Layout"), this);
    auto* groupLayout = new QVBoxLayout(group);
    for (const Choice& choice : Choices) {
        auto* radio = new QRadioButton(tr(choice.text), group);
        radio->setObjectName(QLatin1String(choice.objectName));
        m_layouts->addButton(radio, int(choice.layout));
        groupLayout->addWidget(radio);
    }

    m_spacing->setObjectName(QStringLiteral("sbSpacing"));
    m_spacing->setRange(-100000, 100000);
    m_spacing->setSuffix(tr(" points"));
    auto* form = new QFormLayout;
    form->addRow(tr("Spacing:"), m_spacing);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("pbOk"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("pbCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FormAdvancedAlignment::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FormAdvancedAlignment::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addLayout(form);
    layout->addWidget(buttons);
    loadSettings();
}

ItemArrangement::Layout FormAdvancedAlignment::layout() const
{
    const int id = m_layouts->checkedId();
    return id < 0 ? Layout::RowByTop : Layout(id);
}

void FormAdvancedAlignment::setChosenLayout(ItemArrangement::Layout layout)
{
    if (QAbstractButton* button = m_layouts->button(int(layout)))
        button->setChecked(true);
}

int FormAdvancedAlignment::spacing() const
{
    return m_spacing->value();
}

void FormAdvancedAlignment::loadSettings()
{
    const int stored = Options::getInt(LayoutKey, int(Layout::RowByTop));
    setChosenLayout(m_layouts->button(stored) ? Layout(stored) : Layout::RowByTop);
    m_spacing->setValue(Options::getInt(SpacingKey, 0));
}

void FormAdvancedAlignment::showEvent(QShowEvent* event)
{
    if (!event->spontaneous())
        loadSettings();
    QDialog::showEvent(event);
}

void FormAdvancedAlignment::accept()
{
    Options::setInt(LayoutKey, int(layout()));
    Options::setInt(SpacingKey, spacing());
    QDialog::accept();
}
