#include "qtoolalignbypoi.h"

#include "core/project/poialignment.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

QToolAlignByPoi::QToolAlignByPoi(QWidget* parent)
    : QTool(QStringLiteral("ALIGN_BY_POI"), parent)
    , m_status(new QLabel)
    , m_align(new QPushButton(tr("Align items")))
{
    m_status->setObjectName(QStringLiteral("lbPoiMarks"));
    m_status->setWordWrap(true);
    m_align->setObjectName(QStringLiteral("pbAlignByPoi"));
    auto* clear = new QPushButton(tr("Start over"));
    clear->setObjectName(QStringLiteral("pbClearPoi"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_align);
    buttons->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_status);
    layout->addLayout(buttons);
    layout->addStretch(1);
    connect(m_align, &QPushButton::clicked, this, &QToolAlignByPoi::alignItems);
    connect(clear, &QPushButton::clicked, this, &QToolAlignByPoi::clearMarks);
    refresh();
}

void QToolAlignByPoi::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    startDrag(point);
}

void QToolAlignByPoi::updateDrag(const QPoint& point)
{
    m_cursor = point;
    setNeedsRedraw();
}

void QToolAlignByPoi::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_cursor = point;
    finishDrag();
    QSciImage* marked = item();
    if (!marked || !QRect(QPoint(), marked->size()).contains(m_cursor))
        return;
    m_marks.erase(std::remove_if(m_marks.begin(), m_marks.end(), [](const Mark& m) { return !m.item; }), m_marks.end());
    auto found = std::find_if(m_marks.begin(), m_marks.end(), [marked](const Mark& m) { return m.item == marked; });
    if (found != m_marks.end())
        found->point = m_cursor;
    else
        m_marks.append({ marked, m_cursor });
    refresh();
}

int QToolAlignByPoi::markCount() const
{
    return int(std::count_if(m_marks.cbegin(), m_marks.cend(), [](const Mark& m) { return m.item; }));
}

void QToolAlignByPoi::alignItems()
{
    if (!project())
        return;
    QList<PoiAlignment::Mark> marks;
    for (const Mark& m : qAsConst(m_marks))
        if (m.item)
            marks.append({ m.item.data(), m.point });
    if (marks.size() < 2)
        return;
    QStringList moved;
    for (int i = 1; i < marks.size(); ++i) {
        const QPoint by = PoiAlignment::offset(marks.first(), marks.at(i));
        moved << tr("%1 by (%2, %3)").arg(marks.at(i).item->name().toHtmlEscaped()).arg(by.x()).arg(by.y());
    }
    if (PoiAlignment::align(*project(), marks))
        emit outputRequested(
            tr("Aligned on %1: %2").arg(marks.first().item->name().toHtmlEscaped(), moved.join(QStringLiteral(", "))));
    clearMarks();
}

void QToolAlignByPoi::clearMarks()
{
    m_marks.clear();
    refresh();
}

void QToolAlignByPoi::refresh()
{
    const int count = markCount();
    m_status->setText(count == 0 ? tr("Click the same feature on each item; the first item stays where it is.")
                                 : tr("%n item(s) marked.", nullptr, count));
    m_align->setEnabled(count >= 2);
}

void QToolAlignByPoi::drawPreview(QPainter& painter)
{
    const QPointF c = QPointF(m_cursor) + QPointF(0.5, 0.5);
    QPainterPath cross;
    cross.moveTo(c - QPointF(6, 0));
    cross.lineTo(c + QPointF(6, 0));
    cross.moveTo(c - QPointF(0, 6));
    cross.lineTo(c + QPointF(0, 6));
    cross.addEllipse(c, 3, 3);
    paintRubberBand(painter, cross);
}
