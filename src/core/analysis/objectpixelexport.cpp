#include "objectpixelexport.h"

#include "core/base/atomicfile.h"
#include "core/items/qsciimage.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

namespace {

const QVector<QPoint>& listOf(const QSciSingleObject& o, ObjectPixelExport::Pixels pixels)
{
    switch (pixels) {
    case ObjectPixelExport::Pixels::Skeleton:
        return o.skeletonPixels;
    case ObjectPixelExport::Pixels::LargestBranch:
        return o.skeletonLargestBranch;
    case ObjectPixelExport::Pixels::Fill:
        break;
    }
    return o.fillPixels;
}

QString csvField(const QString& text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) && !text.contains(QLatin1Char('\n')))
        return text;
    return QLatin1Char('"') + QString(text).replace(QLatin1String("\""), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString safeName(const QString& name)
{
    QString safe = name;
    safe.replace(QRegularExpression(QStringLiteral("[/\\\\:*?\"<>|]")), QStringLiteral("_"));
    return safe.isEmpty() ? QStringLiteral("item") : safe;
}

} // namespace

bool ObjectPixelExport::write(const QList<const QSciImage*>& items, Pixels pixels, Files files, const QString& target,
    QString* message, QStringList* written)
{
    const QString header = QStringLiteral("Image,Object,x,y\n");
    QList<QPair<QString, QString>> out; // file, content
    QString all = header;
    for (const QSciImage* item : items) {
        QString perImage = header;
        for (int index = 0; index < item->objects().size(); ++index) {
            const QSciSingleObject& o = item->objects().at(index);
            const int number = o.numberAt(index);
            QString lines;
            const QString prefix
                = csvField(item->name()) + QLatin1Char(',') + QString::number(number) + QLatin1Char(',');
            for (const QPoint& p : listOf(o, pixels))
                lines
                    += prefix + QString::number(p.x()) + QLatin1Char(',') + QString::number(p.y()) + QLatin1Char('\n');
            all += lines;
            perImage += lines;
            if (files == Files::PerObject)
                out.append({ QDir(target).filePath(QStringLiteral("%1_%2.csv").arg(safeName(item->name())).arg(number)),
                    header + lines });
        }
        if (files == Files::PerImage && !item->objects().isEmpty())
            out.append({ QDir(target).filePath(safeName(item->name()) + QStringLiteral(".csv")), perImage });
    }
    if (files == Files::AllInOne)
        out.append({ target, all });
    if (all == header) {
        if (message)
            *message = QCoreApplication::translate("ObjectPixelExport", "The selected items hold no objects.");
        return false;
    }
    for (const auto& file : out) {
        if (!AtomicFile::write(file.first, file.second.toUtf8(), message))
            return false;
        if (written)
            written->append(file.first);
    }
    return true;
}
