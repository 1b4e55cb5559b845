#include "cliargs.h"
#include "clicommand.h"
#include "cliinstruments.h"
#include "cliitems.h"
#include "documentinfo.h"
#include "plotinfo.h"

#include "core/base/messages.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

namespace {

QJsonArray pairs(const QList<QPair<QString, QString>>& list)
{
    QJsonArray array;
    for (const auto& pair : list)
        array.append(QJsonArray { pair.first, pair.second });
    return array;
}

/** Over the finite values only: NaN and infinity mark points a scan did not measure. */
QJsonObject zStatistics(const QSciImage& item)
{
    const qsizetype n = qsizetype(item.width()) * item.height();
    const double* z = item.zData();
    double minimum = 0, maximum = 0, sum = 0;
    item.zRange(&minimum, &maximum);
    qsizetype finite = 0;
    for (qsizetype i = 0; i < n; ++i) {
        if (std::isfinite(z[i])) {
            sum += z[i];
            ++finite;
        }
    }
    // No finite value at all: null, as JSON has no NaN.
    const auto number = [finite](double value) { return finite ? QJsonValue(value) : QJsonValue(); };
    return { { QStringLiteral("min"), number(minimum) }, { QStringLiteral("max"), number(maximum) },
        { QStringLiteral("mean"), number(finite ? sum / double(finite) : 0.0) },
        { QStringLiteral("nonFinite"), double(n - finite) } };
}

/** The mode and the z values the gradient spans, as the picture would be coloured. */
QJsonObject colorRange(const QSciImage& item)
{
    static const char* const modes[] = { "full", "fixed", "cut" };
    double low = 0, high = 0;
    item.displayRange(&low, &high);
    const auto number = [](double value) { return std::isfinite(value) ? QJsonValue(value) : QJsonValue(); };
    QJsonObject range { { QStringLiteral("mode"), QLatin1String(modes[int(item.colorRange().mode)]) },
        { QStringLiteral("min"), number(low) }, { QStringLiteral("max"), number(high) } };
    if (item.colorRange().mode == ColorRange::Mode::Cut)
        range.insert(QStringLiteral("cutPercent"), item.colorRange().cutPercent);
    return range;
}

int runInfo(CliContext& ctx, CliArgs& args)
{
    const bool withObjects = args.takeFlag(QStringLiteral("--objects"));
    const QString problem = args.usageError();
    if (!problem.isEmpty() || args.positional().size() != 1) {
        ctx.err << (problem.isEmpty() ? QStringLiteral("info needs one FILE") : problem) << Qt::endl;
        return CliUsage;
    }
    const QString path = args.positional().first();
    if (DocumentInfo::isDocumentFileName(path) || PlotInfo::isPlotFileName(path)) {
        QJsonObject document;
        QString message;
        const bool described = PlotInfo::isPlotFileName(path) ? PlotInfo::describe(path, &document, &message)
                                                              : DocumentInfo::describe(path, &document, &message);
        if (!described)
            return ctx.fail(message);
        ctx.out << QJsonDocument(document).toJson(QJsonDocument::Indented);
        return CliSuccess;
    }
    if (!ItemFile::isNativeFileName(path) && QFileInfo::exists(path)) {
        if (QFileInfo(path).isDir())
            return ctx.fail(Messages::unableToReadFromFile(path) + QLatin1Char('\n') + Messages::tr("is a directory"));
        return CliInstruments::info(ctx, path);
    }
    ItemFile::Info info;
    QString message;
    if (!ItemFile::readInfo(path, &info, &message))
        return ctx.fail(message);
    QSciImage item;
    if (!CliItems::load(ctx, path, item))
        return CliFailure;

    QJsonObject properties;
    for (const auto& pair : qAsConst(info.properties)) {
        if (!properties.contains(pair.first))
            properties.insert(pair.first, pair.second);
    }
    QJsonObject json { { QStringLiteral("type"), QStringLiteral("image") }, { QStringLiteral("width"), info.width },
        { QStringLiteral("height"), info.height }, { QStringLiteral("parts"), info.flags.toString() },
        { QStringLiteral("properties"), properties }, { QStringLiteral("header"), pairs(info.instrumentHeader) },
        { QStringLiteral("textLines"), QJsonArray::fromStringList(info.textLines) },
        { QStringLiteral("objects"), item.objects().size() }, { QStringLiteral("z"), zStatistics(item) },
        { QStringLiteral("maskSelected"), double(item.maskSelectedCount()) } };
    json.insert(QStringLiteral("processingLog"), QJsonArray::fromStringList(item.processingLog()));
    json.insert(QStringLiteral("colorRange"), colorRange(item));
    if (withObjects) {
        QJsonArray records;
        for (const QSciSingleObject& object : item.objects())
            records.append(object.toString());
        json.insert(QStringLiteral("objectRecords"), records);
    }
    ctx.out << QJsonDocument(json).toJson(QJsonDocument::Indented);
    return CliSuccess;
}

const CliCommandRegistration registration({ { QStringLiteral("info"), QStringLiteral("info FILE [--objects]"),
    QStringLiteral("JSON describing a native file"), runInfo, 10 } });

} // namespace
