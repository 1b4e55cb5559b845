#include "qtoolmeasuredistance.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

QToolMeasureDistance::QToolMeasureDistance(QWidget* parent)
    : QTool(QStringLiteral("MEASURE_DISTANCE"), parent)
    , m_result(new QLabel(tr("Drag a line over an item.")))
{
    m_result->setObjectName(QStringLiteral("lbDistance"));
    m_result->setWordWrap(true);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_result);
    layout->addStretch(1);
}

void QToolMeasureDistance::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    m_start = point;
    startDrag(point);
}

void QToolMeasureDistance::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolMeasureDistance::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    const QSciImage* measured = item();
    if (!measured)
        return;
    m_measure = DistanceMeasure::between(*measured, m_start, m_end);
    m_result->setText(tr("Distance: %1").arg(m_measure.text()));
    emit outputRequested(tr("Distance in %1 from (%2, %3) to (%4, %5): %6")
                             .arg(measured->name().toHtmlEscaped())
                             .arg(m_start.x())
                             .arg(m_start.y())
                             .arg(m_end.x())
                             .arg(m_end.y())
                             .arg(m_measure.text().toHtmlEscaped()));
}

void QToolMeasureDistance::drawPreview(QPainter& painter)
{
    const QPointF centre(0.5, 0.5);
    QPainterPath path(QPointF(m_start) + centre);
    path.lineTo(QPointF(m_end) + centre);
    path.addEllipse(QPointF(m_start) + centre, 2, 2);
    path.addEllipse(QPointF(m_end) + centre, 2, 2);
    paintRubberBand(painter, path);
}
