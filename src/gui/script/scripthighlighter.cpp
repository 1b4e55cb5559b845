#include "scripthighlighter.h"

namespace {

QTextCharFormat charFormat(const QColor& color, bool bold = false, bool italic = false)
{
    QTextCharFormat f;
    f.setForeground(color);
    if (bold)
        f.setFontWeight(QFont::Bold);
    f.setFontItalic(italic);
    return f;
}

} // namespace

ScriptHighlighter::ScriptHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(document)
    , m_comment(charFormat(QColor(0x60, 0x80, 0x60), false, true))
{
    const QString keywords = QStringLiteral(
        "break|case|catch|const|continue|debugger|default|delete|do|else|false|finally|for|function|if|in|"
        "instanceof|new|null|return|switch|this|throw|true|try|typeof|undefined|var|void|while|with");
    const QString api
        = QStringLiteral("sciPrint|sciPrintText|qsciGetActiveImages|qsciGetAllImages|qsciGetImageByName|sciImage|args");
    m_rules.append(
        { QRegularExpression(QStringLiteral("\\b(%1)\\b").arg(keywords)), charFormat(QColor(0x20, 0x20, 0xa0), true) });
    m_rules.append(
        { QRegularExpression(QStringLiteral("\\b(%1)\\b").arg(api)), charFormat(QColor(0x90, 0x30, 0x90), true) });
    m_rules.append({ QRegularExpression(QStringLiteral("\\b(0[xX][0-9a-fA-F]+|\\d+\\.?\\d*([eE][-+]?\\d+)?)\\b")),
        charFormat(QColor(0xa0, 0x50, 0x00)) });
    m_rules.append({ QRegularExpression(QStringLiteral("\"(\\\\.|[^\"\\\\])*\"|'(\\\\.|[^'\\\\])*'")),
        charFormat(QColor(0x00, 0x80, 0x00)) });
}

void ScriptHighlighter::highlightBlock(const QString& text)
{
    for (const Rule& rule : qAsConst(m_rules)) {
        auto matches = rule.pattern.globalMatch(text);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            setFormat(match.capturedStart(), match.capturedLength(), rule.format);
        }
    }
    // Comments last, over whatever they contain; a block comment may run across lines.
    static const QRegularExpression lineComment(QStringLiteral("//[^\\n]*"));
    static const QRegularExpression blockStart(QStringLiteral("/\\*"));
    static const QRegularExpression blockEnd(QStringLiteral("\\*/"));
    setCurrentBlockState(0);
    int start = previousBlockState() == 1 ? 0 : -1;
    int from = 0;
    for (;;) {
        if (start < 0) {
            const QRegularExpressionMatch line = lineComment.match(text, from);
            const QRegularExpressionMatch block = blockStart.match(text, from);
            if (line.hasMatch() && (!block.hasMatch() || line.capturedStart() < block.capturedStart())) {
                setFormat(line.capturedStart(), line.capturedLength(), m_comment);
                break;
            }
            if (!block.hasMatch())
                break;
            start = block.capturedStart();
            from = start + 2;
        }
        const QRegularExpressionMatch end = blockEnd.match(text, qMax(from, start));
        if (!end.hasMatch()) {
            setFormat(start, text.length() - start, m_comment);
            setCurrentBlockState(1);
            break;
        }
        setFormat(start, end.capturedEnd() - start, m_comment);
        from = end.capturedEnd();
        start = -1;
    }
}
