#pragma once

#include <QWidget>

class QCheckBox;
class QTextEdit;

/**
 * The "Output" page of the documents dock: a read-only rich-text log in a typewriter font that the
 * subsystems append to, with saving as plain text, printing, word wrap and clearing.
 */
class OutputPage final : public QWidget {
    Q_OBJECT

public:
    explicit OutputPage(QWidget* parent = nullptr);

    /** Appends @p html as a new paragraph and scrolls to it. */
    void appendOutput(const QString& html);

    QTextEdit* textEdit() const { return m_text; }
    bool wordWrap() const;
    void setWordWrap(bool on);

    /** Writes the page's plain text as UTF-8 to @p path, replacing the file as a whole. */
    [[nodiscard]] bool saveTo(const QString& path, QString* message = nullptr) const;

private:
    void saveAsTextFile();
    void print();
    void applyWordWrap(bool on);

    QTextEdit* m_text;
    QCheckBox* m_wordWrap;
};
