#include "qtoolfreehandlinesselection.h"

#include <QPainter>
#include <QPainterPath>
#include <cstdlib>

namespace {

/** How near (in points) a release must come to the first corner to close the polygon. */
constexpr int closeDistance = 2;

} // namespace

QToolFreehandLinesSelection::QToolFreehandLinesSelection(QWidget* parent)
    : QToolSelection(QStringLiteral("FREEHAND_LINES_SELECTION"), parent)
{
    finishPanel();
}

void QToolFreehandLinesSelection::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    // The drag stays active from the first corner until the polygon closes.
    if (!isDragActive()) {
        m_corners = QPolygon();
        m_corners.append(point);
        startDrag(point);
    } else {
        updateDrag(point);
    }
}

void QToolFreehandLinesSelection::updateDrag(const QPoint& point)
{
    m_cursor = point;
    setNeedsRedraw();
}

void QToolFreehandLinesSelection::endDrag(const QPoint& point, Qt::MouseButton button)
{
    if (!isDragActive()) {
        apply();
        return;
    }
    const QPoint first = m_corners.first();
    const bool backAtStart = m_corners.size() >= 3 && std::abs(point.x() - first.x()) <= closeDistance
        && std::abs(point.y() - first.y()) <= closeDistance;
    if (!backAtStart && m_corners.last() != point)
        m_corners.append(point);
    m_cursor = point;
    setNeedsRedraw();
    if (backAtStart || button == Qt::RightButton) {
        finishDrag();
        apply();
    }
}

void QToolFreehandLinesSelection::apply()
{
    const QPolygon polygon = m_corners;
    const MaskEdit::Mode how = gestureMode();
    applyToItem(MaskEdit::polygonLinesText(), QSciImage::MaskPart,
        [&polygon, how](QSciImage& target) { MaskEdit::applyPolygon(target, polygon, how); });
}

void QToolFreehandLinesSelection::drawPreview(QPainter& painter)
{
    if (m_corners.isEmpty())
        return;
    // Through the same corner coordinates that the mask's polygon test uses.
    QPainterPath path(m_corners.first());
    for (const QPoint& p : qAsConst(m_corners))
        path.lineTo(p);
    path.lineTo(m_cursor);
    paintRubberBand(painter, path);
}
