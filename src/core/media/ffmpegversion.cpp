#include "ffmpegversion.h"

#include "core/base/messages.h"
#include "core/media/ffmpegcommands.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("FfmpegVersion", text);
}

} // namespace

int FfmpegVersion::buildYear(const QString& versionOutput)
{
    // "built on Mar  4 2013 12:00:00 with gcc", or "built on 2013-03-04".
    static const QRegularExpression builtOn(QStringLiteral("built on [^\\n]*?\\b((?:19|20)\\d\\d)\\b"));
    QRegularExpressionMatch match = builtOn.match(versionOutput);
    if (match.hasMatch())
        return match.captured(1).toInt();
    static const QRegularExpression copyright(QStringLiteral("Copyright \\(c\\) (?:\\d{4}-)?(\\d{4})"));
    match = copyright.match(versionOutput);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

FfmpegVersion::Result FfmpegVersion::judge(const QString& versionOutput)
{
    Result result;
    result.year = buildYear(versionOutput);
    if (result.year > 0 && result.year <= LastRefusedYear) {
        result.status = Status::TooOld;
        result.title = tr("FFMPEG version too old");
        result.message = tr("Your FFMPEG version from the year") + QLatin1Char(' ') + QString::number(result.year)
            + QLatin1Char(' ') + tr("is too old.") + QLatin1Char('\n')
            + tr("You should at least use a version from the year") + QLatin1Char(' ')
            + QString::number(LastRefusedYear + 1);
    }
    return result;
}

FfmpegVersion::Result FfmpegVersion::check(const QString& program)
{
    Result result;
    if (program.isEmpty()) {
        result.status = Status::Missing;
        result.title = tr("FFMPEG missing");
        result.message = missingText();
        return result;
    }
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, FfmpegCommands::version());
    constexpr int answerMs = 10000;
    if (!process.waitForStarted(answerMs) || !process.waitForFinished(answerMs)
        || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished(1000);
        result.status = Status::CannotRun;
        result.title = tr("FFMPEG error");
        result.message = tr("Error calling 'ffmpeg -version'.");
        return result;
    }
    return judge(QString::fromLocal8Bit(process.readAll()));
}

QString FfmpegVersion::missingText()
{
    return tr("The ffmpeg software (the programs ffmpeg and ffprobe) is needed to import or export movies, but it "
              "was not found. Install it from your system's packages (on Debian and Ubuntu: apt install ffmpeg) or "
              "download it from https://ffmpeg.org/download.html, then choose its folder in the options or put it "
              "on the PATH.");
}
