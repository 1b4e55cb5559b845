#include "qtooldrawstroke.h"

#include "toolcolorbuttons.h"

#include <QLabel>
#include <QPainter>
#include <QSpinBox>
#include <QVBoxLayout>

QToolDrawStroke::QToolDrawStroke(
    const QString& identifier, PictureDraw::Stroke stroke, int defaultWidth, QWidget* parent)
    : QTool(identifier, parent)
    , m_stroke(stroke)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    if (defaultWidth > 0) {
        m_width = new QSpinBox;
        m_width->setObjectName(QStringLiteral("sbWidth"));
        m_width->setRange(1, 200);
        m_width->setValue(defaultWidth);
        m_width->setSuffix(tr(" points"));
        layout->addWidget(new QLabel(tr("Width:")));
        layout->addWidget(m_width);
    }
    layout->addStretch(1);
    watchPanel();
}

int QToolDrawStroke::strokeWidth() const
{
    return m_width ? m_width->value() : 1;
}

void QToolDrawStroke::setStrokeWidth(int width)
{
    if (m_width)
        m_width->setValue(width);
}

void QToolDrawStroke::beginDrag(const QPoint& point, Qt::MouseButton button)
{
    if (!item())
        return;
    m_path.clear();
    m_button = button;
    startDrag(point);
}

void QToolDrawStroke::updateDrag(const QPoint& point)
{
    append(point);
    setNeedsRedraw();
}

void QToolDrawStroke::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        append(point);
    finishDrag();
    const QPolygon points = m_path;
    const QColor color = strokeColor(m_button);
    const int width = strokeWidth();
    const PictureDraw::Stroke stroke = m_stroke;
    applyToItem(PictureDraw::strokeText(stroke), QSciImage::PicturePart,
        [&](QSciImage& target) { PictureDraw::drawStroke(target, stroke, points, color, width); });
}

void QToolDrawStroke::append(const QPoint& point)
{
    if (m_path.isEmpty() || m_path.last() != point)
        m_path.append(point);
}

void QToolDrawStroke::drawPreview(QPainter& painter)
{
    PictureDraw::paintStroke(painter, m_stroke, m_path, strokeColor(m_button), strokeWidth());
}
