#include "qtoollattice.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {

/** Beyond this many grid lines a direction is too finely spaced to draw usefully. */
constexpr int maxLines = 500;

} // namespace

QToolLattice::QToolLattice(QWidget* parent)
    : QTool(QStringLiteral("LATTICE"), parent)
    , m_status(new QLabel)
{
    m_status->setObjectName(QStringLiteral("lbLattice"));
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* find = new QPushButton(tr("Find in the item"));
    find->setObjectName(QStringLiteral("pbFindLattice"));
    auto* clear = new QPushButton(tr("Start over"));
    clear->setObjectName(QStringLiteral("pbClearLattice"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_status);
    layout->addWidget(find);
    layout->addWidget(clear);
    layout->addStretch(1);
    connect(find, &QPushButton::clicked, this, &QToolLattice::findInItem);
    connect(clear, &QPushButton::clicked, this, &QToolLattice::clearLattice);
    connect(this, &QTool::activated, this, &QToolLattice::clearLattice);
    clearLattice();
}

void QToolLattice::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    if (m_count == 2)
        m_count = 0;
    m_start = point;
    startDrag(point);
}

void QToolLattice::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolLattice::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    if (!item() || m_end == m_start)
        return;
    const QPointF vector = QPointF(m_end - m_start);
    if (m_count == 0) {
        m_origin = QPointF(m_start) + QPointF(0.5, 0.5);
        m_a = vector;
        m_count = 1;
        m_status->setText(tr("Now drag the second lattice vector."));
        showGrid();
        return;
    }
    m_b = vector;
    m_count = 2;
    report();
    showGrid();
}

void QToolLattice::findInItem()
{
    const QSciImage* target = item();
    if (!target)
        return;
    LatticeAnalysis::Result found;
    QString message;
    if (!LatticeAnalysis::find(*target, &found, &message)) {
        m_status->setText(message);
        return;
    }
    m_origin = QPointF(target->width() / 2.0, target->height() / 2.0);
    m_a = QPointF(found.a.x(), -found.a.y());
    m_b = QPointF(found.b.x(), -found.b.y());
    m_count = 2;
    report();
    showGrid();
}

void QToolLattice::clearLattice()
{
    m_count = 0;
    m_status->setText(tr("Drag the first lattice vector over an item."));
    emit overlayCleared();
}

void QToolLattice::report()
{
    const QSciImage* target = item();
    if (!target)
        return;
    m_result = LatticeAnalysis::fromVectors(*target, QPointF(m_a.x(), -m_a.y()), QPointF(m_b.x(), -m_b.y()));
    const QString line = LatticeAnalysis::describe(m_result);
    m_status->setText(line);
    emit statusMessageRequested(line);
    emit outputRequested(tr("%1 in %2").arg(line.toHtmlEscaped(), target->name().toHtmlEscaped()));
}

void QToolLattice::showGrid()
{
    if (!item())
        return;
    QImage& image = overlay();
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintLattice(painter, m_a, m_b, m_count == 2);
    painter.end();
    emit overlayChanged();
}

void QToolLattice::drawPreview(QPainter& painter)
{
    const QPointF drag = QPointF(m_end - m_start);
    if (m_count == 0)
        paintLattice(painter, drag, QPointF(), false);
    else
        paintLattice(painter, m_a, drag, true);
}

void QToolLattice::paintLattice(QPainter& painter, const QPointF& a, const QPointF& b, bool grid) const
{
    const QPointF origin = m_count == 0 ? QPointF(m_start) + QPointF(0.5, 0.5) : m_origin;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    const double det = a.x() * b.y() - a.y() * b.x();
    if (grid && std::abs(det) > 1e-6 && item()) {
        // The lattice indices of the item's corners bound the lines that cross it.
        const QSizeF size = item()->size();
        double iMin = HUGE_VAL, iMax = -HUGE_VAL, jMin = HUGE_VAL, jMax = -HUGE_VAL;
        for (const QPointF& corner : { QPointF(0, 0), QPointF(size.width(), 0), QPointF(0, size.height()),
                 QPointF(size.width(), size.height()) }) {
            const QPointF d = corner - origin;
            const double i = (d.x() * b.y() - d.y() * b.x()) / det, j = (a.x() * d.y() - a.y() * d.x()) / det;
            iMin = std::min(iMin, i), iMax = std::max(iMax, i), jMin = std::min(jMin, j), jMax = std::max(jMax, j);
        }
        const int i0 = int(std::floor(iMin)), i1 = int(std::ceil(iMax));
        const int j0 = int(std::floor(jMin)), j1 = int(std::ceil(jMax));
        if (i1 - i0 <= maxLines && j1 - j0 <= maxLines) {
            painter.setPen(QPen(QColor(0, 230, 255, 200), 1));
            for (int i = i0; i <= i1; ++i)
                painter.drawLine(origin + i * a + j0 * b, origin + i * a + j1 * b);
            for (int j = j0; j <= j1; ++j)
                painter.drawLine(origin + i0 * a + j * b, origin + i1 * a + j * b);
        }
    }
    const auto arrow = [&painter, origin](const QPointF& v, const QColor& color) {
        if (v.isNull())
            return;
        painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(origin, origin + v);
        const double angle = std::atan2(v.y(), v.x()), head = 5;
        for (const double side : { 0.5, -0.5 })
            painter.drawLine(origin + v, origin + v - head * QPointF(std::cos(angle + side), std::sin(angle + side)));
    };
    arrow(a, QColor(255, 60, 60));
    arrow(b, QColor(255, 220, 0));
    painter.restore();
}
