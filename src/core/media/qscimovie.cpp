#include "qscimovie.h"

#include "core/base/messages.h"
#include "core/media/qsciffmpeg.h"
#include "core/media/qscigifmovie.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

bool isGif(const QByteArray& head)
{
    return head == "GIF87a" || head == "GIF89a";
}

} // namespace

bool QSciMovie::needsFfmpeg(const QString& path)
{
    QFile file(path);
    return !file.open(QIODevice::ReadOnly) || !isGif(file.read(6));
}

std::unique_ptr<QSciMovie> QSciMovie::open(const QString& path, QString* message)
{
    if (!QFileInfo(path).isFile()) {
        *message = Messages::fileDoesNotExist(path);
        return nullptr;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *message = Messages::unableToOpenFile(path);
        return nullptr;
    }
    const QByteArray head = file.read(6);
    file.close();
    std::unique_ptr<QSciMovie> movie;
    if (isGif(head))
        movie = std::make_unique<QSciGIFMovie>();
    else
        movie = std::make_unique<QSciFFMPEG>();
    movie->m_path = path;
    if (!movie->load(path, message))
        return nullptr;
    return movie;
}

QString QSciMovie::cannotReadText(const QString& path)
{
    return QCoreApplication::translate("QSciMovie", "FFMPEG can't read file:") + QLatin1Char(' ') + path;
}

QString QSciMovie::seekText(double seconds, double duration)
{
    return QCoreApplication::translate("QSciMovie", "Seek timestamp %1 s lies beyond the end of the movie (%2 s).")
        .arg(seconds, 0, 'f', 3)
        .arg(duration, 0, 'f', 3);
}
