#include "qtoolfillbucket.h"

#include "toolcolorbuttons.h"

#include "core/items/picturedraw.h"

#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

QToolFillBucket::QToolFillBucket(QWidget* parent)
    : QTool(QStringLiteral("FILL_BUCKET"), parent)
    , m_tolerance(new QSpinBox)
{
    m_tolerance->setObjectName(QStringLiteral("sbTolerance"));
    m_tolerance->setRange(0, 255);
    m_tolerance->setToolTip(tr("Largest difference to the clicked colour in each channel (0 to 255)."));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    layout->addWidget(new QLabel(tr("Colour tolerance:")));
    layout->addWidget(m_tolerance);
    layout->addStretch(1);
    watchPanel();
}

int QToolFillBucket::tolerance() const
{
    return m_tolerance->value();
}

void QToolFillBucket::setTolerance(int tolerance)
{
    m_tolerance->setValue(tolerance);
}

void QToolFillBucket::endDrag(const QPoint& point, Qt::MouseButton button)
{
    const QColor color = colorFor(button);
    const int within = tolerance();
    applyToItem(PictureDraw::fillBucketText(), QSciImage::PicturePart,
        [=](QSciImage& target) { PictureDraw::fillBucket(target, point, color, within); });
}
