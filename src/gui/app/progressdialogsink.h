#pragma once

#include <QPointer>
#include <QString>

#include "core/base/progresssink.h"

class QProgressDialog;
class QWidget;

/**
 * Shows the passes of long core work in a window-modal progress dialog with a Cancel button, and a busy cursor
 * while a pass runs. The dialog appears only when a pass takes a while, and stays cancelled for the following
 * passes of the same run.
 */
class ProgressDialogSink final : public ProgressSink {
public:
    explicit ProgressDialogSink(QWidget* parent, const QString& title = QString());
    ~ProgressDialogSink() override;
    ProgressDialogSink(const ProgressDialogSink&) = delete;
    ProgressDialogSink& operator=(const ProgressDialogSink&) = delete;

    void begin(const QString& label, int total) override;
    void step(int done) override;
    void end() override;
    bool isCancelled() const override;

    /** Work that must not stop halfway (an undo) shows no Cancel button. */
    void setCancellable(bool cancellable) { m_cancellable = cancellable; }

    /** The dialog of the running pass, or nullptr. */
    QProgressDialog* dialog() const;

private:
    QWidget* m_parent;
    QString m_title;
    QPointer<QProgressDialog> m_dialog;
    bool m_cancelled = false;
    bool m_cancellable = true;
    bool m_busy = false;
};
