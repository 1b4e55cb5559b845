#include "qtoolpathshape.h"

#include "toolcolorbuttons.h"

#include "core/items/picturepathdraw.h"

#include <QComboBox>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cstdlib>

namespace {

/** How near (in points) a release must come to a corner to count as on it. */
constexpr int closeDistance = 2;

bool near(const QPoint& a, const QPoint& b)
{
    return std::abs(a.x() - b.x()) <= closeDistance && std::abs(a.y() - b.y()) <= closeDistance;
}

} // namespace

QToolPathShape::QToolPathShape(const QString& identifier, Kind kind, QWidget* parent)
    : QTool(identifier, parent)
    , m_kind(kind)
    , m_lineWidth(new QSpinBox)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    if (kind != Kind::Curve) {
        m_style = new QComboBox;
        m_style->setObjectName(QStringLiteral("cbShapeStyle"));
        m_style->addItems({ tr("Outline"), tr("Filled") });
        layout->addWidget(m_style);
    }
    m_lineWidth->setObjectName(QStringLiteral("sbLineWidth"));
    m_lineWidth->setRange(1, 100);
    m_lineWidth->setSuffix(tr(" points"));
    layout->addWidget(new QLabel(tr("Line width:")));
    layout->addWidget(m_lineWidth);
    if (kind != Kind::Freehand) {
        auto* hint = new QLabel(kind == Kind::Lines
                ? tr("Click the corners; click the first corner to close, the last one again to end.")
                : tr("Click the points of the curve; click the last one again to end."));
        hint->setWordWrap(true);
        layout->addWidget(hint);
    }
    layout->addStretch(1);
    watchPanel();
}

bool QToolPathShape::isFilled() const
{
    return m_style && m_style->currentIndex() == 1;
}

void QToolPathShape::setFilled(bool filled)
{
    if (m_style)
        m_style->setCurrentIndex(filled ? 1 : 0);
}

int QToolPathShape::lineWidth() const
{
    return m_lineWidth->value();
}

void QToolPathShape::setLineWidth(int width)
{
    m_lineWidth->setValue(width);
}

void QToolPathShape::beginDrag(const QPoint& point, Qt::MouseButton button)
{
    if (!item())
        return;
    if (m_kind == Kind::Freehand || !isDragActive()) {
        m_points = QPolygon();
        m_button = button;
        if (m_kind != Kind::Freehand)
            m_points.append(point);
        startDrag(point);
    } else {
        updateDrag(point);
    }
}

void QToolPathShape::updateDrag(const QPoint& point)
{
    m_cursor = point;
    if (m_kind == Kind::Freehand)
        append(point);
    setNeedsRedraw();
}

void QToolPathShape::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (m_kind == Kind::Freehand || !isDragActive()) {
        if (isDragActive())
            append(point);
        finishDrag();
        apply(m_kind != Kind::Curve);
        return;
    }
    m_cursor = point;
    const bool backAtStart = m_kind == Kind::Lines && m_points.size() >= 3 && near(point, m_points.first());
    const bool onLast = m_points.size() >= 2 && near(point, m_points.last());
    if (!backAtStart && !onLast)
        append(point);
    setNeedsRedraw();
    if (backAtStart || onLast) {
        finishDrag();
        apply(backAtStart);
    }
}

void QToolPathShape::append(const QPoint& point)
{
    if (m_points.isEmpty() || m_points.last() != point)
        m_points.append(point);
}

QPainterPath QToolPathShape::path(bool closed, const QPoint* cursor) const
{
    QPolygon points = m_points;
    if (cursor && (points.isEmpty() || points.last() != *cursor))
        points.append(*cursor);
    return m_kind == Kind::Curve ? PicturePathDraw::curvePath(points) : PicturePathDraw::polygonPath(points, closed);
}

void QToolPathShape::apply(bool closed)
{
    const QPainterPath shape = path(closed);
    const QColor color = colorFor(m_button);
    // An open polygon has no inside to fill.
    const bool filled = closed && isFilled();
    const int width = lineWidth();
    const QString name = m_kind == Kind::Freehand ? PicturePathDraw::freehandShapeText()
        : m_kind == Kind::Lines                   ? PicturePathDraw::freehandLinesText()
                                                  : PicturePathDraw::curveText();
    applyToItem(name, QSciImage::PicturePart,
        [&](QSciImage& target) { PicturePathDraw::drawPath(target, shape, color, filled, width); });
}

void QToolPathShape::drawPreview(QPainter& painter)
{
    const bool freehand = m_kind == Kind::Freehand;
    const QPainterPath shape = freehand ? path(true) : path(false, &m_cursor);
    PicturePathDraw::paintPath(painter, shape, colorFor(m_button), freehand && isFilled(), lineWidth());
}
