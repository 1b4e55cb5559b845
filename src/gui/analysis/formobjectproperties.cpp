#include "formobjectproperties.h"

#include "core/analysis/objecttable.h"
#include "core/items/qsciimage.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

/** The few measures the list shows; the details show all. */
const char* const ListLabels[] = { "Object", "Area.pbm [px]", "Circumference.pm [px]", "Compactness.pm", "Z.max" };

} // namespace

FormObjectProperties::FormObjectProperties(QWidget* parent)
    : QDialog(parent)
    , m_list(new QTableWidget(this))
    , m_details(new QTextBrowser(this))
{
    setObjectName(QStringLiteral("FormObjectProperties"));
    setWindowTitle(tr("Object properties"));
    m_list->setObjectName(QStringLiteral("objectList"));
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->verticalHeader()->hide();
    QStringList headers { tr("Visible") };
    for (const char* label : ListLabels)
        headers << QString::fromLatin1(label);
    m_list->setColumnCount(headers.size());
    m_list->setHorizontalHeaderLabels(headers);
    m_list->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* showAll = buttons->addButton(tr("Show all"), QDialogButtonBox::ActionRole);
    QPushButton* hideAll = buttons->addButton(tr("Hide all"), QDialogButtonBox::ActionRole);
    QPushButton* table = buttons->addButton(tr("Measures to table"), QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Close);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_list);
    splitter->addWidget(m_details);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    layout->addWidget(buttons);
    resize(560, 520);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::hide);
    connect(showAll, &QPushButton::clicked, this, [this] { setObjectsVisible({}, true); });
    connect(hideAll, &QPushButton::clicked, this, [this] { setObjectsVisible({}, false); });
    connect(table, &QPushButton::clicked, this, [this] {
        if (m_item)
            emit measuresRequested({ m_item.data() });
    });
    connect(m_list, &QTableWidget::itemSelectionChanged, this, &FormObjectProperties::showDetails);
    connect(m_list, &QTableWidget::cellChanged, this, &FormObjectProperties::onCellChanged);
}

void FormObjectProperties::setItem(QSciImage* item)
{
    if (m_item)
        disconnect(m_item, nullptr, this, nullptr);
    m_item = item;
    if (item)
        connect(item, &QSciImage::contentChanged, this, [this](QSciImage::Parts parts) {
            if (parts & QSciImage::ObjectsPart)
                refresh();
        });
    refresh();
}

void FormObjectProperties::refresh()
{
    m_filling = true;
    const QList<QSciSingleObject> objects = m_item ? m_item->objects() : QList<QSciSingleObject>();
    setWindowTitle(m_item ? tr("Object properties: %1").arg(m_item->name()) : tr("Object properties"));
    m_list->setRowCount(objects.size());
    const QStringList labels = ObjectTable::labels(false);
    for (int row = 0; row < objects.size(); ++row) {
        const QStringList values = ObjectTable::row(objects.at(row), row, *m_item, false);
        auto* visible = new QTableWidgetItem;
        visible->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        visible->setCheckState(objects.at(row).visible ? Qt::Checked : Qt::Unchecked);
        m_list->setItem(row, 0, visible);
        int column = 1;
        for (const char* label : ListLabels)
            m_list->setItem(row, column++, new QTableWidgetItem(values.value(labels.indexOf(QLatin1String(label)))));
    }
    m_filling = false;
    showDetails();
}

void FormObjectProperties::showDetails()
{
    const int row = m_list->currentRow();
    if (!m_item || row < 0 || row >= m_item->objects().size()) {
        m_details->setHtml(tr("Choose an object to see its measures."));
        return;
    }
    const QStringList labels = ObjectTable::labels(false);
    const QStringList values = ObjectTable::row(m_item->objects().at(row), row, *m_item, false);
    QString html = QStringLiteral("<table>");
    for (int i = 0; i < labels.size(); ++i)
        html += QStringLiteral("<tr><td>%1</td><td>%2</td></tr>")
                    .arg(labels.at(i).toHtmlEscaped(), values.value(i).toHtmlEscaped());
    m_details->setHtml(html + QStringLiteral("</table>"));
}

void FormObjectProperties::onCellChanged(int row, int column)
{
    if (m_filling || column != 0)
        return;
    setObjectsVisible({ row }, m_list->item(row, 0)->checkState() == Qt::Checked);
}

void FormObjectProperties::setObjectsVisible(const QList<int>& rows, bool visible)
{
    if (!m_item || !m_project)
        return;
    ItemOperations::apply(*m_project, { m_item.data() }, visible ? tr("Show objects") : tr("Hide objects"),
        QSciImage::ObjectsPart, [&](QSciImage& item) {
            QList<QSciSingleObject> objects = item.objects();
            for (int i = 0; i < objects.size(); ++i)
                if (rows.isEmpty() || rows.contains(i))
                    objects[i].visible = visible;
            item.setObjects(objects);
        });
}
