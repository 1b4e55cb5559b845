#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"
#include "cliprogress.h"

#include "core/items/qsciimage.h"
#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegversion.h"
#include "core/media/movieframes.h"
#include "core/media/qsciffmpegexportworker.h"
#include "core/media/qsciffmpegimportworker.h"
#include "core/media/qscimovie.h"
#include "core/media/workerthread.h"
#include "core/settings/options.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

int usage(CliContext& ctx, const QString& text)
{
    ctx.err << text << Qt::endl;
    return CliUsage;
}

/** The version check, with the window's title and text in one message on failure. */
bool ffmpegUsable(CliContext& ctx)
{
    const FfmpegVersion::Result result = FfmpegVersion::check(FfmpegCommands::ffmpeg());
    if (result.passed())
        return true;
    ctx.fail(result.title + QStringLiteral(": ") + result.message);
    return false;
}

int runExport(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--out"));
    bool fpsGiven = false, sizeGiven = false, oddGiven = false;
    const QString fpsText = args.takeOption(QStringLiteral("--fps"), &fpsGiven);
    const QString sizeText = args.takeOption(QStringLiteral("--size"), &sizeGiven);
    const QString oddText = args.takeOption(QStringLiteral("--odd"), &oddGiven);
    const bool fromZ = args.takeFlag(QStringLiteral("--from-z"));
    if (!args.usageError().isEmpty())
        return usage(ctx, args.usageError());
    const QStringList files = args.positional();
    if (files.isEmpty())
        return usage(ctx, QStringLiteral("movie-export needs at least one item FILE"));
    bool fpsOk = true;
    const int fps = fpsGiven ? fpsText.toInt(&fpsOk) : 10;
    if (!fpsOk || fps < 1 || fps > 1000)
        return usage(ctx, QStringLiteral("--fps needs a whole number from 1 to 1000"));
    if (oddGiven && oddText != QLatin1String("pad") && oddText != QLatin1String("scale"))
        return usage(ctx, QStringLiteral("--odd needs pad or scale"));
    QSize size;
    QString message;
    if (sizeGiven && !CliItems::parseSize(sizeText, &size, &message))
        return usage(ctx, message);

    // Items first: a wrong file name is the user's to fix whether or not ffmpeg is there.
    QList<QImage> frames;
    for (const QString& path : files) {
        QSciImage item;
        if (!CliItems::load(ctx, path, item))
            return CliFailure;
        if (!size.isValid())
            size = item.size();
        frames << MovieFrames::render(
            item, fromZ ? MovieFrames::Source::ZThroughGradient : MovieFrames::Source::Picture);
    }
    if (!ffmpegUsable(ctx))
        return CliFailure;

    QSciFFMPEGExportWorker::Options options;
    options.output = QFileInfo(out).absoluteFilePath();
    options.fps = fps;
    options.size = size;
    options.oddSize = oddText == QLatin1String("scale") ? MovieFrames::OddSize::Scale : MovieFrames::OddSize::Pad;
    options.tempDir = Options::tempDir();
    const QString note = MovieFrames::oddSizeText(size, options.oddSize);
    if (!note.isEmpty())
        ctx.err << note << Qt::endl;

    CliProgress progress(ctx.progressOnTerminal);
    progress.begin(QStringLiteral("Encoding"), frames.size() + 1);
    auto* worker = new QSciFFMPEGExportWorker(frames, options);
    frames.clear();
    QEventLoop loop;
    bool ok = false;
    QObject::connect(
        worker, &QSciFFMPEGExportWorker::progress, &loop, [&progress](int done, int) { progress.step(done); });
    QObject::connect(worker, &QSciFFMPEGExportWorker::finished, &loop, [&](bool success, const QString& text) {
        ok = success;
        message = text;
        loop.quit();
    });
    WorkerThread::start(worker, [worker] { worker->run(); });
    loop.exec();
    progress.end();
    if (!ok)
        return ctx.fail(message);
    ctx.out << options.output << Qt::endl;
    return CliSuccess;
}

