#include "qscigifmovie.h"

#include "core/base/messages.h"

#include <QImageReader>
#include <algorithm>

namespace {

// Browsers show frames that claim no delay for a tenth of a second; so do we, so that timing matches.
constexpr int DefaultDelayMs = 100;

} // namespace

bool QSciGIFMovie::load(const QString& path, QString* message)
{
    QImageReader reader(path, "gif");
    QImage frame;
    double time = 0;
    m_starts.clear();
    while (reader.read(&frame)) {
        if (m_starts.isEmpty())
            m_info.size = frame.size();
        m_starts.append(time);
        const int delay = reader.nextImageDelay();
        time += (delay > 0 ? delay : DefaultDelayMs) / 1000.0;
    }
    if (m_starts.isEmpty()) {
        *message = Messages::unableToReadFromFile(path);
        return false;
    }
    m_info.frameCount = m_starts.size();
    m_info.duration = time;
    m_info.fps = time > 0 ? m_starts.size() / time : 0;
    return true;
}

int QSciGIFMovie::frameAt(double seconds) const
{
    const auto after = std::upper_bound(m_starts.cbegin(), m_starts.cend(), seconds + 1e-9);
    return qMax(0, int(after - m_starts.cbegin()) - 1);
}

bool QSciGIFMovie::preview(
    double seconds, const QString&, const std::atomic_bool& cancel, QImage* frame, QString* message, const LogSink&)
{
    if (seconds > m_info.duration) {
        *message = seekText(seconds, m_info.duration);
        return false;
    }
    QImage found;
    const bool ok = readFrames(
        seconds, 1, QString(), cancel,
        [&found](const QImage& image, int) {
            found = image;
            return true;
        },
        message);
    if (ok && found.isNull() && !cancel.load()) {
        *message = Messages::unableToReadFromFile(m_path);
        return false;
    }
    *frame = found;
    return ok && !found.isNull();
}

bool QSciGIFMovie::readFrames(double seconds, int count, const QString&, const std::atomic_bool& cancel,
    const FrameSink& sink, QString* message, const LogSink&)
{
    if (seconds > m_info.duration) {
        *message = seekText(seconds, m_info.duration);
        return false;
    }
    const int first = frameAt(seconds);
    QImageReader reader(m_path, "gif");
    QImage frame;
    // GIF frames build on the ones before them, so the reader must pass every earlier frame.
    for (int index = 0; index < first + count && !cancel.load(); ++index) {
        if (!reader.read(&frame)) {
            if (index > first)
                return true; // the file changed since it was opened; what was read stands
            *message = Messages::unableToReadFromFile(m_path);
            return false;
        }
        if (index >= first && !sink(frame, index - first))
            return true;
    }
    return true;
}
