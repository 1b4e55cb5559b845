#include "centralarea.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "collectiontabpage.h"
#include "iteminfowidget.h"

CentralArea::CentralArea(QWidget* parent)
    : QWidget(parent)
    , m_tabName(new QLineEdit(this))
    , m_rename(new QPushButton(tr("Rename tab"), this))
    , m_tabs(new QTabWidget(this))
    , m_itemInfo(new ItemInfoWidget(this))
{
    setObjectName(QStringLiteral("centralArea"));
    m_tabName->setObjectName(QStringLiteral("leTabMainName"));
    m_tabName->setMaximumWidth(260);
    m_rename->setObjectName(QStringLiteral("pbRenameTabMain"));
    m_tabs->setObjectName(QStringLiteral("mainTabs"));
    m_tabs->setDocumentMode(true);

    auto* strip = new QHBoxLayout;
    strip->addWidget(new QLabel(tr("Tab name:"), this));
    strip->addWidget(m_tabName);
    strip->addWidget(m_rename);
    strip->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(strip);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_itemInfo);

    connect(m_rename, &QPushButton::clicked, this, [this] { renameCurrentTab(m_tabName->text()); });
    connect(m_tabName, &QLineEdit::returnPressed, this, [this] { renameCurrentTab(m_tabName->text()); });
    connect(m_tabs, &QTabWidget::currentChanged, this, &CentralArea::onCurrentChanged);
}

CollectionTabPage* CentralArea::currentPage() const
{
    return qobject_cast<CollectionTabPage*>(m_tabs->currentWidget());
}

CollectionTabPage* CentralArea::page(int index) const
{
    return qobject_cast<CollectionTabPage*>(m_tabs->widget(index));
}

CollectionTabPage* CentralArea::addTab(const QString& name)
{
    ++m_tabsCreated;
    auto* page = new CollectionTabPage(m_tabs);
    connect(page, &CollectionTabPage::contextMenuRequested, this, &CentralArea::contextMenuRequested);
    const QString title = name.trimmed().isEmpty() ? tr("Tab %1").arg(m_tabsCreated) : name.trimmed();
    m_tabs->setCurrentIndex(m_tabs->addTab(page, title));
    return page;
}

bool CentralArea::renameCurrentTab(const QString& name)
{
    const QString title = name.trimmed();
    const int index = m_tabs->currentIndex();
    if (title.isEmpty() || index < 0)
        return false;
    m_tabs->setTabText(index, title);
    return true;
}

void CentralArea::onCurrentChanged(int index)
{
    m_tabName->setText(index >= 0 ? m_tabs->tabText(index) : QString());
    emit currentPageChanged(page(index));
}
