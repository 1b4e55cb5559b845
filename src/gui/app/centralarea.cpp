#include "centralarea.h"

#include <QCoreApplication>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "collectiontabpage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
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

    returnFocusOnEnter(m_tabName);
    connect(m_rename, &QPushButton::clicked, this, [this] { renameCurrentTab(m_tabName->text()); });
    connect(m_tabName, &QLineEdit::returnPressed, this, [this] { renameCurrentTab(m_tabName->text()); });
    connect(m_tabs, &QTabWidget::currentChanged, this, &CentralArea::onCurrentChanged);
}

void CentralArea::setProject(Project* project)
{
    if (m_project)
        disconnect(m_project, nullptr, this, nullptr);
    m_following = true;
    while (m_tabs->count() > 0) {
        QWidget* page = m_tabs->widget(0);
        m_tabs->removeTab(0);
        delete page;
    }
    m_project = project;
    for (CollectionTab* tab : project->tabs())
        addPage(tab);
    m_following = false;
    connect(project, &Project::tabAdded, this, &CentralArea::addPage);
    connect(project, &Project::tabRemoved, this, &CentralArea::removePage);
    connect(project, &Project::currentTabChanged, this, &CentralArea::onProjectCurrentChanged);
    onProjectCurrentChanged(project->currentIndex());
}

void CentralArea::focusImageArea()
{
    if (CollectionTabPage* page = currentPage())
        page->view()->setFocus(Qt::OtherFocusReason);
}

void CentralArea::returnFocusOnEnter(QWidget* field)
{
    field->installEventFilter(this);
}

void CentralArea::passMenuKeys(QWidget* widget)
{
    m_menuKeyWidgets.append(widget);
    widget->installEventFilter(this);
}

bool CentralArea::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && m_menuKeyWidgets.contains(watched)) {
        auto* keyEvent = static_cast<QKeyEvent*>(event);
        const bool menuKey = keyEvent->key() == Qt::Key_Menu
            || (keyEvent->key() == Qt::Key_F10 && (keyEvent->modifiers() & Qt::ShiftModifier));
        CollectionTabPage* page = currentPage();
        if (menuKey && page) {
            // Just after picking a tool the focus is still in the list; the keys mean the items all the same.
            focusImageArea();
            QCoreApplication::sendEvent(page->view(), event);
            return true;
        }
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        // After the field has taken the Enter itself.
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            QTimer::singleShot(0, this, &CentralArea::focusImageArea);
    }
    return QWidget::eventFilter(watched, event);
}

CollectionTabPage* CentralArea::currentPage() const
{
    return qobject_cast<CollectionTabPage*>(m_tabs->currentWidget());
}

CollectionTabPage* CentralArea::page(int index) const
{
    return qobject_cast<CollectionTabPage*>(m_tabs->widget(index));
}

CollectionTabPage* CentralArea::pageFor(const CollectionTab* tab) const
{
    for (int i = 0; i < m_tabs->count(); ++i) {
        if (page(i)->tab() == tab)
            return page(i);
    }
    return nullptr;
}

QList<CollectionTabPage*> CentralArea::pages() const
{
    QList<CollectionTabPage*> all;
    for (int i = 0; i < m_tabs->count(); ++i)
        all.append(page(i));
    return all;
}

CollectionTabPage* CentralArea::addTab(const QString& name)
{
    if (!m_project)
        return nullptr;
    CollectionTab* tab = m_project->addTab(name.trimmed());
    m_project->setCurrentIndex(m_project->indexOf(tab));
    return pageFor(tab);
}

bool CentralArea::renameCurrentTab(const QString& name)
{
    const QString title = name.trimmed();
    CollectionTabPage* current = currentPage();
    if (title.isEmpty() || !current || !current->tab())
        return false;
    current->tab()->setName(title);
    return true;
}

void CentralArea::setToolMouseSink(ToolMouseSink* sink)
{
    m_sink = sink;
    for (CollectionTabPage* p : pages())
        p->setToolMouseSink(sink);
}

void CentralArea::setItemsMovable(bool movable)
{
    m_movable = movable;
    for (CollectionTabPage* p : pages())
        p->setItemsMovable(movable);
}

void CentralArea::addPage(CollectionTab* tab)
{
    auto* page = new CollectionTabPage(tab, m_tabs);
    page->setToolMouseSink(m_sink);
    page->setItemsMovable(m_movable);
    connect(page, &CollectionTabPage::contextMenuRequested, this, &CentralArea::contextMenuRequested);
    connect(page, &CollectionTabPage::zoomStepRequested, this, &CentralArea::zoomStepRequested);
    connect(page, &CollectionTabPage::itemsDragged, this, &CentralArea::itemsDragged);
    connect(page, &CollectionTabPage::pointHovered, this, &CentralArea::pointHovered);
    connect(tab, &CollectionTab::renamed, this, [this, page](const QString& name) {
        const int index = m_tabs->indexOf(page);
        m_tabs->setTabText(index, name);
        if (index == m_tabs->currentIndex())
            m_tabName->setText(name);
    });
    const bool following = m_following;
    m_following = true;
    m_tabs->insertTab(m_project->indexOf(tab), page, tab->name());
    m_following = following;
}

void CentralArea::removePage(CollectionTab* tab)
{
    CollectionTabPage* doomed = pageFor(tab);
    if (!doomed)
        return;
    const bool following = m_following;
    m_following = true;
    m_tabs->removeTab(m_tabs->indexOf(doomed));
    m_following = following;
    delete doomed;
}

void CentralArea::onCurrentChanged(int index)
{
    m_tabName->setText(index >= 0 ? m_tabs->tabText(index) : QString());
    if (!m_following && m_project)
        m_project->setCurrentIndex(index);
    emit currentPageChanged(page(index));
}

void CentralArea::onProjectCurrentChanged(int index)
{
    if (index < 0 || index >= m_tabs->count() || index == m_tabs->currentIndex())
        return;
    m_following = true;
    m_tabs->setCurrentIndex(index);
    m_following = false;
}
