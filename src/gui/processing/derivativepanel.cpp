#include "derivativepanel.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QRadioButton* radio(const QString& text, const QString& tip, const char* name, QWidget* parent)
{
    auto* button = new QRadioButton(text, parent);
    button->setToolTip(tip);
    button->setObjectName(QLatin1String(name));
    return button;
}

QSpinBox* spin(int low, int high, const char* name, const QString& tip, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setRange(low, high);
    box->setObjectName(QLatin1String(name));
    box->setToolTip(tip);
    return box;
}

} // namespace

DerivativePanel::DerivativePanel(QWidget* parent)
    : EffectPanel(parent)
    , m_gradient(radio(tr("Gradient"), tr("Edge detection"), "rbGradient", this))
    , m_directional(
          radio(tr("Directional derivative"), tr("Structural emphasis and shading"), "rbDirectionalDerivative", this))
    , m_points(spin(1, 999, "sbNumberOfPoints", tr("Number of averaged neighbour data points"), this))
    , m_order(spin(1, 99, "sbOrder", tr("Number of successive executions"), this))
    , m_origin(spin(-99, 99, "sbAddSubstractOrigin", tr("Add / substract origin data"), this))
    , m_border(new QComboBox(this))
    , m_xy(radio(tr("X and y direction"), tr("Detect row- and column-wise"), "rbDirectionXY", this))
    , m_x(radio(tr("X direction"), tr("Detect column-wise"), "rbDirectionX", this))
    , m_y(radio(tr("Y direction"), tr("Detect row-wise"), "rbDirectionY", this))
    , m_angle(new QLabel(this))
    , m_whole(radio(tr("Whole image"), tr("Apply function to entire image"), "rbWholeImage", this))
    , m_selected(radio(
          tr("Selected area(s)"), tr("Apply function to previously selected data points"), "rbSelectedAreas", this))
{
    setObjectName(QStringLiteral("DerivativePanel"));
    m_border->setObjectName(QStringLiteral("cbBorderPixelHandling"));
    m_border->addItems({ tr("Replicate"), tr("Wrap around") });
    m_angle->setObjectName(QStringLiteral("lbShadingDirection"));

    const auto collectNow = [this] { collect(); };
    QWidget* modeBox = choiceGroup(tr("Mode"), { m_gradient, m_directional }, collectNow);

    auto* form = new QFormLayout;
    form->addRow(tr("Number of points"), m_points);
    form->addRow(tr("Derivation order"), m_order);
    form->addRow(tr("Add / substract origin data"), m_origin);
    form->addRow(tr("Border pixel handling"), m_border);

    QWidget* directionBox = choiceGroup(tr("Gradient direction"), { m_xy, m_x, m_y }, collectNow);

    auto* shadingBox = new QGroupBox(tr("Shading direction"), this);
    auto* shadingLayout = new QHBoxLayout(shadingBox);
    auto* decrease = new QPushButton(tr("Decrease angle"), shadingBox);
    decrease->setObjectName(QStringLiteral("pbDecreaseAngle"));
    auto* increase = new QPushButton(tr("Increase angle"), shadingBox);
    increase->setObjectName(QStringLiteral("pbIncreaseAngle"));
    shadingLayout->addWidget(decrease);
    shadingLayout->addWidget(m_angle, 1, Qt::AlignCenter);
    shadingLayout->addWidget(increase);

    QWidget* regionBox = choiceGroup(tr("Region"), { m_whole, m_selected }, collectNow);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(modeBox);
    layout->addLayout(form);
    layout->addWidget(directionBox);
    layout->addWidget(shadingBox);
    layout->addWidget(regionBox);
    layout->addStretch(1);

    for (QSpinBox* box : { m_points, m_order, m_origin })
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &DerivativePanel::collect);
    connect(m_border, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &DerivativePanel::collect);
    connect(decrease, &QPushButton::clicked, this, [this] { stepAngle(-1); });
    connect(increase, &QPushButton::clicked, this, [this] { stepAngle(1); });
    showOptions(m_effect.options());
}

void DerivativePanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void DerivativePanel::showOptions(const QSciDerivative::Options& o)
{
    m_showing = true;
    (o.mode == QSciDerivative::Mode::Gradient ? m_gradient : m_directional)->setChecked(true);
    m_points->setValue(o.points);
    m_order->setValue(o.order);
    m_origin->setValue(o.originFactor);
    m_border->setCurrentIndex(o.border == QSciDerivative::Border::Wrap ? 1 : 0);
    (o.xDirection && o.yDirection ? m_xy : o.xDirection ? m_x : m_y)->setChecked(true);
    m_angle->setText(tr("%1°").arg(o.angle));
    (o.selectionOnly ? m_selected : m_whole)->setChecked(true);
    const bool gradient = o.mode == QSciDerivative::Mode::Gradient;
    for (QWidget* w : { static_cast<QWidget*>(m_xy), static_cast<QWidget*>(m_x), static_cast<QWidget*>(m_y) })
        w->setEnabled(gradient);
    m_angle->parentWidget()->setEnabled(!gradient);
    m_showing = false;
}

void DerivativePanel::collect()
{
    if (m_showing)
        return;
    QSciDerivative::Options o = m_effect.options();
    o.mode = m_gradient->isChecked() ? QSciDerivative::Mode::Gradient : QSciDerivative::Mode::Directional;
    o.points = m_points->value();
    o.order = m_order->value();
    o.originFactor = m_origin->value();
    o.border = m_border->currentIndex() == 1 ? QSciDerivative::Border::Wrap : QSciDerivative::Border::Replicate;
    o.xDirection = m_xy->isChecked() || m_x->isChecked();
    o.yDirection = m_xy->isChecked() || m_y->isChecked();
    o.selectionOnly = m_selected->isChecked();
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}

void DerivativePanel::stepAngle(int step)
{
    const QVector<int>& angles = QSciDerivative::angles();
    QSciDerivative::Options o = m_effect.options();
    const int at = std::max(0, angles.indexOf(o.angle));
    o.angle = angles.at((at + step + angles.size()) % angles.size());
    m_effect.setOptions(o);
    showOptions(o);
    emit changed();
}
