#include "scriptlog.h"

#include <atomic>
#include <cstdio>

namespace {
std::atomic<bool> quiet { false };
} // namespace

void ScriptLog::line(const QString& text)
{
    if (quiet)
        return;
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void ScriptLog::setQuiet(bool on)
{
    quiet = on;
}
