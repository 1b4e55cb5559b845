#include "historylog.h"

#include "core/items/qsciimage.h"

#include <atomic>
#include <cstdio>

namespace {
std::atomic<bool> quiet { false };
std::atomic<bool> toStandardError { false };
} // namespace

void HistoryLog::plain(const QString& text)
{
    if (quiet)
        return;
    const QByteArray bytes = text.toUtf8();
    FILE* stream = toStandardError ? stderr : stdout;
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fputc('\n', stream);
}

void HistoryLog::line(const QString& text)
{
    plain(QStringLiteral("HISTORY: ") + text);
}

QString HistoryLog::describe(const QSciImage* item)
{
    return QStringLiteral("%1(0x%2)").arg(item ? item->name() : QStringLiteral("none")).arg(quintptr(item), 0, 16);
}

void HistoryLog::setQuiet(bool on)
{
    quiet = on;
}

void HistoryLog::setToStandardError(bool on)
{
    toStandardError = on;
}
