#include "qtoolsmoothen.h"

#include "core/processing/brushsmoothing.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QVBoxLayout>

QToolSmoothen::QToolSmoothen(QWidget* parent)
    : QToolBrush(QStringLiteral("SMOOTHEN"), parent)
    , m_smoothing(new QDoubleSpinBox)
{
    m_smoothing->setObjectName(QStringLiteral("dsbSmoothingRadius"));
    m_smoothing->setRange(1, 7);
    m_smoothing->setDecimals(1);
    m_smoothing->setValue(2);
    m_smoothing->setSuffix(tr(" points"));
    panelLayout()->addWidget(new QLabel(tr("Smoothing radius:")));
    panelLayout()->addWidget(m_smoothing);
    panelLayout()->addStretch(1);
    watchPanel();
}

double QToolSmoothen::smoothingRadius() const
{
    return m_smoothing->value();
}

void QToolSmoothen::setSmoothingRadius(double radius)
{
    m_smoothing->setValue(radius);
}

void QToolSmoothen::applyStroke(const BrushFootprint& footprint)
{
    const double radius = smoothingRadius();
    applyZToItem(
        BrushSmoothing::operationText(), [&](QSciImage& target) { BrushSmoothing::apply(target, footprint, radius); });
}