int runImport(CliContext& ctx, CliArgs& args)
{
    const QString outDir = args.takeRequired(QStringLiteral("--out-dir"));
    bool startGiven = false, framesGiven = false, sizeGiven = false;
    const QString startText = args.takeOption(QStringLiteral("--start"), &startGiven);
    const QString framesText = args.takeOption(QStringLiteral("--frames"), &framesGiven);
    const QString sizeText = args.takeOption(QStringLiteral("--size"), &sizeGiven);
    if (!args.usageError().isEmpty())
        return usage(ctx, args.usageError());
    if (args.positional().size() != 1)
        return usage(ctx, QStringLiteral("movie-import needs one MOVIE"));
    QString message;
    double start = 0;
    if (startGiven && !CliItems::parseReal(QStringLiteral("--start"), startText, 0, 1e9, &start, &message))
        return usage(ctx, message);
    bool framesOk = true;
    const int count = framesGiven ? framesText.toInt(&framesOk) : 0;
    if (!framesOk || (framesGiven && count < 1))
        return usage(ctx, QStringLiteral("--frames needs a whole number from 1"));
    QSize scaleTo;
    if (sizeGiven && !CliItems::parseSize(sizeText, &scaleTo, &message))
        return usage(ctx, message);

    const QString path = args.positional().first();
    if (QFileInfo(path).isFile() && QSciMovie::needsFfmpeg(path) && !ffmpegUsable(ctx))
        return CliFailure;
    const std::shared_ptr<QSciMovie> movie = QSciMovie::open(path, &message);
    if (!movie)
        return ctx.fail(message);
    if (!QDir().mkpath(outDir))
        return ctx.fail(QStringLiteral("Unable to write file: ") + outDir);
    // A folder of its own, so that parallel runs sharing the settings folder never mix their frame files.
    QDir().mkpath(Options::tempDir());
    QTemporaryDir work(QDir(Options::tempDir()).filePath(QStringLiteral("ffmpeg_cli-XXXXXX")));
    if (!work.isValid())
        return ctx.fail(QStringLiteral("Unable to write file: ") + Options::tempDir());

    const int wanted = framesGiven ? count : qMax(1, movie->info().frameCount);
    auto* worker = new QSciFFMPEGImportWorker(movie, start, wanted, work.path());
    const QString stem = QFileInfo(path).completeBaseName();
    QStringList written;
    bool ok = false, saveFailed = false;
    QEventLoop loop;
    QObject::connect(
        worker, &QSciFFMPEGImportWorker::frameReady, &loop, [&](const QImage& frame, int number, double seconds) {
            if (saveFailed)
                return;
            QSciImage item;
            MovieFrames::toItem(frame, scaleTo, path, number + 1, seconds, item);
            const QString target = QDir(outDir).filePath(QStringLiteral("%1.%2.img.velm").arg(stem).arg(number));
            if (!CliItems::save(ctx, item, target)) {
                saveFailed = true;
                worker->abort();
                return;
            }
            written << target;
        });
    QObject::connect(
        worker, &QSciFFMPEGImportWorker::failed, &loop, [&message](const QString& text) { message = text; });
    QObject::connect(worker, &QSciFFMPEGImportWorker::finished, &loop, [&](bool success, bool) {
        ok = success;
        loop.quit();
    });
    WorkerThread::start(worker, [worker] { worker->run(); });
    loop.exec();
    if (!ok || saveFailed) {
        // A failed import leaves nothing half done behind.
        for (const QString& file : qAsConst(written))
            QFile::remove(file);
        return saveFailed ? CliFailure : ctx.fail(message);
    }
    for (const QString& file : qAsConst(written))
        ctx.out << file << Qt::endl;
    return CliSuccess;
}

const CliCommandRegistration registration({
    { QStringLiteral("movie-export"),
        QStringLiteral("movie-export FILES... --out MOVIE.mp4 [--fps N] [--size WxH] [--odd pad|scale] [--from-z]"),
        QStringLiteral("an H.264 movie of items through ffmpeg, one frame per item"), runExport, 40 },
    { QStringLiteral("movie-import"),
        QStringLiteral("movie-import MOVIE --out-dir DIR [--start SECONDS] [--frames N] [--size WxH]"),
        QStringLiteral("one item file per movie frame (ffmpeg, or animated GIF)"), runImport, 41 },
});

} // namespace
