#include "scripteditor.h"

#include "scripthighlighter.h"

#include <QFontDatabase>
#include <QPainter>
#include <QTextBlock>

namespace {

class LineNumberMargin final : public QWidget {
public:
    explicit LineNumberMargin(ScriptEditor* editor)
        : QWidget(editor)
        , m_editor(editor)
    {
    }
    QSize sizeHint() const override { return QSize(m_editor->lineNumberWidth(), 0); }

protected:
    void paintEvent(QPaintEvent* event) override { m_editor->paintLineNumbers(event); }

private:
    ScriptEditor* m_editor;
};

} // namespace

ScriptEditor::ScriptEditor(QWidget* parent)
    : QPlainTextEdit(parent)
    , m_lineNumbers(new LineNumberMargin(this))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    new ScriptHighlighter(document());
    connect(this, &QPlainTextEdit::blockCountChanged, this, &ScriptEditor::updateMargin);
    connect(this, &QPlainTextEdit::updateRequest, this, &ScriptEditor::scrollMargin);
    updateMargin();
}

int ScriptEditor::lineNumberWidth() const
{
    int digits = 1;
    for (int n = qMax(1, blockCount()); n >= 10; n /= 10)
        ++digits;
    return 8 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * qMax(3, digits);
}

void ScriptEditor::updateMargin()
{
    setViewportMargins(lineNumberWidth(), 0, 0, 0);
}

void ScriptEditor::scrollMargin(const QRect& rect, int dy)
{
    if (dy)
        m_lineNumbers->scroll(0, dy);
    else
        m_lineNumbers->update(0, rect.y(), m_lineNumbers->width(), rect.height());
    if (rect.contains(viewport()->rect()))
        updateMargin();
}

void ScriptEditor::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    const QRect area = contentsRect();
    m_lineNumbers->setGeometry(QRect(area.left(), area.top(), lineNumberWidth(), area.height()));
}

void ScriptEditor::paintLineNumbers(QPaintEvent* event)
{
    QPainter painter(m_lineNumbers);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setPen(palette().color(QPalette::PlaceholderText));
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const int bottom = top + qRound(blockBoundingRect(block).height());
        if (block.isVisible() && bottom >= event->rect().top())
            painter.drawText(0, top, m_lineNumbers->width() - 4, fontMetrics().height(), Qt::AlignRight,
                QString::number(block.blockNumber() + 1));
        block = block.next();
        top = bottom;
    }
}
