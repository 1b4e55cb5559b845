#include "formroughness.h"

#include "core/items/qsciimage.h"
#include "core/processing/radialspectra.h"
#include "core/processing/roughness.h"
#include "gui/plots/formplot.h"

#include <QCheckBox>
#include <QHBoxLayout>
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
    auto* psd = new QPushButton(tr("PSD plot"), this);
    psd->setObjectName(QStringLiteral("pbPsdPlot"));
    auto* acf = new QPushButton(tr("ACF plot"), this);
    acf->setObjectName(QStringLiteral("pbAcfPlot"));
    auto* table = new QPushButton(tr("To table"), this);
    table->setObjectName(QStringLiteral("pbRoughnessTable"));
    m_tableButton = table;
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(again);
    buttons->addWidget(psd);
    buttons->addWidget(acf);
    buttons->addWidget(table);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_masked);
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    connect(again, &QPushButton::clicked, this, &FormRoughness::evaluate);
    connect(psd, &QPushButton::clicked, this, [this] { showRadialPlot(true); });
    connect(acf, &QPushButton::clicked, this, [this] { showRadialPlot(false); });
    connect(table, &QPushButton::clicked, this, &FormRoughness::addResultTable);
    connect(m_masked, &QCheckBox::toggled, this, &FormRoughness::evaluate);
    resize(380, 560);
}

void FormRoughness::showFor(QSciImage* item)
{
    m_item = item;
    m_tableButton->setVisible(bool(addTable));
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

void FormRoughness::showRadialPlot(bool psd)
{
    if (!m_item)
        return;
    const QSciImage::SciValues& sci = m_item->sciValues();
    const double dx = sci.xUnitPerPixel > 0 ? sci.xUnitPerPixel : 1, dy = sci.yUnitPerPixel > 0 ? sci.yUnitPerPixel : 1;
    const QVector<double> z = m_item->zMatrix();
    const RadialSpectra::Curve values = psd
        ? RadialSpectra::powerSpectralDensity(z.constData(), m_item->width(), m_item->height(), dx, dy)
        : RadialSpectra::autocorrelation(z.constData(), m_item->width(), m_item->height(), dx, dy);
    if (values.x.size() < 2)
        return emit messageRequested(windowTitle(), tr("The item is too small for a radial average."));
    const QString length = sci.xUnit.isEmpty() ? QStringLiteral("px") : sci.xUnit;
    const QString zUnit = sci.zUnit.isEmpty() ? QStringLiteral("z") : sci.zUnit;
    const QString xLabel = psd ? tr("k [1/%1]").arg(length) : tr("lag [%1]").arg(length);
    const QString yLabel = psd ? tr("PSD [%1^2 %2^2]").arg(zUnit, length) : tr("ACF [%1^2]").arg(zUnit);
    Plot2dCurve curve;
    curve.plotName = m_item->name();
    curve.variables = QStringList { xLabel, yLabel };
    for (int i = 0; i < values.x.size(); ++i)
        // The zero frequency carries only the removed mean: a log axis cannot show it.
        if (!psd || i > 0)
            curve.values << values.x.at(i) << values.y.at(i);
    Plot2dDocument document;
    const QString title = psd ? tr("Radial power spectral density of %1").arg(m_item->name())
                              : tr("Radial autocorrelation of %1").arg(m_item->name());
    document.curves = { curve };
    document.setSetting(QStringLiteral("title"), title);
    document.setSetting(QStringLiteral("xLabel"), xLabel);
    document.setSetting(QStringLiteral("yLabel"), yLabel);
    document.setFlag(QStringLiteral("legendCheck"), false);
    if (psd)
        document.setScale(QLatin1Char('y'), Plot2dDocument::Scale::Log10);
    auto* window = new FormPlot(parentWidget());
    window->setWindowTitle(title);
    window->setDocument(document);
    window->rescale();
    window->show();
    window->raise();
}

void FormRoughness::addResultTable()
{
    if (!m_item || !addTable || m_table->rowCount() == 0)
        return;
    QVector<QStringList> rows { { tr("Parameter"), tr("Value"), tr("Unit") } };
    for (int row = 0; row < m_table->rowCount(); ++row)
        rows.append({ m_table->item(row, 0)->text(), m_table->item(row, 1)->text(), m_table->item(row, 2)->text() });
    addTable(rows, tr("Roughness of %1").arg(m_item->name()));
}
