#include "cliprogress.h"

#include <cstdio>

void CliProgress::begin(const QString& label, int total)
{
    m_label = label;
    m_total = total;
    m_lastDraw.invalidate();
    step(0);
}

void CliProgress::step(int done)
{
    if (!m_onTerminal || m_total <= 0)
        return;
    if (m_lastDraw.isValid() && m_lastDraw.elapsed() < 100 && done < m_total)
        return;
    m_lastDraw.start();
    const int width = 30;
    const int filled = int(qint64(width) * done / m_total);
    const QByteArray bar = QByteArray(filled, '#') + QByteArray(width - filled, '.');
    std::fprintf(stderr, "\r%s [%s] %d/%d", m_label.toLocal8Bit().constData(), bar.constData(), done, m_total);
    std::fflush(stderr);
}

void CliProgress::end()
{
    if (m_onTerminal && m_total > 0) {
        std::fputc('\n', stderr);
        std::fflush(stderr);
    }
    m_total = 0;
}
