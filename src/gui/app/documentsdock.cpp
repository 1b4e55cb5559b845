#include "documentsdock.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "outputpage.h"
#include "searchreplacebar.h"

namespace {

// The help viewer is not built yet: the buttons name their page and wait for it.
QPushButton* helpButton(QWidget* page, const char* helpPage)
{
    auto* help = new QPushButton(DocumentsDock::tr("Help"), page);
    help->setObjectName(QLatin1String("pbHelp_") + page->objectName());
    help->setProperty("helpPage", QLatin1String(helpPage));
    help->setEnabled(false);
    return help;
}

} // namespace

DocumentsDock::DocumentsDock(QWidget* parent)
    : QDockWidget(tr("Documents"), parent)
    , m_pages(new QTabWidget)
    , m_output(new OutputPage)
    , m_search(new SearchReplaceBar)
{
    setObjectName(QStringLiteral("dockScripting"));
    m_pages->setObjectName(QStringLiteral("outputTabs"));
    m_scripts = buildPlainPage("tabScripts", nullptr);
    m_tables = buildTablesPage();
    m_texts = buildPlainPage("tabTexts", "Textpage.html");
    m_pages->addTab(m_output, tr("Output"));
    m_pages->addTab(m_scripts, tr("Scripts"));
    m_pages->addTab(m_tables, tr("Tables"));
    m_pages->addTab(m_texts, tr("Texts"));

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_search);
    setWidget(content);
}

QWidget* DocumentsDock::buildPlainPage(const char* objectName, const char* helpPage)
{
    auto* page = new QWidget;
    page->setObjectName(QLatin1String(objectName));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addStretch(1);
    if (helpPage) {
        auto* row = new QHBoxLayout;
        row->addStretch(1);
        row->addWidget(helpButton(page, helpPage));
        layout->addLayout(row);
    }
    return page;
}

QWidget* DocumentsDock::buildTablesPage()
{
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("tabTables"));

    m_rowCount = new QSpinBox(page);
    m_rowCount->setObjectName(QStringLiteral("sbTableSizeRowCount"));
    m_rowCount->setRange(1, 1000000);
    m_rowCount->setValue(100);
    m_colCount = new QSpinBox(page);
    m_colCount->setObjectName(QStringLiteral("sbTableSizeColCount"));
    m_colCount->setRange(1, 10000);
    m_colCount->setValue(20);
    m_onlySelectedCells = new QCheckBox(tr("only selected cells"), page);
    m_onlySelectedCells->setObjectName(QStringLiteral("cbApplyFormulaToSelectedCells"));
    m_onlySelectedCells->setChecked(true);

    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("New tables:"), page));
    row->addWidget(m_rowCount);
    row->addWidget(new QLabel(tr("rows"), page));
    row->addWidget(m_colCount);
    row->addWidget(new QLabel(tr("columns"), page));
    row->addSpacing(12);
    row->addWidget(m_onlySelectedCells);
    row->addStretch(1);
    row->addWidget(helpButton(page, "Tablespage.html"));

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addStretch(1);
    layout->addLayout(row);
    return page;
}

void DocumentsDock::fillPage(QWidget* page, QWidget* content)
{
    auto* pageLayout = qobject_cast<QVBoxLayout*>(page->layout());
    if (!pageLayout)
        return;
    for (int i = 0; i < pageLayout->count(); ++i) {
        if (pageLayout->itemAt(i)->spacerItem()) {
            delete pageLayout->takeAt(i);
            break;
        }
    }
    pageLayout->insertWidget(0, content, 1);
}
