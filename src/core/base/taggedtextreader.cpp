#include "taggedtextreader.h"

#include <QVector>

namespace {

// Real documents nest a handful of levels; the bound keeps hostile input from building a tree whose
// destruction would recurse without limit.
constexpr int MaxDepth = 1000;

struct Entity {
    QLatin1String text;
    QChar character;
};

const Entity entities[] = {
    { QLatin1String("&pipe;"), QLatin1Char('|') },
    { QLatin1String("&gt;"), QLatin1Char('>') },
    { QLatin1String("&lt;"), QLatin1Char('<') },
    { QLatin1String("&amp;"), QLatin1Char('&') },
};

bool fail(QString* message, const char* what, int offset)
{
    if (message)
        *message = QStringLiteral("Tagged text: %1 at offset %2").arg(QLatin1String(what)).arg(offset);
    return false;
}

} // namespace

QString TaggedTextReader::unescape(QStringView value)
{
    int amp = value.indexOf(QLatin1Char('&'));
    if (amp < 0)
        return value.toString();
    QString out;
    out.reserve(value.size());
    int from = 0;
    while (amp >= 0) {
        out += value.mid(from, amp - from);
        const QStringView rest = value.mid(amp);
        from = amp + 1;
        QChar character = QLatin1Char('&');
        for (const Entity& entity : entities) {
            if (rest.startsWith(entity.text)) {
                character = entity.character;
                from = amp + entity.text.size();
                break;
            }
        }
        out += character;
        amp = value.indexOf(QLatin1Char('&'), from);
    }
    out += value.mid(from);
    return out;
}

bool TaggedTextReader::parse(const QString& text, TaggedTextNode* root, QString* message)
{
    *root = TaggedTextNode();
    const QStringView input(text);
    const int size = input.size();
    QVector<TaggedTextNode*> open { root };
    int pos = 0;

    // Checks that "name>" stands at pos and moves behind it.
    const auto closes = [&](QStringView name) {
        if (!input.mid(pos).startsWith(name) || pos + name.size() >= size
            || input.at(pos + name.size()) != QLatin1Char('>'))
            return false;
        pos += name.size() + 1;
        return true;
    };

    while (pos < size) {
        const QChar c = input.at(pos);
        if (c == QLatin1Char('|')) {
            if (open.size() < 2)
                return fail(message, "closing tag without an open chapter", pos);
            ++pos;
            if (!closes(open.last()->name()))
                return fail(message, "chapter closed by the wrong name", pos);
            open.removeLast();
            continue;
        }
        if (c != QLatin1Char('<'))
            return fail(message, "text outside a field", pos);

        const int nameStart = pos + 1;
        int bar = nameStart;
        while (bar < size && input.at(bar) != QLatin1Char('|')) {
            if (input.at(bar) == QLatin1Char('<') || input.at(bar) == QLatin1Char('>'))
                return fail(message, "bad character in a tag name", bar);
            ++bar;
        }
        if (bar >= size || bar == nameStart)
            return fail(message, "unterminated or empty tag name", pos);
        const QStringView name = input.mid(nameStart, bar - nameStart);
        pos = bar + 1;

        if (pos < size && input.at(pos) == QLatin1Char('<')) {
            if (open.size() > MaxDepth)
                return fail(message, "chapters nested too deep", pos);
            open.append(&open.last()->addChapter(name.toString()));
            continue;
        }
        int valueEnd = pos;
        while (valueEnd < size && input.at(valueEnd) != QLatin1Char('|')) {
            if (input.at(valueEnd) == QLatin1Char('<') || input.at(valueEnd) == QLatin1Char('>'))
                return fail(message, "unescaped character in a value", valueEnd);
            ++valueEnd;
        }
        if (valueEnd >= size)
            return fail(message, "unterminated value", pos);
        const QStringView value = input.mid(pos, valueEnd - pos);
        pos = valueEnd + 1;
        if (!closes(name))
            return fail(message, "field closed by the wrong name", pos);
        open.last()->addField(name.toString(), unescape(value));
    }
    if (open.size() > 1)
        return fail(message, "chapter left open", size);
    return true;
}
