#include "tablefile.h"

#include "qscisimpletablemodel.h"
#include "velmdocumentfile.h"

#include "core/base/taggedtextwriter.h"

namespace {

bool toCount(const QString& text, int* value)
{
    bool ok = false;
    *value = text.toInt(&ok);
    return ok && *value >= 0;
}

} // namespace

bool TableFile::isTableFileName(const QString& path)
{
    return path.endsWith(QLatin1String(".table.velm"), Qt::CaseInsensitive);
}

bool TableFile::write(const QString& path, const QSciSimpleTableModel& table, const QString& title, QString* message)
{
    TaggedTextWriter writer;
    VelmDocumentFile::begin(writer, type());
    writer.addField(QStringLiteral("title"), title);
    writer.addPlainField(QStringLiteral("rows"), QString::number(table.rows()));
    writer.addPlainField(QStringLiteral("columns"), QString::number(table.columns()));
    writer.beginChapter(QStringLiteral("cells"));
    // One field per filled cell keeps sparse tables small and any text (tabs, line breaks) intact.
    for (int r = 0; r < table.rows(); ++r) {
        for (int c = 0; c < table.columns(); ++c) {
            const QString& text = table.cellText(r, c);
            if (!text.isEmpty())
                writer.addField(QStringLiteral("c"),
                    QString::number(r) + QLatin1Char(';') + QString::number(c) + QLatin1Char(';') + text);
        }
    }
    writer.endChapter();
    return VelmDocumentFile::finish(writer, path, message);
}

std::unique_ptr<QSciSimpleTableModel> TableFile::fromContent(const TaggedTextNode& content, QString* title)
{
    int rows = 0, columns = 0;
    if (!toCount(content.field(QStringLiteral("rows")), &rows)
        || !toCount(content.field(QStringLiteral("columns")), &columns)
        || qint64(rows) * columns > QSciSimpleTableModel::MaxCells)
        return nullptr;
    const TaggedTextNode* cells = content.chapter(QStringLiteral("cells"));
    if (!cells && qint64(rows) * columns > 0 && content.findField(QStringLiteral("cells")) == nullptr)
        return nullptr;
    QVector<QString> values(qsizetype(rows) * columns);
    if (cells) {
        for (const TaggedTextNode::Field& field : cells->fields()) {
            const QString& entry = field.second;
            const int first = int(entry.indexOf(QLatin1Char(';')));
            const int second = first < 0 ? -1 : int(entry.indexOf(QLatin1Char(';'), first + 1));
            int r = -1, c = -1;
            if (field.first != QLatin1String("c") || second < 0 || !toCount(entry.left(first), &r)
                || !toCount(entry.mid(first + 1, second - first - 1), &c) || r >= rows || c >= columns)
                return nullptr;
            values[qsizetype(r) * columns + c] = entry.mid(second + 1);
        }
    }
    auto model = std::make_unique<QSciSimpleTableModel>(rows, columns);
    model->setAllCells(values);
    if (title)
        *title = content.field(QStringLiteral("title"));
    return model;
}

std::unique_ptr<QSciSimpleTableModel> TableFile::read(const QString& path, QString* title, QString* message)
{
    TaggedTextNode root;
    if (!VelmDocumentFile::readTyped(path, type(), &root, message))
        return nullptr;
    auto model = fromContent(*root.chapter(QStringLiteral("content")), title);
    if (!model && message)
        *message = VelmDocumentFile::corrupted(path);
    return model;
}
