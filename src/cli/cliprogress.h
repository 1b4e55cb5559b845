#pragma once

#include "core/base/progresssink.h"

#include <QElapsedTimer>

/** A progress bar on stderr, drawn only when stderr is a terminal. */
class CliProgress final : public ProgressSink {
public:
    explicit CliProgress(bool onTerminal)
        : m_onTerminal(onTerminal)
    {
    }
    void begin(const QString& label, int total) override;
    void step(int done) override;
    void end() override;

private:
    bool m_onTerminal;
    QString m_label;
    int m_total = 0;
    QElapsedTimer m_lastDraw;
};
