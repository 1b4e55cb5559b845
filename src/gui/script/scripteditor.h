#pragma once

#include <QPlainTextEdit>

/** A script page's editor: line numbers in a margin, ECMAScript highlighting, a fixed-pitch font. */
class ScriptEditor final : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    /** The file the page was opened from or saved to; empty for a new script. */
    QString fileName() const { return m_fileName; }
    void setFileName(const QString& fileName) { m_fileName = fileName; }

    int lineNumberWidth() const;
    void paintLineNumbers(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateMargin();
    void scrollMargin(const QRect& rect, int dy);

    QWidget* m_lineNumbers;
    QString m_fileName;
};
