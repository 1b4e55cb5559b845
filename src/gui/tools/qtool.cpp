#include "qtool.h"

#include "toolpanelstate.h"

#include "core/project/collectiontab.h"
#include "core/project/itemoperations.h"
#include "core/project/project.h"
#include "core/project/zedit.h"
#include "core/settings/options.h"
#include "gui/app/collectiontabpage.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

const QColor defaultLeft(0, 0, 0, 255);
const QColor defaultRight(255, 255, 255, 255);

QString leftColorKey()
{
    return QStringLiteral("Tools.leftColor");
}

QString rightColorKey()
{
    return QStringLiteral("Tools.rightColor");
}

} // namespace

QTool::QTool(const QString& identifier, QWidget* parent)
    : QWidget(parent)
    , m_identifier(identifier)
    , m_leftColor(Options::getColor(leftColorKey(), defaultLeft))
    , m_rightColor(Options::getColor(rightColorKey(), defaultRight))
    , m_redrawTimer(new QTimer(this))
{
    m_redrawTimer->setInterval(10);
    connect(m_redrawTimer, &QTimer::timeout, this, &QTool::redrawTimerEvent);
}

QTool::~QTool()
{
    m_redrawTimer->stop();
    delete m_redrawTimer;
    m_heldPixmap.reset();
}

void QTool::activate(const QString& identifier)
{
    m_identifier = identifier;
    const QString state = Options::getString(identifier + QStringLiteral("_ALL_SETTINGS"), QString());
    if (!state.isEmpty()) {
        m_restoringPanel = true;
        ToolPanelState::restore(this, state);
        m_restoringPanel = false;
    }
    if (usesSelectionMethod())
        m_selectionMethodBoundingRect = Options::getBool(QStringLiteral("Tools.selectionMethodBoundingRect"), true);
    // Another tool may have picked new colours since this one was made.
    m_leftColor = Options::getColor(leftColorKey(), defaultLeft);
    m_rightColor = Options::getColor(rightColorKey(), defaultRight);
    emit colorsChanged();
    emit itemsMovableRequested(identifier == QLatin1String("DEF_CURSOR"));
    emit activated();
}

void QTool::setSelectionMethodBoundingRect(bool on)
{
    m_selectionMethodBoundingRect = on;
    Options::setBool(QStringLiteral("Tools.selectionMethodBoundingRect"), on);
}

void QTool::setProject(Project* project)
{
    m_project = project;
}

Project* QTool::project() const
{
    return m_project;
}

CollectionTabPage* QTool::view() const
{
    return m_view;
}

void QTool::setTarget(CollectionTabPage* view, QSciImage* item)
{
    m_view = view;
    m_item = item;
}

void QTool::recordPosition(const QPoint& point)
{
    m_lastX = point.x();
    m_lastY = point.y();
}

QImage& QTool::overlay(int width, int height)
{
    if ((width < 1 || height < 1) && m_item) {
        width = m_item->picture().width();
        height = m_item->picture().height();
    }
    if (m_overlay.width() != width || m_overlay.height() != height)
        m_overlay = QImage(std::max(1, width), std::max(1, height), QImage::Format_ARGB32_Premultiplied);
    return m_overlay;
}

void QTool::setLeftColor(const QColor& color)
{
    m_leftColor = color;
    Options::setColor(leftColorKey(), color);
    emit colorsChanged();
}

void QTool::setRightColor(const QColor& color)
{
    m_rightColor = color;
    Options::setColor(rightColorKey(), color);
    emit colorsChanged();
}

void QTool::beginDrag(const QPoint&, Qt::MouseButton) { }

void QTool::updateDrag(const QPoint&) { }

void QTool::endDrag(const QPoint&, Qt::MouseButton) { }

void QTool::drawPreview(QPainter&) { }

bool QTool::startDrag(const QPoint& point)
{
    if (!m_item)
        return false;
    m_heldPixmap = std::make_unique<QPixmap>(QPixmap::fromImage(m_item->picture()));
    overlay();
    m_active = true;
    updateDrag(point);
    m_redrawTimer->start();
    return true;
}

