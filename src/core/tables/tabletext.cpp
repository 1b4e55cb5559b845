#include "tabletext.h"

#include "qscisimpletablemodel.h"

#include <QRegularExpression>

namespace {

bool isLineBreak(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r');
}

QString csvField(const QString& text)
{
    // Semicolons and tabs are quoted too, so that reading the file back cannot take them for the separator.
    static const QRegularExpression needsQuotes(QStringLiteral("[,;\\t\"\\r\\n]|^\\s|\\s$"));
    if (!text.contains(needsQuotes))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace

QChar TableText::detectSeparator(const QString& text)
{
    // Judge by the first lines only: a separator is one that nearly every data line uses.
    static const QRegularExpression quotedField(QStringLiteral("\"[^\"]*\""));
    QString head = text.left(1 << 16);
    head.remove(quotedField);
    const QStringList lines = head.split(QRegularExpression(QStringLiteral("[\\r\\n]+")), Qt::SkipEmptyParts);
    const int sample = int(qMin<qsizetype>(lines.size(), 50));
    for (QChar candidate : { QLatin1Char('\t'), QLatin1Char(';'), QLatin1Char(',') }) {
        int using_ = 0;
        for (int i = 0; i < sample; ++i)
            using_ += lines.at(i).contains(candidate) ? 1 : 0;
        if (sample > 0 && using_ * 2 > sample)
            return candidate;
    }
    return Whitespace;
}

QVector<QStringList> TableText::split(const QString& text, QChar separator)
{
    QVector<QStringList> rows;
    QStringList row;
    QString field;
    bool quoted = false, fieldStarted = false;
    auto endField = [&]() {
        row.append(field);
        field.clear();
        fieldStarted = false;
    };
    auto endRow = [&]() {
        if (fieldStarted || !field.isEmpty())
            endField();
        const bool blank = row.size() == 1 && row.constFirst().trimmed().isEmpty();
        if (!row.isEmpty() && !blank)
            rows.append(row);
        row.clear();
    };
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == QLatin1Char('"')) {
                if (i + 1 < n && text.at(i + 1) == QLatin1Char('"')) {
                    field.append(c);
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                field.append(c);
            }
            continue;
        }
        if (separator == Whitespace && (c == QLatin1Char(' ') || c == QLatin1Char('\t'))) {
            if (fieldStarted || !field.isEmpty())
                endField();
        } else if (c == separator) {
            endField();
            fieldStarted = true; // a separator at the line's end still opens an empty last field
        } else if (isLineBreak(c)) {
            endRow();
        } else if (c == QLatin1Char('"') && field.isEmpty()) {
            quoted = true;
            fieldStarted = true;
        } else {
            field.append(c);
        }
    }
    endRow();
    return rows;
}

TableText::Parsed TableText::parse(const QString& text)
{
    Parsed parsed;
    parsed.separator = detectSeparator(text);
    parsed.rows = split(text, parsed.separator);
    for (const QStringList& row : qAsConst(parsed.rows))
        parsed.columns = qMax(parsed.columns, int(row.size()));
    if (parsed.separator == QLatin1Char(','))
        return parsed;
    // A decimal comma is only possible when the comma separates nothing; numbers like 1,5 then mean 1.5.
    static const QRegularExpression commaNumber(QStringLiteral("^\\s*[-+]?[0-9]*,[0-9]+([eE][-+]?[0-9]+)?\\s*$"));
    for (QStringList& row : parsed.rows) {
        for (QString& field : row) {
            if (field.contains(QLatin1Char(',')) && commaNumber.match(field).hasMatch()) {
                field = field.trimmed().replace(QLatin1Char(','), QLatin1Char('.'));
                parsed.decimalComma = true;
            }
        }
    }
    return parsed;
}

std::unique_ptr<QSciSimpleTableModel> TableText::toModel(const QVector<QStringList>& rows, int columns)
{
    const int rowCount = int(rows.size());
    if (rowCount <= 0 || columns <= 0 || qint64(rowCount) * columns > QSciSimpleTableModel::MaxCells)
        return nullptr;
    auto model = std::make_unique<QSciSimpleTableModel>(rowCount, columns);
    QVector<QString> cells(qsizetype(rowCount) * columns);
    for (int r = 0; r < rowCount; ++r) {
        const QStringList& row = rows.at(r);
        for (int c = 0; c < qMin(columns, int(row.size())); ++c)
            cells[qsizetype(r) * columns + c] = row.at(c);
    }
    model->setAllCells(cells);
    return model;
}

QString TableText::joinCsv(const QVector<QStringList>& rows)
{
    QString text;
    for (const QStringList& row : rows) {
        for (int c = 0; c < row.size(); ++c) {
            if (c)
                text.append(QLatin1Char(','));
            text.append(csvField(row.at(c)));
        }
        text.append(QLatin1Char('\n'));
    }
    return text;
}

QString TableText::toCsv(const QSciSimpleTableModel& table)
{
    QVector<QStringList> rows;
    rows.reserve(table.rows());
    for (int r = 0; r < table.rows(); ++r) {
        QStringList row;
        row.reserve(table.columns());
        for (int c = 0; c < table.columns(); ++c)
            row.append(table.cellText(r, c));
        rows.append(row);
    }
    return joinCsv(rows);
}

QString TableText::joinTabSeparated(const QVector<QStringList>& rows)
{
    static const QRegularExpression breaks(QStringLiteral("[\\t\\r\\n]"));
    QString text;
    for (const QStringList& row : rows) {
        for (int c = 0; c < row.size(); ++c) {
            if (c)
                text.append(QLatin1Char('\t'));
            QString cell = row.at(c);
            text.append(cell.replace(breaks, QStringLiteral(" ")));
        }
        text.append(QLatin1Char('\n'));
    }
    return text;
}
