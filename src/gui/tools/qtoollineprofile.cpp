#include "qtoollineprofile.h"

#include "gui/plots/formplot.h"

#include <QFormLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSpinBox>
#include <cmath>

QToolLineProfile::QToolLineProfile(QWidget* parent)
    : QTool(QStringLiteral("LINE_PROFILE"), parent)
    , m_width(new QSpinBox)
    , m_result(new QLabel(tr("Drag a line over an item.")))
{
    m_width->setObjectName(QStringLiteral("sbProfileWidth"));
    m_width->setRange(1, 500);
    m_width->setToolTip(tr("Thickness of the line; z is averaged across it."));
    m_result->setObjectName(QStringLiteral("lbProfile"));
    m_result->setWordWrap(true);
    auto* layout = new QFormLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addRow(tr("Width (points):"), m_width);
    layout->addRow(m_result);
    watchPanel();
}

FormPlot* QToolLineProfile::plotWindow() const
{
    return m_window;
}

void QToolLineProfile::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    m_start = m_end = point;
    startDrag(point);
}

void QToolLineProfile::updateDrag(const QPoint& point)
{
    m_end = point;
    setNeedsRedraw();
}

void QToolLineProfile::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_end = point;
    finishDrag();
    const QSciImage* measured = item();
    if (!measured || m_start == m_end)
        return;
    m_profile = LineProfile::sample(*measured, m_start, m_end, m_width->value());
    showProfile();
}

void QToolLineProfile::showProfile()
{
    const QSciImage* measured = item();
    Plot2dDocument document = m_window ? m_window->document() : Plot2dDocument();
    const QString distance = m_profile.distanceUnit.isEmpty()
        ? tr("distance")
        : tr("distance") + QStringLiteral(" [") + m_profile.distanceUnit + QLatin1Char(']');
    const QString z
        = m_profile.zUnit.isEmpty() ? QStringLiteral("z") : QStringLiteral("z [") + m_profile.zUnit + QLatin1Char(']');
    Plot2dCurve curve;
    curve.plotName = tr("%1 from (%2, %3) to (%4, %5)")
                         .arg(measured->name())
                         .arg(m_start.x())
                         .arg(m_start.y())
                         .arg(m_end.x())
                         .arg(m_end.y());
    curve.variables = QStringList { distance, z };
    for (int i = 0; i < m_profile.size(); ++i)
        curve.values << m_profile.distance[i] << m_profile.z[i];
    document.curves = { curve };
    document.setSetting(QStringLiteral("title"), tr("Line profile"));
    document.setSetting(QStringLiteral("xLabel"), distance);
    document.setSetting(QStringLiteral("yLabel"), z);
    document.setFlag(QStringLiteral("legendCheck"), false);
    if (!m_window) {
        m_window = new FormPlot(window());
        m_window->setWindowTitle(tr("Line profile"));
    }
    m_window->setDocument(document);
    m_window->rescale();
    m_window->show();
    m_window->raise();
    double low = qInf(), high = -qInf();
    for (double v : qAsConst(m_profile.z))
        if (std::isfinite(v))
            low = std::min(low, v), high = std::max(high, v);
    const QString text = tr("%1 samples, z from %2 to %3 %4")
                             .arg(m_profile.size())
                             .arg(low, 0, 'g', 6)
                             .arg(high, 0, 'g', 6)
                             .arg(m_profile.zUnit);
    m_result->setText(text);
    emit outputRequested(tr("Line profile in %1: %2").arg(measured->name().toHtmlEscaped(), text.toHtmlEscaped()));
}

void QToolLineProfile::drawPreview(QPainter& painter)
{
    const QPointF centre(0.5, 0.5);
    const QPointF a = QPointF(m_start) + centre, b = QPointF(m_end) + centre;
    QPainterPath path(a);
    path.lineTo(b);
    const int width = m_width->value();
    const QPointF d = b - a;
    const double length = std::hypot(d.x(), d.y());
    if (width > 1 && length > 0) {
        // The band that is averaged, so the user sees what the profile covers.
        const QPointF normal(-d.y() / length * width / 2.0, d.x() / length * width / 2.0);
        path.moveTo(a + normal);
        path.lineTo(b + normal);
        path.moveTo(a - normal);
        path.lineTo(b - normal);
    }
    paintRubberBand(painter, path);
}
