#include "tempfiles.h"

#include <QDir>
#include <QFileInfo>

int TempFiles::removeFfmpegLeftovers(const QString& dir)
{
    const QDir folder(dir);
    if (dir.isEmpty() || !folder.exists())
        return 0;
    int removed = 0;
    // Name filters are case-sensitive on some platforms: compare the names ourselves.
    const QFileInfoList entries = folder.entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& entry : entries) {
        if (!entry.fileName().startsWith(QLatin1String("ffmpeg"), Qt::CaseInsensitive))
            continue;
        if (QFile::remove(entry.absoluteFilePath()))
            ++removed;
    }
    return removed;
}
