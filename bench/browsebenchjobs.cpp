#include "benchharness.h"

#include "core/import/filepreview.h"
#include "core/import/thumbnailcache.h"

#include <QDir>
#include <QDirIterator>
#include <QtConcurrent/QtConcurrentMap>
#include <functional>

namespace {

/**
 * `browse_previews_first` and `browse_previews_cached`: the thumbnails of every readable file below the folder
 * in VELMORA_BENCH_BROWSE, made on the worker threads as the browser makes them, from the files and from the
 * disk cache.
 */
QList<BenchJob> browseJobs(BenchContext& context)
{
    const QString folder = qEnvironmentVariable("VELMORA_BENCH_BROWSE");
    if (folder.isEmpty())
        return {};
    QStringList paths;
    QDirIterator it(folder, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (FilePreview::isBrowsable(path))
            paths.append(path);
    }
    const QString cacheDir = context.workDir + QStringLiteral("/thumbnails");
    const auto run = [paths, cacheDir]() {
        const ThumbnailCache cache(cacheDir);
        const std::function<FilePreview(const QString&)> preview
            = [cache](const QString& p) { return cache.preview(p); };
        const QList<FilePreview> previews = QtConcurrent::blockingMapped<QList<FilePreview>>(paths, preview);
        if (previews.size() != paths.size())
            qFatal("browse bench: previews missing");
    };
    return { { QStringLiteral("browse_previews_first"), run, [cacheDir]() { QDir(cacheDir).removeRecursively(); } },
        { QStringLiteral("browse_previews_cached"), run, {} } };
}

const BenchRegistration registration(60, browseJobs);

} // namespace
