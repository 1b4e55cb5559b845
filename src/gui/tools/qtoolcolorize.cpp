#include "qtoolcolorize.h"

#include "toolcolorbuttons.h"

#include "core/items/picturecolorize.h"

#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

QToolColorize::QToolColorize(QWidget* parent)
    : QToolBrush(QStringLiteral("COLORIZE"), parent)
    , m_strength(new QSpinBox)
{
    m_strength->setObjectName(QStringLiteral("sbStrength"));
    m_strength->setRange(1, 100);
    m_strength->setValue(100);
    m_strength->setSuffix(QStringLiteral(" %"));
    panelLayout()->insertWidget(0, new ToolColorButtons(this));
    panelLayout()->addWidget(new QLabel(tr("Strength:")));
    panelLayout()->addWidget(m_strength);
    panelLayout()->addStretch(1);
    watchPanel();
}

int QToolColorize::strengthPercent() const
{
    return m_strength->value();
}

void QToolColorize::setStrengthPercent(int percent)
{
    m_strength->setValue(percent);
}

QColor QToolColorize::trailColor() const
{
    return colorFor(strokeButton());
}

void QToolColorize::applyStroke(const BrushFootprint& footprint)
{
    const QColor color = colorFor(strokeButton());
    const double strength = strengthPercent() / 100.0;
    applyToItem(PictureColorize::operationText(), QSciImage::PicturePart,
        [&](QSciImage& target) { PictureColorize::apply(target, footprint, color, strength); });
}
