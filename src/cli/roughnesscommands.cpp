#include "cliargs.h"
#include "clicommand.h"
#include "cliitems.h"

#include "core/items/qsciimage.h"
#include "core/processing/roughness.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

int runRoughness(CliContext& ctx, CliArgs& args)
{
    const bool masked = args.takeFlag(QStringLiteral("--masked"));
    const QString problem = args.usageError();
    if (!problem.isEmpty() || args.positional().size() != 1) {
        ctx.err << (problem.isEmpty() ? QStringLiteral("roughness needs one FILE") : problem) << Qt::endl;
        return CliUsage;
    }
    QSciImage item;
    if (!CliItems::load(ctx, args.positional().first(), item))
        return CliFailure;
    Roughness::Result result;
    QString message;
    if (!Roughness::evaluate(item, masked, &result, &message))
        return ctx.fail(message);
    QJsonObject json;
    for (const auto& parameter : result.named())
        json.insert(parameter.first, parameter.second);
    json.insert(QStringLiteral("unit"), item.sciValues().zUnit);
    json.insert(QStringLiteral("points"), double(result.points));
    json.insert(QStringLiteral("physicalSlopes"), result.physicalSlopes);
    ctx.out << QJsonDocument(json).toJson(QJsonDocument::Indented);
    return CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("roughness"), QStringLiteral("roughness FILE [--masked]"),
    QStringLiteral("areal and row roughness parameters as JSON, in the item's z unit"), runRoughness, 45 } });

} // namespace
