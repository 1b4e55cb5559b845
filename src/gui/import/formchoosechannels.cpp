#include "formchoosechannels.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

FormChooseChannels::FormChooseChannels(QWidget* parent)
    : QDialog(parent)
    , m_list(new QListWidget(this))
{
    setWindowTitle(tr("Open channels"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Channels to open:"), this));
    layout->addWidget(m_list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* all = buttons->addButton(tr("All"), QDialogButtonBox::ResetRole);
    QPushButton* none = buttons->addButton(tr("None"), QDialogButtonBox::ResetRole);
    connect(all, &QPushButton::clicked, this, [this] {
        for (int i = 0; i < m_list->count(); ++i)
            m_list->item(i)->setCheckState(Qt::Checked);
    });
    connect(none, &QPushButton::clicked, this, [this] { setChosen({}); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void FormChooseChannels::setChannels(const QString& fileName, const QStringList& titles)
{
    setWindowTitle(tr("Open channels") + QStringLiteral(" - ") + fileName);
    m_list->clear();
    for (const QString& title : titles) {
        auto* item = new QListWidgetItem(title, m_list);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
}

QList<int> FormChooseChannels::chosen() const
{
    QList<int> indexes;
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->checkState() == Qt::Checked)
            indexes << i;
    }
    return indexes;
}

void FormChooseChannels::setChosen(const QList<int>& indexes)
{
    for (int i = 0; i < m_list->count(); ++i)
        m_list->item(i)->setCheckState(indexes.contains(i) ? Qt::Checked : Qt::Unchecked);
}
