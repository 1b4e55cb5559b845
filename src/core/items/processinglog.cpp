#include "processinglog.h"

#include "core/base/tokencodec.h"
#include "core/items/qsciimage.h"

#include <QCoreApplication>

void ProcessingLog::append(QSciImage& item, const QString& operation, const QString& parameters)
{
    QStringList lines = item.processingLog();
    lines.append(line(operation, parameters, QDateTime::currentDateTime()));
    item.setProcessingLog(lines);
}

QString ProcessingLog::line(const QString& operation, const QString& parameters, const QDateTime& when)
{
    QString text = when.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) + QStringLiteral("  ") + operation;
    if (!parameters.isEmpty())
        text += QStringLiteral("  ") + parameters;
    // A line break inside would split one operation over two lines of a CSV comment.
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    text.remove(QLatin1Char('\r'));
    return text;
}

QStringList ProcessingLog::commentLines(const QSciImage& item)
{
    QStringList lines;
    if (item.processingLog().isEmpty())
        return lines;
    lines.append(QStringLiteral("# ") + QCoreApplication::translate("ProcessingLog", "Processing log"));
    for (const QString& entry : item.processingLog())
        lines.append(QStringLiteral("# ") + entry);
    return lines;
}

QString ProcessingLog::encode(const QStringList& lines)
{
    QString text;
    for (const QString& entry : lines)
        TokenCodec::append(text, entry);
    return text;
}

QStringList ProcessingLog::decode(const QString& text)
{
    QStringList lines;
    TokenReader reader(text);
    while (!reader.atEnd())
        lines.append(reader.next());
    return lines;
}
