#include "ffmpegcommands.h"

#include "core/settings/options.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString FfmpegCommands::program(const QString& name)
{
    const QString folder = Options::getPath(QStringLiteral("FormOptions.ffmpegPath"), QString());
    if (folder.isEmpty())
        return QStandardPaths::findExecutable(name);
    // A folder the user chose; Windows builds of the programs carry the suffix.
    for (const QString& candidate : QStringList { name, name + QStringLiteral(".exe") }) {
        const QFileInfo info(QDir(folder).filePath(candidate));
        if (info.isFile() && info.isExecutable())
            return info.absoluteFilePath();
    }
    return QString();
}

QStringList FfmpegCommands::version()
{
    return { QStringLiteral("-version") };
}

QStringList FfmpegCommands::preview(double seconds, const QString& movie, const QString& tempDir)
{
    return { QStringLiteral("-ss"), FfmpegCommands::seconds(seconds), QStringLiteral("-i"), movie,
        QStringLiteral("-vframes"), QStringLiteral("1"), previewFile(tempDir) };
}

QString FfmpegCommands::previewFile(const QString& tempDir)
{
    return QDir::cleanPath(tempDir) + QStringLiteral("/ffmpegPreview.bmp");
}

QStringList FfmpegCommands::import(double seconds, const QString& movie, int count, const QString& tempDir)
{
    return { QStringLiteral("-ss"), FfmpegCommands::seconds(seconds), QStringLiteral("-i"), movie,
        QStringLiteral("-vframes"), QString::number(count),
        QDir::cleanPath(tempDir) + QStringLiteral("/ffmpeg_import-%d.bmp") };
}

QString FfmpegCommands::importFile(const QString& tempDir, int number)
{
    return QDir::cleanPath(tempDir) + QStringLiteral("/ffmpeg_import-") + QString::number(number)
        + QStringLiteral(".bmp");
}

QStringList FfmpegCommands::exportMovie(int fps, int width, int height, const QString& output)
{
    const QString rate = QString::number(fps);
    return { QStringLiteral("-r"), rate, QStringLiteral("-i"), QStringLiteral("tmp%010d.png"), QStringLiteral("-r"),
        rate, QStringLiteral("-vf"),
        QStringLiteral("scale=") + QString::number(width) + QLatin1Char(':') + QString::number(height),
        QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("slow"),
        QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), output };
}

QString FfmpegCommands::exportFrameName(int number)
{
    return QStringLiteral("tmp%1.png").arg(number, 10, 10, QLatin1Char('0'));
}

QStringList FfmpegCommands::probe(const QString& movie)
{
    return { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"), QStringLiteral("v:0"),
        QStringLiteral("-show_entries"),
        QStringLiteral("stream=width,height,r_frame_rate,avg_frame_rate,nb_frames,duration:format=duration"),
        QStringLiteral("-of"), QStringLiteral("default=noprint_wrappers=1"), movie };
}

QString FfmpegCommands::seconds(double value)
{
    return QString::number(qMax(0.0, value), 'f', 3);
}