void QTool::finishDrag()
{
    m_redrawTimer->stop();
    if (m_active) {
        m_heldPixmap.reset();
        m_active = false;
        m_needsRedraw = false;
        emit overlayCleared();
    }
}

void QTool::redrawNow()
{
    redrawTimerEvent();
}

void QTool::redrawTimerEvent()
{
    if (!m_needsRedraw || !m_active)
        return;
    m_needsRedraw = false;
    if (m_item && m_overlay.size() != m_item->picture().size())
        overlay();
    m_overlay.fill(Qt::transparent);
    {
        QPainter painter(&m_overlay);
        if (previewsOverPicture() && m_heldPixmap)
            painter.drawPixmap(0, 0, *m_heldPixmap);
        drawPreview(painter);
    }
    emit overlayChanged();
}

void QTool::applyToItem(const QString& name, QSciImage::Parts parts, const std::function<void(QSciImage&)>& change)
{
    if (!m_item || !m_project)
        return;
    const QString text = name.isEmpty() ? QCoreApplication::translate("QTool", "Apply tool") : name;
    if (parts != QSciImage::PicturePart) {
        ItemOperations::apply(*m_project.data(), { m_item.data() }, text, parts, change);
        return;
    }
    const QList<QSciImage*> switched = ItemOperations::editPicture(*m_project.data(), { m_item.data() }, text, change);
    if (!switched.isEmpty())
        emit statusMessageRequested(ItemOperations::pictureShownText(switched));
}

void QTool::applyZToItem(const QString& name, const std::function<void(QSciImage&)>& change)
{
    if (m_item && m_project)
        ZEdit::apply(*m_project.data(), { m_item.data() }, name, change);
}

QImage QTool::renderZ(const QSciImage& item, const QVector<double>& z)
{
    const int w = item.width(), h = item.height();
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    if (z.size() != qsizetype(w) * h)
        return image;
    double lo = HUGE_VAL, hi = -HUGE_VAL;
    for (double v : z)
        if (std::isfinite(v)) {
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
    const ColorGradient& gradient = item.colorGradient();
    for (int row = 0; row < h; ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int x = 0; x < w; ++x)
            line[x] = gradient.colorAt(z[qsizetype(x) * h + (h - 1 - row)], lo, hi);
    }
    return image;
}

QList<QSciImage*> QTool::targetItems() const
{
    if (m_item)
        return { m_item.data() };
    if (m_project && m_project->currentTab())
        return m_project->currentTab()->selectedItems();
    return {};
}

void QTool::watchPanel()
{
    ToolPanelState::watch(this, [this] { storePanel(); });
}

void QTool::storePanel()
{
    if (m_restoringPanel)
        return;
    Options::setString(m_identifier + QStringLiteral("_ALL_SETTINGS"), ToolPanelState::capture(this));
}

QRect QTool::dragRect(const QPoint& start, const QPoint& end) const
{
    // Not QRect(start, end).normalized(): that comes out empty when end lies just one point before start.
    if (m_selectionMethodBoundingRect)
        return QRect(QPoint(std::min(start.x(), end.x()), std::min(start.y(), end.y())),
            QPoint(std::max(start.x(), end.x()), std::max(start.y(), end.y())));
    const int dx = std::abs(end.x() - start.x()), dy = std::abs(end.y() - start.y());
    return QRect(QPoint(start.x() - dx, start.y() - dy), QPoint(start.x() + dx, start.y() + dy));
}

QCheckBox* QTool::makeSelectionMethodBox()
{
    // Left unnamed: the setting is shared by all tools, not part of this panel's string.
    auto* box = new QCheckBox(tr("Drag from corner to corner"));
    box->setToolTip(tr("Off: the drag starts at the centre."));
    box->setChecked(m_selectionMethodBoundingRect);
    connect(box, &QCheckBox::toggled, this, &QTool::setSelectionMethodBoundingRect);
    connect(this, &QTool::activated, box, [this, box] { box->setChecked(m_selectionMethodBoundingRect); });
    return box;
}

void QTool::paintRubberBand(QPainter& painter, const QPainterPath& path)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 1));
    painter.drawPath(path);
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.drawPath(path);
    painter.restore();
}
