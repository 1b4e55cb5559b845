#include "taggedtextwriter.h"

#include <algorithm>

namespace {

bool needsEscape(QChar c)
{
    const ushort u = c.unicode();
    return u == '|' || u == '<' || u == '>' || u == '&';
}

void appendEscaped(QString& out, const QString& value)
{
    for (const QChar c : value) {
        if (!needsEscape(c)) {
            out += c;
            continue;
        }
        switch (c.unicode()) {
        case '|':
            out += QLatin1String("&pipe;");
            break;
        case '>':
            out += QLatin1String("&gt;");
            break;
        case '<':
            out += QLatin1String("&lt;");
            break;
        default:
            out += QLatin1String("&amp;");
            break;
        }
    }
}

} // namespace

TaggedTextWriter::TaggedTextWriter(int reserve)
{
    if (reserve > 0)
        m_text.reserve(reserve);
}

void TaggedTextWriter::beginChapter(const QString& name)
{
    m_text += QLatin1Char('<') + name + QLatin1Char('|');
    m_open.append(name);
}

void TaggedTextWriter::endChapter()
{
    if (m_open.isEmpty())
        return;
    m_text += QLatin1Char('|') + m_open.takeLast() + QLatin1Char('>');
}

void TaggedTextWriter::addField(const QString& key, const QString& value)
{
    if (std::none_of(value.cbegin(), value.cend(), needsEscape)) {
        addPlainField(key, value);
        return;
    }
    m_text += QLatin1Char('<') + key + QLatin1Char('|');
    appendEscaped(m_text, value);
    m_text += QLatin1Char('|') + key + QLatin1Char('>');
}

void TaggedTextWriter::addPlainField(const QString& key, const QString& value)
{
    m_text += QLatin1Char('<') + key + QLatin1Char('|') + value + QLatin1Char('|') + key + QLatin1Char('>');
}

QString TaggedTextWriter::escape(const QString& value)
{
    if (std::none_of(value.cbegin(), value.cend(), needsEscape))
        return value;
    QString out;
    out.reserve(value.size() + 16);
    appendEscaped(out, value);
    return out;
}
