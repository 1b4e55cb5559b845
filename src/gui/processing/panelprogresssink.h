#pragma once

#include "core/base/progresssink.h"

#include <QObject>
#include <QPointer>

class QProgressBar;
class QWidget;

/**
 * Progress of an effect run in the dialog's own bar. Between units of work it lets the application process
 * events, so the Stop button and repaints get through; input to every other window waits until the run ends,
 * so nobody edits or deletes items under a running effect.
 */
class PanelProgressSink final : public QObject, public ProgressSink {
public:
    PanelProgressSink(QProgressBar* bar, QWidget* dialog);
    ~PanelProgressSink() override;

    void begin(const QString& label, int total) override;
    void step(int done) override;
    void end() override;
    bool isCancelled() const override;
    void stop() { m_stopped = true; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QProgressBar> m_bar;
    QPointer<QWidget> m_dialog;
    bool m_stopped = false;
};
