#include "documentinfo.h"

#include "core/tables/columnstatistics.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tablefile.h"
#include "core/tables/textdocumentfile.h"
#include "core/tables/velmdocumentfile.h"

#include <QJsonArray>

bool DocumentInfo::isDocumentFileName(const QString& path)
{
    for (const char* suffix : { ".table.velm", ".text.velm", ".output.velm" })
        if (path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive))
            return true;
    return false;
}

bool DocumentInfo::describe(const QString& path, QJsonObject* json, QString* message)
{
    TaggedTextNode root;
    QString type;
    if (!VelmDocumentFile::read(path, &root, &type, message))
        return false;
    const TaggedTextNode* content = root.chapter(QStringLiteral("content"));
    if (!content) {
        *message = VelmDocumentFile::corrupted(path);
        return false;
    }
    if (type == TableFile::type()) {
        QString title;
        const auto table = TableFile::fromContent(*content, &title);
        if (!table) {
            *message = VelmDocumentFile::corrupted(path);
            return false;
        }
        qint64 filled = 0;
        for (const QString& cell : table->allCells())
            filled += cell.isEmpty() ? 0 : 1;
        QJsonArray columns;
        for (int c = 0; c < table->columns(); ++c) {
            const ColumnStatistics s = ColumnStatistics::of(*table, c);
            columns.append(QJsonObject { { QStringLiteral("count"), s.count }, { QStringLiteral("mean"), s.mean },
                { QStringLiteral("sd"), s.standardDeviation }, { QStringLiteral("min"), s.minimum },
                { QStringLiteral("max"), s.maximum } });
        }
        *json = { { QStringLiteral("type"), type }, { QStringLiteral("title"), title },
            { QStringLiteral("rows"), table->rows() }, { QStringLiteral("columns"), table->columns() },
            { QStringLiteral("filledCells"), double(filled) }, { QStringLiteral("columnStatistics"), columns } };
        return true;
    }
    for (auto kind : { TextDocumentFile::Kind::Text, TextDocumentFile::Kind::Output }) {
        if (type != TextDocumentFile::type(kind))
            continue;
        const QString text = content->field(QStringLiteral("text"));
        *json
            = { { QStringLiteral("type"), type }, { QStringLiteral("title"), content->field(QStringLiteral("title")) },
                  { QStringLiteral("characters"), double(text.size()) },
                  { QStringLiteral("lines"), text.isEmpty() ? 0.0 : double(text.count(QLatin1Char('\n')) + 1) } };
        return true;
    }
    *message = VelmDocumentFile::notVelmData(path);
    return false;
}
