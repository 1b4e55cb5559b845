#include "windowscripthost.h"

#include "gui/app/outputpage.h"
#include "gui/tables/textspanel.h"

#include <QPlainTextEdit>
#include <QTextCursor>

WindowScriptHost::WindowScriptHost(Project* project, OutputPage* output, TextsPanel* texts, QObject* parent)
    : QSciScriptHost(project, parent)
    , m_output(output)
    , m_texts(texts)
{
}

void WindowScriptHost::writeOutput(const QString& text, bool defaultOutput, const QString& outputName)
{
    if (defaultOutput) {
        m_output->appendOutput(text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")));
        return;
    }
    QPlainTextEdit* target = nullptr;
    const QList<QPlainTextEdit*> edits = m_texts->findChildren<QPlainTextEdit*>();
    for (QPlainTextEdit* edit : edits)
        if (edit->property("documentTitle").toString() == outputName)
            target = edit;
    if (!target) {
        m_texts->newText(outputName, text);
        return;
    }
    target->appendPlainText(text);
    target->moveCursor(QTextCursor::End);
}

void WindowScriptHost::showError(const QString& title, const QString& text)
{
    m_output->appendOutput(QStringLiteral("<b>") + text.toHtmlEscaped() + QStringLiteral("</b>"));
    if (showMessage)
        showMessage(title, text);
}
