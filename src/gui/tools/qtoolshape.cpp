#include "qtoolshape.h"

#include "toolcolorbuttons.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

QToolShape::QToolShape(const QString& identifier, PictureDraw::Shape shape, QWidget* parent)
    : QTool(identifier, parent)
    , m_shape(shape)
    , m_style(new QComboBox)
    , m_lineWidth(new QSpinBox)
{
    m_style->setObjectName(QStringLiteral("cbShapeStyle"));
    m_style->addItems({ tr("Outline"), tr("Filled") });
    m_lineWidth->setObjectName(QStringLiteral("sbLineWidth"));
    m_lineWidth->setRange(1, 100);
    m_lineWidth->setSuffix(tr(" points"));
    connect(m_style, QOverload<int>::of(&QComboBox::currentIndexChanged), m_lineWidth,
        [this](int index) { m_lineWidth->setEnabled(index == 0); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    layout->addWidget(m_style);
    layout->addWidget(new QLabel(tr("Line width:")));
    layout->addWidget(m_lineWidth);
    layout->addWidget(makeSelectionMethodBox());
    layout->addStretch(1);
    watchPanel();
}

bool QToolShape::isFilled() const
{
    return m_style->currentIndex() == 1;
}

void QToolShape::setFilled(bool filled)
{
    m_style->setCurrentIndex(filled ? 1 : 0);
}

int QToolShape::lineWidth() const
{
    return m_lineWidth->value();
}

void QToolShape::setLineWidth(int width)
{
    m_lineWidth->setValue(width);
}

void QToolShape::beginDrag(const QPoint& point, Qt::MouseButton button)
{
    if (!item())
        return;
    m_start = point;
    m_button = button;
    startDrag(point);
}

void QToolShape::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolShape::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    const PictureDraw::Shape shape = m_shape;
    const QRect rect = shapeRect();
    const QColor color = colorFor(m_button);
    const bool filled = isFilled();
    const int width = lineWidth();
    applyToItem(PictureDraw::shapeText(shape), QSciImage::PicturePart,
        [=](QSciImage& target) { PictureDraw::drawShape(target, shape, rect, color, filled, width); });
}

void QToolShape::drawPreview(QPainter& painter)
{
    PictureDraw::paintShape(painter, m_shape, shapeRect(), colorFor(m_button), isFilled(), lineWidth());
}
