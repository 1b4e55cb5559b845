#include "cliargs.h"
#include "clicommand.h"
#include "cliinstruments.h"
#include "cliitems.h"

#include "core/import/instrumentimporters.h"
#include "core/items/qsciimage.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject statistics(const QVector<double>& z)
{
    double minimum = z.isEmpty() ? 0 : z.first(), maximum = minimum, sum = 0;
    for (double value : z) {
        minimum = qMin(minimum, value);
        maximum = qMax(maximum, value);
        sum += value;
    }
    return { { QStringLiteral("min"), minimum }, { QStringLiteral("max"), maximum },
        { QStringLiteral("mean"), z.isEmpty() ? 0.0 : sum / double(z.size()) } };
}

int runImport(CliContext& ctx, CliArgs& args)
{
    const QString outDir = args.takeRequired(QStringLiteral("--out-dir"));
    bool channelGiven = false;
    const QString channelText = args.takeOption(QStringLiteral("--channel"), &channelGiven);
    const QString problem = args.usageError();
    bool channelOk = true;
    const int onlyChannel = channelGiven ? channelText.toInt(&channelOk) : -1;
    if (!problem.isEmpty() || args.positional().size() != 1 || !channelOk || (channelGiven && onlyChannel < 0)) {
        const QString text = !problem.isEmpty() ? problem
            : args.positional().size() != 1     ? QStringLiteral("import needs one FILE")
                                                : QStringLiteral("--channel needs a number from 0");
        ctx.err << text << Qt::endl;
        return CliUsage;
    }
    const QString path = args.positional().first();
    InstrumentFile file;
    QString message;
    if (!InstrumentImporters::readFile(path, &file, &message))
        return ctx.fail(message);
    if (channelGiven && onlyChannel >= file.channels.size())
        return ctx.fail(QStringLiteral("No channel %1: the file has %2").arg(onlyChannel).arg(file.channels.size()));
    if (!QDir().mkpath(outDir))
        return ctx.fail(QStringLiteral("Unable to write file: ") + outDir);
    const QString stem = QFileInfo(path).completeBaseName();
    for (int i = 0; i < file.channels.size(); ++i) {
        if (channelGiven && i != onlyChannel)
            continue;
        QSciImage item;
        InstrumentImporters::toItem(file, i, path, item);
        const QString target = QDir(outDir).filePath(QStringLiteral("%1.%2.img.velm").arg(stem).arg(i));
        if (!CliItems::save(ctx, item, target))
            return CliFailure;
        ctx.out << target << Qt::endl;
    }
    return CliSuccess;
}

const CliCommandRegistration registration(
    { { QStringLiteral("import"), QStringLiteral("import FILE --out-dir DIR [--channel N]"),
        QStringLiteral("one item file per image channel of an instrument, picture or raw file"), runImport, 21 } });

} // namespace

int CliInstruments::info(CliContext& ctx, const QString& path)
{
    InstrumentFile file;
    QString message;
    if (!InstrumentImporters::readFile(path, &file, &message))
        return ctx.fail(message);
    QJsonArray channels;
    for (const ImportedChannel& channel : qAsConst(file.channels)) {
        const QSciImage::SciValues& v = channel.sciValues;
        channels.append(QJsonObject { { QStringLiteral("title"), channel.title },
            { QStringLiteral("width"), channel.width }, { QStringLiteral("height"), channel.height },
            { QStringLiteral("xSize"), v.sizeX }, { QStringLiteral("ySize"), v.sizeY },
            { QStringLiteral("xUnit"), v.xUnit }, { QStringLiteral("yUnit"), v.yUnit },
            { QStringLiteral("zUnit"), v.zUnit }, { QStringLiteral("z"), statistics(channel.z) } });
    }
    const QJsonObject json { { QStringLiteral("type"), QStringLiteral("instrument") },
        { QStringLiteral("format"), file.format }, { QStringLiteral("channels"), channels } };
    ctx.out << QJsonDocument(json).toJson(QJsonDocument::Indented);
    return CliSuccess;
}
