#include "qtooleditobject.h"

#include "core/analysis/objectediting.h"

#include <QButtonGroup>
#include <QFormLayout>
#include <QPainter>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

QToolEditObject::QToolEditObject(QWidget* parent)
    : QTool(QStringLiteral("EDIT_OBJECT"), parent)
    , m_add(new QRadioButton(tr("Add points")))
    , m_remove(new QRadioButton(tr("Remove points")))
    , m_radius(new QSpinBox)
{
    m_add->setObjectName(QStringLiteral("rbAddPoints"));
    m_remove->setObjectName(QStringLiteral("rbRemovePoints"));
    m_radius->setObjectName(QStringLiteral("sbBrushRadius"));
    m_radius->setRange(0, 100);
    m_radius->setSuffix(tr(" px"));
    m_add->setChecked(true);
    auto* group = new QButtonGroup(this);
    group->addButton(m_add);
    group->addButton(m_remove);
    auto* form = new QFormLayout;
    form->addRow(tr("Brush radius"), m_radius);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_add);
    layout->addWidget(m_remove);
    layout->addLayout(form);
    layout->addStretch(1);
    setToolTip(tr("Drag from an object to paint points into it; the right button takes them away"));
    watchPanel();
}

void QToolEditObject::beginDrag(const QPoint& point, Qt::MouseButton button)
{
    const QSciImage* target = item();
    if (!target)
        return;
    m_object = ObjectEditing::objectAt(*target, QPoint(point.x(), target->height() - 1 - point.y()));
    if (m_object < 0) {
        emit statusMessageRequested(tr("Start the stroke on an object."));
        return;
    }
    m_erasing = button == Qt::RightButton || m_remove->isChecked();
    m_points.clear();
    startDrag(point);
    addStamp(point);
}

void QToolEditObject::updateDrag(const QPoint& point)
{
    if (!isDragActive())
        return;
    addStamp(point);
    setNeedsRedraw();
}

void QToolEditObject::addStamp(const QPoint& point)
{
    const int r = m_radius->value();
    for (int dx = -r; dx <= r; ++dx)
        for (int dy = -r; dy <= r; ++dy)
            if (dx * dx + dy * dy <= r * r)
                m_points.append(point + QPoint(dx, dy));
}

void QToolEditObject::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (!isDragActive()) {
        finishDrag();
        return;
    }
    addStamp(point);
    finishDrag();
    const int index = m_object;
    const bool add = !m_erasing;
    QVector<QPoint> points = m_points;
    m_points.clear();
    bool changed = false;
    applyToItem(tr("Edit object"), QSciImage::ObjectsPart, [&](QSciImage& target) {
        for (QPoint& p : points)
            p.setY(target.height() - 1 - p.y());
        changed = ObjectEditing::editPixels(target, index, points, add);
    });
    if (!changed)
        emit statusMessageRequested(tr("An object keeps at least one point."));
}

void QToolEditObject::drawPreview(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_erasing ? QColor(0, 0, 0, 140) : QColor(255, 255, 0, 140));
    for (const QPoint& p : qAsConst(m_points))
        painter.drawRect(QRect(p, QSize(1, 1)));
}
