#include "qtoolbrush.h"

#include "core/items/brushfootprint.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSpinBox>
#include <QVBoxLayout>

QToolBrush::QToolBrush(const QString& identifier, QWidget* parent)
    : QTool(identifier, parent)
    , m_layout(new QVBoxLayout(this))
    , m_radius(new QSpinBox)
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_radius->setObjectName(QStringLiteral("sbBrushRadius"));
    m_radius->setRange(0, 200);
    m_radius->setValue(4);
    m_radius->setSuffix(tr(" points"));
    m_layout->addWidget(new QLabel(tr("Brush radius:")));
    m_layout->addWidget(m_radius);
}

int QToolBrush::brushRadius() const
{
    return m_radius->value();
}

void QToolBrush::setBrushRadius(int radius)
{
    m_radius->setValue(radius);
}

void QToolBrush::beginDrag(const QPoint& point, Qt::MouseButton button)
{
    if (!item())
        return;
    m_path.clear();
    m_button = button;
    startDrag(point);
}

void QToolBrush::updateDrag(const QPoint& point)
{
    append(point);
    setNeedsRedraw();
}

void QToolBrush::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        append(point);
    finishDrag();
    const QSciImage* target = item();
    if (!target)
        return;
    const BrushFootprint footprint(target->size(), m_path, brushRadius());
    if (!footprint.isEmpty())
        applyStroke(footprint);
}

void QToolBrush::append(const QPoint& point)
{
    if (m_path.isEmpty() || m_path.last() != point)
        m_path.append(point);
}

void QToolBrush::drawPreview(QPainter& painter)
{
    if (m_path.isEmpty())
        return;
    QPainterPath trail(QPointF(m_path.first()) + QPointF(0.5, 0.5));
    for (const QPoint& p : qAsConst(m_path))
        trail.lineTo(QPointF(p) + QPointF(0.5, 0.5));
    QColor color = trailColor();
    color.setAlphaF(0.45);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(color, 2 * brushRadius() + 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(trail);
    painter.restore();
}
