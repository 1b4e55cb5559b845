#include "componentsdock.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QSet>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/project.h"
#include "itemrenderer.h"

namespace {

constexpr int thumbnailEdge = 32;
constexpr int itemRole = Qt::UserRole + 1;

} // namespace

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
    m_list->setIconSize(QSize(thumbnailEdge, thumbnailEdge));
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_list, &QWidget::customContextMenuRequested, this,
        [this](const QPoint& pos) { emit contextMenuRequested(m_list->viewport()->mapToGlobal(pos)); });

    m_onlyActiveTab->setObjectName(QStringLiteral("rbOnlyActiveTab"));
    m_onlyActiveTab->setChecked(true);
    m_fromAllTabs->setObjectName(QStringLiteral("rbFromAllTabs"));
    m_filter->setObjectName(QStringLiteral("leFilter"));
    m_filter->setPlaceholderText(tr("Filter items by name"));
    m_filter->setClearButtonEnabled(true);
    connect(m_onlyActiveTab, &QRadioButton::toggled, this, &ComponentsDock::refresh);
    connect(m_filter, &QLineEdit::textChanged, this, &ComponentsDock::refresh);

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

void ComponentsDock::setProject(Project* project)
{
    if (m_project)
        disconnect(m_project, nullptr, this, nullptr);
    m_project = project;
    for (CollectionTab* tab : project->tabs())
        watchTab(tab);
    connect(project, &Project::tabAdded, this, [this](CollectionTab* tab) {
        watchTab(tab);
        refresh();
    });
    connect(project, &Project::tabRemoved, this, [this](CollectionTab* tab) {
        disconnect(tab, nullptr, this, nullptr);
        // The tab's items die with it, right after this signal: no row may point at them.
        for (QSciImage* item : tab->items())
            delete m_rows.take(item);
        QMetaObject::invokeMethod(this, &ComponentsDock::refresh, Qt::QueuedConnection);
    });
    connect(project, &Project::currentTabChanged, this, [this] {
        if (usesOnlyActiveTab())
            refresh();
    });
    refresh();
}

void ComponentsDock::watchTab(QObject* tab)
{
    auto* collection = qobject_cast<CollectionTab*>(tab);
    connect(collection, &CollectionTab::itemAdded, this, &ComponentsDock::refresh);
    connect(collection, &CollectionTab::itemRemoved, this, &ComponentsDock::refresh);
    connect(collection, &CollectionTab::orderChanged, this, &ComponentsDock::refresh);
}

bool ComponentsDock::usesOnlyActiveTab() const
{
    return m_onlyActiveTab->isChecked();
}

QList<QSciImage*> ComponentsDock::listedItems() const
{
    QList<QSciImage*> items;
    for (int i = 0; i < m_list->count(); ++i) {
        if (QSciImage* item = itemOf(m_list->item(i)))
            items.append(item);
    }
    return items;
}

QSciImage* ComponentsDock::itemOf(const QListWidgetItem* row) const
{
    if (!row)
        return nullptr;
    auto* item = static_cast<QSciImage*>(row->data(itemRole).value<void*>());
    return m_rows.value(item) == row ? item : nullptr;
}

void ComponentsDock::applyListSelection()
{
    for (auto it = m_rows.cbegin(); it != m_rows.cend(); ++it)
        const_cast<QSciImage*>(it.key())->setSelected(it.value()->isSelected());
}

void ComponentsDock::refresh()
{
    for (const QPointer<QSciImage>& item : qAsConst(m_watched)) {
        if (item)
            disconnect(item, nullptr, this, nullptr);
    }
    m_watched.clear();
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    m_rows.clear();
    if (!m_project) {
        emit listChanged();
        return;
    }
    const QList<QSciImage*> items = usesOnlyActiveTab()
        ? (m_project->currentTab() ? m_project->currentTab()->items() : QList<QSciImage*>())
        : m_project->allItems();
    const QString pattern = m_filter->text().trimmed();
    for (QSciImage* item : items) {
        if (!pattern.isEmpty() && !item->name().contains(pattern, Qt::CaseInsensitive))
            continue;
        auto* row = new QListWidgetItem(m_list);
        row->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsEditable);
        row->setData(itemRole, QVariant::fromValue(static_cast<void*>(item)));
        m_rows.insert(item, row);
        fillRow(row, item);
        connect(item, &QSciImage::contentChanged, this, [this, item](QSciImage::Parts parts) {
            if (parts & (QSciImage::PicturePart | QSciImage::ZPart | QSciImage::DisplayPart))
                m_thumbnails.remove(item->serial());
            updateRow(item);
        });
    }
    // Every item, listed or not: a selection made in a view counts for the menus either way.
    const QList<QSciImage*> all = m_project->allItems();
    for (QSciImage* item : all) {
        m_watched.append(item);
        connect(item, &QSciImage::placeChanged, this, [this, item] {
            updateRow(item);
            emit itemStateChanged();
        });
    }
    // Thumbnails of items that left the project go; those of other tabs stay for the next switch.
    QSet<quint64> alive;
    for (const QSciImage* item : all)
        alive.insert(item->serial());
    for (auto it = m_thumbnails.begin(); it != m_thumbnails.end();)
        it = alive.contains(it.key()) ? std::next(it) : m_thumbnails.erase(it);
    emit listChanged();
    emit itemStateChanged();
}

void ComponentsDock::updateRow(QSciImage* item)
{
    QListWidgetItem* row = m_rows.value(item);
    if (!row)
        return;
    const QSignalBlocker blocker(m_list);
    fillRow(row, item);
}

void ComponentsDock::fillRow(QListWidgetItem* row, QSciImage* item)
{
    if (row->text() != item->name())
        row->setText(item->name());
    row->setIcon(thumbnail(item));
    row->setCheckState(item->isVisible() ? Qt::Checked : Qt::Unchecked);
    row->setToolTip(
        tr("%1 on \"%2\": %3 x %4 points").arg(item->name(), item->tabText()).arg(item->width()).arg(item->height()));
    if (row->isSelected() != item->isSelected())
        row->setSelected(item->isSelected());
}

QIcon ComponentsDock::thumbnail(QSciImage* item)
{
    auto it = m_thumbnails.find(item->serial());
    if (it == m_thumbnails.end())
        it = m_thumbnails.insert(
            item->serial(), QIcon(QPixmap::fromImage(ItemRenderer::thumbnail(*item, thumbnailEdge))));
    return it.value();
}
