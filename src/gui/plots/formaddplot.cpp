#include "formaddplot.h"

#include "core/tables/qscisimpletablemodel.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QListWidget>

FormAddPlot::FormAddPlot(const TableList& tables, QWidget* parent)
    : QDialog(parent)
    , m_tables(tables)
    , m_table(new QComboBox)
    , m_x(new QComboBox)
    , m_y(new QListWidget)
    , m_name(new QLineEdit)
{
    setObjectName(QStringLiteral("FormAddPlot"));
    setWindowTitle(tr("Add plot"));
    m_table->setObjectName(QStringLiteral("cbTable"));
    m_x->setObjectName(QStringLiteral("cbXColumn"));
    m_y->setObjectName(QStringLiteral("lwYColumns"));
    m_name->setObjectName(QStringLiteral("lePlotName"));
    m_y->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (const auto& table : tables)
        m_table->addItem(table.first);
    connect(m_table, qOverload<int>(&QComboBox::currentIndexChanged), this, &FormAddPlot::fillColumns);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* form = new QFormLayout(this);
    form->addRow(tr("Table:"), m_table);
    form->addRow(tr("x column:"), m_x);
    form->addRow(tr("y columns:"), m_y);
    form->addRow(tr("Name:"), m_name);
    form->addRow(buttons);
    fillColumns();
}

void FormAddPlot::fillColumns()
{
    m_x->clear();
    m_y->clear();
    const QSciSimpleTableModel* table = m_tables.value(m_table->currentIndex()).second;
    if (!table)
        return;
    for (int c = 0; c < table->columns(); ++c) {
        const QString title = table->headerData(c, Qt::Horizontal).toString();
        m_x->addItem(title);
        m_y->addItem(title);
    }
    if (table->columns() > 1)
        m_y->item(1)->setSelected(true);
}

QVector<Plot2dCurve> FormAddPlot::curves() const
{
    const auto& entry = m_tables.value(m_table->currentIndex());
    if (!entry.second)
        return {};
    QList<int> ys;
    for (int row = 0; row < m_y->count(); ++row)
        if (m_y->item(row)->isSelected())
            ys.append(row);
    return curvesOf(*entry.second, entry.first, m_x->currentIndex(), ys, m_name->text());
}

QVector<Plot2dCurve> FormAddPlot::curvesOf(const QSciSimpleTableModel& table, const QString& tableTitle, int xColumn,
    const QList<int>& yColumns, const QString& name)
{
    QVector<Plot2dCurve> result;
    const auto title = [&table](int c) { return table.headerData(c, Qt::Horizontal).toString(); };
    for (int y : yColumns) {
        if (xColumn < 0 || xColumn >= table.columns() || y < 0 || y >= table.columns())
            continue;
        Plot2dCurve curve;
        curve.plotName = !name.isEmpty() ? (yColumns.size() > 1 ? name + QLatin1Char(' ') + title(y) : name)
                                         : tableTitle + QLatin1Char(':') + title(y);
        curve.variables = QStringList { title(xColumn), title(y) };
        for (int r = 0; r < table.rows(); ++r) {
            bool okX = false, okY = false;
            const double xv = QSciSimpleTableModel::toNumber(table.cellText(r, xColumn), &okX);
            const double yv = QSciSimpleTableModel::toNumber(table.cellText(r, y), &okY);
            if (okX && okY)
                curve.values << xv << yv;
        }
        result.append(curve);
    }
    return result;
}
