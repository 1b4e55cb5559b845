#include "objectcommands.h"

#include "cliargs.h"
#include "cliitems.h"
#include "cliprogress.h"

#include "core/analysis/objectrecognitionoptions.h"
#include "core/analysis/objecttable.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/processinglog.h"
#include "core/items/qsciimage.h"
#include "core/project/collectiontab.h"
#include "core/project/objectoperations.h"
#include "core/project/project.h"
#include "core/tables/tabletext.h"

#include <cmath>

namespace {

bool takeNumber(CliArgs& args, const QString& name, double* value, bool* present, QString* problem)
{
    const QString text = args.takeOption(name, present);
    if (!*present)
        return true;
    bool ok = false;
    const double v = text.toDouble(&ok);
    if (!ok || !std::isfinite(v)) {
        *problem = QStringLiteral("%1 needs a number").arg(name);
        return false;
    }
    *value = v;
    return true;
}

bool takeLimit(CliArgs& args, const QString& name, ObjectLimit* limit, QString* problem)
{
    return takeNumber(args, name, &limit->value, &limit->checked, problem);
}

int runObjects(CliContext& ctx, CliArgs& args)
{
    const QString out = args.takeOption(QStringLiteral("--out"));
    const QString csv = args.takeOption(QStringLiteral("--csv"));
    const bool physical = args.takeFlag(QStringLiteral("--physical"));
    ObjectRecognitionOptions options;
    QString problem;
    if (!ObjectCommands::parseOptions(args, &options, &problem) || !args.usageError().isEmpty()
        || args.positional().size() != 1) {
        ctx.err << (!problem.isEmpty()         ? problem
                : !args.usageError().isEmpty() ? args.usageError()
                                               : QStringLiteral("objects needs one FILE"))
                << Qt::endl;
        return CliUsage;
    }
    QSciHistoryManager::instance()->setEnabled(false);
    Project project;
    auto* item = new QSciImage();
    project.addTab()->addItem(item);
    if (!CliItems::load(ctx, args.positional().first(), *item))
        return CliFailure;
    CliProgress progress(ctx.progressOnTerminal);
    QString message;
    if (ObjectOperations::recognise(project, { item }, options, 0, &progress, &message)
        != ObjectOperations::Outcome::Applied)
        return ctx.fail(message);
    ctx.out << item->objects().size() << Qt::endl;
    if (!csv.isEmpty()) {
        // How the item was made comes first, as comment lines that CSV readers skip.
        QString text;
        for (const QString& line : ProcessingLog::commentLines(*item))
            text += line + QLatin1Char('\n');
        text += TableText::joinCsv(ObjectTable::measures({ item }, physical));
        if (!CliItems::writeOut(ctx, csv, text.toUtf8()))
            return CliFailure;
    }
    if (!out.isEmpty() && !CliItems::save(ctx, *item, out))
        return CliFailure;
    return CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("objects"),
    QStringLiteral("objects FILE [--out FILE] [--csv MEASURES.csv] [--physical] [recognition options]\n  ")
        + ObjectCommands::optionUsage(),
    QStringLiteral("object recognition and measures; prints the number of objects found"), runObjects, 40 } });

} // namespace

QString ObjectCommands::optionUsage()
{
    return QStringLiteral(
        "recognition options: --depressions, --type 0|1|2, --fill P, --zrange MIN:MAX, --delta-z-min V, "
        "--delta-z-max V,\n  --r1-min V, --r1-max V, --r2-min V, --r2-max V, --width-min V, --width-max V, "
        "--height-min V, --height-max V,\n  --area-min V, --area-max V, --in-selection, --mark, --opt KEY=VALUE; "
        "an option given ticks its check box");
}

bool ObjectCommands::parseOptions(CliArgs& args, ObjectRecognitionOptions* o, QString* problem)
{
    *o = ObjectRecognitionOptions();
    for (ObjectLimit* limit : { &o->deltaZMin, &o->deltaZMax, &o->r1Min, &o->r1Max, &o->r2Min, &o->r2Max, &o->widthMin,
             &o->widthMax, &o->heightMin, &o->heightMax, &o->areaMin, &o->areaMax })
        *limit = ObjectLimit();
    o->depressions = args.takeFlag(QStringLiteral("--depressions"));
    o->onlyInSelection = args.takeFlag(QStringLiteral("--in-selection"));
    o->markFoundPixels = args.takeFlag(QStringLiteral("--mark"));
    bool present = false;
    const QString type = args.takeOption(QStringLiteral("--type"), &present);
    if (present) {
        if (type != QLatin1String("0") && type != QLatin1String("1") && type != QLatin1String("2")) {
            *problem = QStringLiteral("--type needs 0, 1 or 2");
            return false;
        }
        o->objectType = type.toInt();
    }
    if (!takeNumber(args, QStringLiteral("--fill"), &o->fillFactor, &present, problem))
        return false;
    if (present && (o->fillFactor < 0 || o->fillFactor > 100)) {
        *problem = QStringLiteral("--fill needs a percentage from 0 to 100");
        return false;
    }
    const QString range = args.takeOption(QStringLiteral("--zrange"), &present);
    if (present) {
        const QStringList parts = range.split(QLatin1Char(':'));
        bool ok1 = false, ok2 = false;
        if (parts.size() == 2) {
            o->zRangeMinFactor = parts[0].toDouble(&ok1);
            o->zRangeMaxFactor = parts[1].toDouble(&ok2);
        }
        if (!ok1 || !ok2) {
            *problem = QStringLiteral("--zrange needs MIN:MAX (percentages of the z range)");
            return false;
        }
        o->zRangeMode = true;
    }
    const QPair<const char*, ObjectLimit*> limits[]
        = { { "--delta-z-min", &o->deltaZMin }, { "--delta-z-max", &o->deltaZMax }, { "--r1-min", &o->r1Min },
              { "--r1-max", &o->r1Max }, { "--r2-min", &o->r2Min }, { "--r2-max", &o->r2Max },
              { "--width-min", &o->widthMin }, { "--width-max", &o->widthMax }, { "--height-min", &o->heightMin },
              { "--height-max", &o->heightMax }, { "--area-min", &o->areaMin }, { "--area-max", &o->areaMax } };
    for (const auto& limit : limits)
        if (!takeLimit(args, QString::fromLatin1(limit.first), limit.second, problem))
            return false;
    for (const QString& setting : args.takeAll(QStringLiteral("--opt"))) {
        const int eq = setting.indexOf(QLatin1Char('='));
        if (eq <= 0 || !o->set(setting.left(eq), setting.mid(eq + 1))) {
            *problem = QStringLiteral("--opt needs KEY=VALUE with an ImageProcessing key of object recognition: %1")
                           .arg(setting);
            return false;
        }
    }
    return true;
}

int ObjectCommands::recognise(CliContext& ctx, CliArgs& args, Project& project, QSciImage* item)
{
    ObjectRecognitionOptions options;
    QString problem;
    if (!parseOptions(args, &options, &problem)) {
        ctx.err << problem << Qt::endl;
        return CliUsage;
    }
    CliProgress progress(ctx.progressOnTerminal);
    QString message;
    if (ObjectOperations::recognise(project, { item }, options, 0, &progress, &message)
        != ObjectOperations::Outcome::Applied)
        return ctx.fail(message);
    return CliSuccess;
}

QList<QPair<QString, ObjectCommands::Operation>> ObjectCommands::operations()
{
    return { { QStringLiteral("objects"), &ObjectCommands::recognise } };
}
