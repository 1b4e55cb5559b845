#include "latexcodes.h"

#include "qsciimage.h"

QString LatexCodes::escaped(const QString& text)
{
    QString out;
    out.reserve(text.size() + 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\\':
            out += QLatin1String("\\textbackslash{}");
            break;
        case '~':
            out += QLatin1String("\\textasciitilde{}");
            break;
        case '^':
            out += QLatin1String("\\textasciicircum{}");
            break;
        case '&':
        case '%':
        case '$':
        case '#':
        case '_':
        case '{':
        case '}':
            out += QLatin1Char('\\');
            out += c;
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString LatexCodes::document(const QSciImage& item)
{
    // A % comment line names the item without disturbing the document it is pasted into.
    QString out = QStringLiteral("% %1\n").arg(QString(item.name()).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    for (const QString& line : item.textLines()) {
        const QString trimmed = line.trimmed();
        if (trimmed.size() > 2 && trimmed.startsWith(QLatin1Char('$')) && trimmed.endsWith(QLatin1Char('$')))
            out += QStringLiteral("\\[ %1 \\]\n").arg(trimmed.mid(1, trimmed.size() - 2).trimmed());
        else
            out += escaped(line) + QStringLiteral("\n\n");
    }
    return out;
}
