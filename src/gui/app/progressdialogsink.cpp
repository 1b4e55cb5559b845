#include "progressdialogsink.h"

#include <QApplication>
#include <QProgressDialog>

namespace {

// Short passes finish before the dialog would flash up.
constexpr int minimumDurationMs = 400;

} // namespace

ProgressDialogSink::ProgressDialogSink(QWidget* parent, const QString& title)
    : m_parent(parent)
    , m_title(title)
{
}

ProgressDialogSink::~ProgressDialogSink()
{
    if (m_busy)
        QApplication::restoreOverrideCursor();
    delete m_dialog;
}

void ProgressDialogSink::begin(const QString& label, int total)
{
    if (!m_dialog) {
        m_dialog = new QProgressDialog(m_parent);
        m_dialog->setObjectName(QStringLiteral("progressDialog"));
        m_dialog->setWindowModality(Qt::WindowModal);
        m_dialog->setMinimumDuration(minimumDurationMs);
        m_dialog->setAutoClose(false);
        m_dialog->setAutoReset(false);
        if (!m_title.isEmpty())
            m_dialog->setWindowTitle(m_title);
        if (!m_cancellable)
            m_dialog->setCancelButton(nullptr);
    }
    // The core work blocks the event loop: the cursor is what tells the user the program is busy.
    if (!m_busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        m_busy = true;
    }
    m_dialog->setLabelText(label);
    m_dialog->setRange(0, qMax(total, 1));
    m_dialog->setValue(0);
}

void ProgressDialogSink::step(int done)
{
    // setValue() of a modal dialog lets the event loop run, so Cancel gets through.
    if (m_dialog)
        m_dialog->setValue(qMin(done, m_dialog->maximum()));
}

void ProgressDialogSink::end()
{
    if (!m_dialog)
        return;
    if (m_busy) {
        QApplication::restoreOverrideCursor();
        m_busy = false;
    }
    m_cancelled = m_cancelled || m_dialog->wasCanceled();
    // reset() also stops the timer that would show the dialog after the work is done.
    m_dialog->reset();
    m_dialog->hide();
}

bool ProgressDialogSink::isCancelled() const
{
    return m_cancelled || (m_dialog && m_dialog->wasCanceled());
}

QProgressDialog* ProgressDialogSink::dialog() const
{
    return m_dialog;
}
