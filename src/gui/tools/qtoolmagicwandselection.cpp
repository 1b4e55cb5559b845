#include "qtoolmagicwandselection.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QVBoxLayout>

QToolMagicWandSelection::QToolMagicWandSelection(QWidget* parent)
    : QToolSelection(QStringLiteral("MAGICWAND_SELECTION"), parent)
    , m_tolerance(new QDoubleSpinBox)
    , m_contiguous(new QCheckBox(tr("Contiguous")))
{
    m_tolerance->setObjectName(QStringLiteral("dsbTolerance"));
    m_tolerance->setRange(0, 100);
    m_tolerance->setDecimals(2);
    m_tolerance->setValue(5);
    m_tolerance->setSuffix(QStringLiteral(" %"));
    m_tolerance->setToolTip(tr("Largest z difference to the clicked point, in percent of the item's z range."));
    m_contiguous->setObjectName(QStringLiteral("cbContiguous"));
    m_contiguous->setChecked(true);
    m_contiguous->setToolTip(tr("Off: every point of the item within the tolerance."));
    panelLayout()->addWidget(new QLabel(tr("Z tolerance:")));
    panelLayout()->addWidget(m_tolerance);
    panelLayout()->addWidget(m_contiguous);
    finishPanel();
}

double QToolMagicWandSelection::tolerancePercent() const
{
    return m_tolerance->value();
}

void QToolMagicWandSelection::setTolerancePercent(double percent)
{
    m_tolerance->setValue(percent);
}

bool QToolMagicWandSelection::isContiguous() const
{
    return m_contiguous->isChecked();
}

void QToolMagicWandSelection::setContiguous(bool contiguous)
{
    m_contiguous->setChecked(contiguous);
}

void QToolMagicWandSelection::endDrag(const QPoint& point, Qt::MouseButton)
{
    const QPoint seed = point;
    const double percent = tolerancePercent();
    const bool contiguous = isContiguous();
    const MaskEdit::Mode how = gestureMode();
    applyToItem(MaskEdit::magicWandText(), QSciImage::MaskPart, [=](QSciImage& target) {
        double zMin = 0, zMax = 0;
        target.zRange(&zMin, &zMax);
        MaskEdit::applyMagicWand(target, seed, (zMax - zMin) * percent / 100.0, contiguous, how);
    });
}
