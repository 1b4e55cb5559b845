#include "plot2dfile.h"

#include "plotvalues.h"

#include "core/base/messages.h"
#include "core/base/taggedtextnode.h"
#include "core/base/taggedtextwriter.h"
#include "core/tables/velmdocumentfile.h"

bool Plot2dFile::isPlotFileName(const QString& path)
{
    return path.endsWith(suffix(), Qt::CaseInsensitive);
}

QString Plot2dFile::corruptedText(const QString& path)
{
    return Messages::withPath(Messages::tr("Unfortunately, the file is corrupted and cannot be loaded!"), path);
}

QString Plot2dFile::noPlotDataText(const QString& path)
{
    return Messages::withPath(Messages::tr("File contains no 2d plot data!"), path);
}

bool Plot2dFile::write(const Plot2dDocument& document, const QString& path, QString* message)
{
    TaggedTextWriter writer;
    VelmDocumentFile::begin(writer, type());
    writer.addPlainField(QStringLiteral("version"), QStringLiteral("1"));
    writer.beginChapter(QStringLiteral("settings"));
    for (const auto& pair : Plot2dDocument::settingDefaults())
        writer.addField(pair.first, document.setting(pair.first));
    writer.endChapter();
    writer.addPlainField(QStringLiteral("geometry"), PlotValues::joinRect(document.geometry));
    writer.beginChapter(QStringLiteral("plotData"));
    for (const Plot2dCurve& curve : document.curves) {
        writer.beginChapter(QStringLiteral("plot"));
        writer.addField(QStringLiteral("plotName"), curve.plotName);
        writer.addPlainField(QStringLiteral("variables"), QString::number(curve.variables.size()));
        writer.addField(QStringLiteral("variableStr"), PlotValues::joinNames(curve.variables));
        writer.addPlainField(QStringLiteral("valueLength"), QString::number(curve.values.size()));
        writer.addPlainField(QStringLiteral("values"), PlotValues::join(curve.values));
        writer.endChapter();
    }
    writer.endChapter();
    if (!VelmDocumentFile::finish(writer, path, message)) {
        if (message)
            *message = Messages::withPath(Messages::tr("Unable to save plot"), path) + QLatin1Char('\n') + *message;
        return false;
    }
    return true;
}

bool Plot2dFile::fromContent(const TaggedTextNode& content, Plot2dDocument* document)
{
    const TaggedTextNode* settings = content.chapter(QStringLiteral("settings"));
    const TaggedTextNode* data = content.chapter(QStringLiteral("plotData"));
    if (!settings || !data)
        return false;
    Plot2dDocument result;
    for (const auto& field : settings->fields())
        result.setSetting(field.first, field.second);
    QRect geometry;
    // A short or unreadable geometry keeps the default window place rather than failing the whole file.
    if (PlotValues::parseRect(content.field(QStringLiteral("geometry")), &geometry))
        result.geometry = geometry;
    for (const TaggedTextNode& plot : data->chapters()) {
        if (plot.name() != QLatin1String("plot"))
            continue;
        Plot2dCurve curve;
        curve.plotName = plot.field(QStringLiteral("plotName"));
        curve.variables = PlotValues::splitNames(plot.field(QStringLiteral("variableStr")));
        bool ok = false;
        const qint64 length = plot.field(QStringLiteral("valueLength")).toLongLong(&ok);
        if (!ok || length < 0 || !PlotValues::parse(plot.field(QStringLiteral("values")), &curve.values)
            || curve.values.size() != length)
            return false;
        result.curves.append(curve);
    }
    *document = std::move(result);
    return true;
}

bool Plot2dFile::read(const QString& path, Plot2dDocument* document, QString* message)
{
    TaggedTextNode root;
    QString foundType;
    if (!VelmDocumentFile::read(path, &root, &foundType, message))
        return false;
    const TaggedTextNode* content = root.chapter(QStringLiteral("content"));
    Plot2dDocument result;
    if (foundType != type() || !content || !fromContent(*content, &result)) {
        if (message)
            *message = corruptedText(path);
        return false;
    }
    if (result.curves.isEmpty()) {
        if (message)
            *message = noPlotDataText(path);
        return false;
    }
    *document = std::move(result);
    return true;
}
