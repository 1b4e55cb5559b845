#include "tokencodec.h"

void TokenCodec::append(QString& out, const QString& text)
{
    out += QString::number(text.size());
    out += QLatin1Char('|');
    out += text;
}

QString TokenCodec::encode(const QString& text)
{
    QString out;
    append(out, text);
    return out;
}

QString TokenCodec::encodePairs(const QList<QPair<QString, QString>>& pairs)
{
    QString out;
    for (const auto& pair : pairs) {
        append(out, pair.first);
        append(out, pair.second);
    }
    return out;
}

QHash<QString, QString> TokenCodec::decodeMap(const QString& input)
{
    QHash<QString, QString> map;
    TokenReader reader(input);
    while (!reader.atEnd()) {
        const QString key = reader.next();
        if (reader.atEnd())
            break;
        map.insert(key, reader.next());
    }
    return map;
}

QString TokenReader::next()
{
    const int size = m_input.size();
    const int bar = m_input.indexOf(QLatin1Char('|'), m_pos);
    const int digitsEnd = bar < 0 ? size : bar;
    bool ok = false;
    const long long length = QStringView(m_input).mid(m_pos, digitsEnd - m_pos).toLongLong(&ok);
    if (!ok || length <= 0) {
        m_pos = qMin(size, m_pos + 2);
        return QString();
    }
    const int start = digitsEnd + 1;
    const long long available = qMax(0, size - start);
    const int take = int(qMin(length, available));
    m_pos = start + take;
    return m_input.mid(start, take);
}
