#include "componentsdock.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QVBoxLayout>

ComponentsDock::ComponentsDock(QWidget* parent)
    : QDockWidget(tr("Components"), parent)
    , m_list(new QListWidget)
    , m_onlyActiveTab(new QRadioButton(tr("use only items") + QLatin1Char('\n') + tr("on active tab")))
    , m_fromAllTabs(new QRadioButton(tr("use  all items")))
    , m_filter(new QLineEdit)
{
    setObjectName(QStringLiteral("dockComponents"));
    m_list->setObjectName(QStringLiteral("imageListWidget"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_list, &QWidget::customContextMenuRequested, this,
        [this](const QPoint& pos) { emit contextMenuRequested(m_list->viewport()->mapToGlobal(pos)); });

    m_onlyActiveTab->setObjectName(QStringLiteral("rbOnlyActiveTab"));
    m_onlyActiveTab->setChecked(true);
    m_fromAllTabs->setObjectName(QStringLiteral("rbFromAllTabs"));
    m_filter->setObjectName(QStringLiteral("leFilter"));
    m_filter->setPlaceholderText(tr("Filter items by name"));
    m_filter->setClearButtonEnabled(true);
    for (QWidget* w : { static_cast<QWidget*>(m_onlyActiveTab), static_cast<QWidget*>(m_fromAllTabs),
             static_cast<QWidget*>(m_filter) })
        w->setEnabled(false);

    auto* choice = new QHBoxLayout;
    choice->addWidget(m_onlyActiveTab);
    choice->addWidget(m_fromAllTabs);
    choice->addStretch(1);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_list, 1);
    layout->addLayout(choice);
    layout->addWidget(m_filter);
    setWidget(content);
}
