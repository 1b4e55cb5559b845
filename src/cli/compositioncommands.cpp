#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"

#include "core/items/qsciimage.h"
#include "core/project/imagecomposition.h"

#include <QDir>
#include <memory>
#include <vector>

namespace {

int usage(CliContext& ctx, const QString& problem, const QString& text)
{
    ctx.err << (problem.isEmpty() ? text : problem) << Qt::endl;
    return CliUsage;
}

int runCompose(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeRequired(QStringLiteral("--out"));
    const QString problem = args.usageError();
    const QStringList files = args.positional();
    if (!problem.isEmpty() || files.size() < 2)
        return usage(ctx, problem, QStringLiteral("compose needs two or more FILEs and --out FILE"));
    std::vector<std::unique_ptr<QSciImage>> parts;
    QList<const QSciImage*> sources;
    for (const QString& file : files) {
        parts.push_back(std::make_unique<QSciImage>());
        if (!CliItems::load(ctx, file, *parts.back()))
            return CliFailure;
        sources.append(parts.back().get());
    }
    QString message;
    const std::unique_ptr<QSciImage> composed = ImageComposition::compose(sources, &message);
    if (!composed)
        return ctx.fail(message);
    ctx.out << composed->width() << 'x' << composed->height() << Qt::endl;
    return CliItems::save(ctx, *composed, out) ? CliSuccess : CliFailure;
}

int runRecompose(CliContext& ctx, CliArgs& args)
{
    const QString dir = args.takeRequired(QStringLiteral("--out-dir"));
    const QString problem = args.usageError();
    if (!problem.isEmpty() || args.positional().size() != 1)
        return usage(ctx, problem, QStringLiteral("recompose needs one FILE and --out-dir DIR"));
    QSciImage composed;
    if (!CliItems::load(ctx, args.positional().first(), composed))
        return CliFailure;
    QString message;
    std::vector<std::unique_ptr<QSciImage>> parts = ImageComposition::recompose(composed, &message);
    if (parts.empty())
        return ctx.fail(message);
    if (!QDir().mkpath(dir))
        return ctx.fail(QStringLiteral("Cannot create the folder %1").arg(dir));
    for (size_t i = 0; i < parts.size(); ++i) {
        // Parts keep their names inside; the files are numbered, since names may repeat or hold any character.
        const QString path = QDir(dir).filePath(QStringLiteral("part%1.img.velm").arg(i + 1));
        if (!CliItems::save(ctx, *parts[i], path))
            return CliFailure;
        ctx.out << path << Qt::endl;
    }
    return CliSuccess;
}

const CliCommandRegistration registration(
    { { QStringLiteral("compose"), QStringLiteral("compose FILE FILE... --out FILE"),
          QStringLiteral("joins items by their physical offsets (same point spacing); prints the size"), runCompose,
          47 },
        { QStringLiteral("recompose"), QStringLiteral("recompose FILE --out-dir DIR"),
            QStringLiteral("cuts a composed item back into its parts, one file each"), runRecompose, 48 } });

} // namespace
