#include "plot3dfile.h"

#include "plotvalues.h"

#include "core/base/messages.h"
#include "core/base/taggedtextnode.h"
#include "core/base/taggedtextwriter.h"
#include "core/items/qsciimage.h"
#include "core/tables/velmdocumentfile.h"

#include <cmath>

bool Plot3dFile::isPlotFileName(const QString& path)
{
    return path.endsWith(suffix(), Qt::CaseInsensitive);
}

QString Plot3dFile::corruptedText(const QString& path)
{
    return Messages::withPath(Messages::tr("The file is corrupted and cannot be loaded."), path);
}

bool Plot3dFile::write(const Plot3dDocument& document, const QString& path, QString* message)
{
    TaggedTextWriter writer(int(std::min<qsizetype>(document.z.size() * 12, 1 << 28)));
    VelmDocumentFile::begin(writer, type());
    writer.addPlainField(QStringLiteral("version"), QStringLiteral("1"));
    writer.beginChapter(QStringLiteral("settings"));
    for (const auto& pair : Plot3dDocument::settingDefaults())
        writer.addField(pair.first, document.setting(pair.first));
    writer.endChapter();
    writer.addPlainField(QStringLiteral("geometry"), PlotValues::joinRect(document.geometry));
    writer.addField(QStringLiteral("itemName"), document.itemName);
    writer.addField(QStringLiteral("xUnit"), document.xUnit);
    writer.addField(QStringLiteral("yUnit"), document.yUnit);
    writer.addField(QStringLiteral("zUnit"), document.zUnit);
    writer.addPlainField(QStringLiteral("xSize"), QString::number(document.xSize, 'g', 17));
    writer.addPlainField(QStringLiteral("ySize"), QString::number(document.ySize, 'g', 17));
    writer.addPlainField(QStringLiteral("imageWidth"), QString::number(document.width));
    writer.addPlainField(QStringLiteral("imageHeight"), QString::number(document.height));
    writer.addPlainField(QStringLiteral("zMin"), QString::number(document.zMin, 'g', 17));
    writer.addPlainField(QStringLiteral("zMax"), QString::number(document.zMax, 'g', 17));
    writer.addPlainField(QStringLiteral("data"), PlotValues::join(document.z));
    return VelmDocumentFile::finish(writer, path, message);
}

bool Plot3dFile::fromContent(const TaggedTextNode& content, Plot3dDocument* document)
{
    const TaggedTextNode* settings = content.chapter(QStringLiteral("settings"));
    if (!settings)
        return false;
    Plot3dDocument result;
    for (const auto& field : settings->fields())
        result.setSetting(field.first, field.second);
    QRect geometry;
    if (PlotValues::parseRect(content.field(QStringLiteral("geometry")), &geometry))
        result.geometry = geometry;
    result.itemName = content.field(QStringLiteral("itemName"));
    result.xUnit = content.field(QStringLiteral("xUnit"));
    result.yUnit = content.field(QStringLiteral("yUnit"));
    result.zUnit = content.field(QStringLiteral("zUnit"));
    bool okW = false, okH = false, okMin = false, okMax = false;
    result.width = content.field(QStringLiteral("imageWidth")).toInt(&okW);
    result.height = content.field(QStringLiteral("imageHeight")).toInt(&okH);
    result.zMin = content.field(QStringLiteral("zMin")).toDouble(&okMin);
    result.zMax = content.field(QStringLiteral("zMax")).toDouble(&okMax);
    if (!okW || !okH || !okMin || !okMax || !QSciImage::sizeFits(result.width, result.height))
        return false;
    result.xSize = content.field(QStringLiteral("xSize")).toDouble();
    result.ySize = content.field(QStringLiteral("ySize")).toDouble();
    if (!(result.xSize > 0) || !std::isfinite(result.xSize))
        result.xSize = result.width;
    if (!(result.ySize > 0) || !std::isfinite(result.ySize))
        result.ySize = result.height;
    if (!PlotValues::parse(content.field(QStringLiteral("data")), &result.z) || !result.hasData())
        return false;
    *document = std::move(result);
    return true;
}

bool Plot3dFile::read(const QString& path, Plot3dDocument* document, QString* message)
{
    TaggedTextNode root;
    QString foundType;
    if (!VelmDocumentFile::read(path, &root, &foundType, message))
        return false;
    const TaggedTextNode* content = root.chapter(QStringLiteral("content"));
    Plot3dDocument result;
    if (foundType != type() || !content || !fromContent(*content, &result)) {
        if (message)
            *message = corruptedText(path);
        return false;
    }
    *document = std::move(result);
    return true;
}
