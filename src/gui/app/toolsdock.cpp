#include "toolsdock.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

ToolsDock::ToolsDock(QWidget* parent)
    : QDockWidget(tr("Toolbox"), parent)
    , m_toolList(new QTreeWidget)
    , m_options(new QWidget)
{
    setObjectName(QStringLiteral("dockTools"));
    m_toolList->setObjectName(QStringLiteral("toolList"));
    m_toolList->setHeaderHidden(true);
    m_toolList->setRootIsDecorated(false);
    for (const QString& heading : { tr("Select"), tr("Scientific"), tr("Draw"), tr("Shapes") }) {
        auto* item = new QTreeWidgetItem(m_toolList, QStringList { heading });
        QFont bold = item->font(0);
        bold.setBold(true);
        item->setFont(0, bold);
        item->setFlags(Qt::ItemIsEnabled);
        item->setExpanded(true);
    }

    m_options->setObjectName(QStringLiteral("toolOptionWidget"));
    auto* optionsLayout = new QVBoxLayout(m_options);
    optionsLayout->setContentsMargins(0, 0, 0, 0);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_toolList, 1);
    layout->addWidget(m_options, 1);
    setWidget(content);
}
