#include "formroughness.h"

#include "core/items/qsciimage.h"
#include "core/processing/roughness.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

FormRoughness::FormRoughness(QWidget* parent)
    : QDialog(parent)
    , m_masked(new QCheckBox(tr("Only the selected points"), this))
    , m_table(new QTableWidget(0, 3, this))
{
    setObjectName(QStringLiteral("FormRoughness"));
    setWindowTitle(tr("Roughness analysis"));
    m_masked->setObjectName(QStringLiteral("cbRoughnessMasked"));
    m_table->setObjectName(QStringLiteral("twRoughness"));
    m_table->setHorizontalHeaderLabels({ tr("Parameter"), tr("Value"), tr("Unit") });
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto* again = new QPushButton(tr("Evaluate"), this);
    again->setObjectName(QStringLiteral("pbEvaluate"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_masked);
    layout->addWidget(m_table);
    layout->addWidget(again);
    connect(again, &QPushButton::clicked, this, &FormRoughness::evaluate);
    connect(m_masked, &QCheckBox::toggled, this, &FormRoughness::evaluate);
    resize(380, 560);
}

void FormRoughness::showFor(QSciImage* item)
{
    m_item = item;
    show();
    raise();
    evaluate();
}

void FormRoughness::evaluate()
{
    if (!m_item)
        return;
    Roughness::Result result;
    QString message;
    if (!Roughness::evaluate(*m_item, m_masked->isChecked(), &result, &message)) {
        emit messageRequested(windowTitle(), message);
        return;
    }
    const QString unit = m_item->sciValues().zUnit;
    const QList<QPair<QString, double>> values = result.named();
    m_table->setRowCount(values.size());
    QString html = tr("<b>Roughness of %1</b> (%2 points)<br>").arg(m_item->name().toHtmlEscaped()).arg(result.points);
    for (int row = 0; row < values.size(); ++row) {
        const QString name = values.at(row).first;
        const QString rowUnit = name == QLatin1String("Sdr") ? QStringLiteral("%")
            : name == QLatin1String("Ssk") || name == QLatin1String("Sku") || name == QLatin1String("Sdq") ? QString()
                                                                                                           : unit;
        const QString value = QString::number(values.at(row).second, 'g', 6);
        m_table->setItem(row, 0, new QTableWidgetItem(name));
        m_table->setItem(row, 1, new QTableWidgetItem(value));
        m_table->setItem(row, 2, new QTableWidgetItem(rowUnit));
        html += name + QStringLiteral(" = ") + value + QLatin1Char(' ') + rowUnit.toHtmlEscaped()
            + QStringLiteral("<br>");
    }
    emit outputRequested(html);
}
