#include "panelprogresssink.h"

#include <QApplication>
#include <QEvent>
#include <QProgressBar>
#include <QWidget>

PanelProgressSink::PanelProgressSink(QProgressBar* bar, QWidget* dialog)
    : m_bar(bar)
    , m_dialog(dialog)
{
    qApp->installEventFilter(this);
    QApplication::setOverrideCursor(Qt::BusyCursor);
}

PanelProgressSink::~PanelProgressSink()
{
    QApplication::restoreOverrideCursor();
    qApp->removeEventFilter(this);
}

void PanelProgressSink::begin(const QString& label, int total)
{
    if (!m_bar)
        return;
    m_bar->setFormat(label + QStringLiteral(": %p%"));
    m_bar->setRange(0, qMax(total, 1));
    m_bar->setValue(0);
}

void PanelProgressSink::step(int done)
{
    if (m_bar)
        m_bar->setValue(qMin(done, m_bar->maximum()));
    QCoreApplication::processEvents();
}

void PanelProgressSink::end()
{
    if (m_bar)
        m_bar->setValue(m_bar->maximum());
}

bool PanelProgressSink::isCancelled() const
{
    QCoreApplication::processEvents();
    return m_stopped;
}

bool PanelProgressSink::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Wheel:
    case QEvent::Drop:
    case QEvent::Close: {
        auto* widget = qobject_cast<QWidget*>(watched);
        // The dialog's own Stop button stays usable; every other widget waits for the run.
        return widget && !(m_dialog && widget->window() == m_dialog->window());
    }
    default:
        return false;
    }
}
