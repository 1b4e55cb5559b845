#include "planecorrectionpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

PlaneCorrectionPanel::PlaneCorrectionPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_method(new QComboBox(this))
    , m_order(new QSpinBox(this))
    , m_masked(new QCheckBox(tr("Fit to the selected points only"), this))
    , m_pointsBox(new QGroupBox(tr("Three points (column, row from the bottom; or click the original)"), this))
{
    setObjectName(QStringLiteral("PlaneCorrectionPanel"));
    m_method->setObjectName(QStringLiteral("cbLevellingMethod"));
    for (auto method : { QSciLevelling::Method::Plane, QSciLevelling::Method::Polynomial,
             QSciLevelling::Method::ThreePoints, QSciLevelling::Method::Facet, QSciLevelling::Method::ZeroMinimum })
        m_method->addItem(QSciLevelling::methodName(method));
    m_order->setObjectName(QStringLiteral("sbPolynomialOrder"));
    m_order->setRange(1, 4);
    m_masked->setObjectName(QStringLiteral("cbFitToSelection"));
    m_masked->setToolTip(tr("The background is fitted to the selected points and taken away from every point"));

    auto* grid = new QGridLayout(m_pointsBox);
    for (int k = 0; k < 3; ++k) {
        grid->addWidget(new QLabel(tr("Point %1").arg(k + 1), m_pointsBox), k, 0);
        for (int c = 0; c < 2; ++c) {
            QSpinBox*& box = m_points[2 * k + c];
            box = new QSpinBox(m_pointsBox);
            box->setObjectName(
                QStringLiteral("sbPoint%1%2").arg(k + 1).arg(c == 0 ? QLatin1Char('x') : QLatin1Char('y')));
            box->setRange(0, 1 << 20);
            grid->addWidget(box, k, c + 1);
            connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &PlaneCorrectionPanel::collect);
        }
    }

    auto* form = new QFormLayout;
    form->addRow(tr("Method"), m_method);
    form->addRow(tr("Polynomial order"), m_order);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_masked);
    layout->addWidget(m_pointsBox);
    layout->addStretch(1);

    connect(m_method, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &PlaneCorrectionPanel::collect);
    connect(m_order, QOverload<int>::of(&QSpinBox::valueChanged), this, &PlaneCorrectionPanel::collect);
    connect(m_masked, &QCheckBox::toggled, this, &PlaneCorrectionPanel::collect);
    showOptions(m_effect.options());
}

QString PlaneCorrectionPanel::title()
{
    return tr("Plane correction");
}

void PlaneCorrectionPanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void PlaneCorrectionPanel::showOptions(const QSciLevelling::Options& o)
{
    m_showing = true;
    m_method->setCurrentIndex(int(o.method));
    m_order->setValue(o.order);
    m_order->setEnabled(o.method == QSciLevelling::Method::Polynomial);
    m_masked->setChecked(o.masked);
    m_masked->setEnabled(o.method != QSciLevelling::Method::ThreePoints);
    m_pointsBox->setEnabled(o.method == QSciLevelling::Method::ThreePoints);
    for (int k = 0; k < 3; ++k) {
        m_points[2 * k]->setValue(o.points[k].x());
        m_points[2 * k + 1]->setValue(o.points[k].y());
    }
    m_showing = false;
}

void PlaneCorrectionPanel::collect()
{
    if (m_showing)
        return;
    QSciLevelling::Options o = m_effect.options();
    o.method = QSciLevelling::Method(m_method->currentIndex());
    o.order = m_order->value();
    o.masked = m_masked->isChecked();
    for (int k = 0; k < 3; ++k)
        o.points[k] = QPoint(m_points[2 * k]->value(), m_points[2 * k + 1]->value());
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}

void PlaneCorrectionPanel::pickPoint(const QPoint& point)
{
    QSciLevelling::Options o = m_effect.options();
    if (o.method != QSciLevelling::Method::ThreePoints)
        return;
    o.points[m_nextPoint] = point;
    m_nextPoint = (m_nextPoint + 1) % 3;
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}
