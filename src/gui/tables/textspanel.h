#pragma once

#include <QPair>
#include <QVector>
#include <QWidget>
#include <functional>

class DocumentsDock;
class OutputPage;
class QPlainTextEdit;
class QTabWidget;

/**
 * The text documents of the "Texts" tab (new, open, save, close) and the saving and loading of the output page
 * as ".output.velm" files, so that a session's log can be kept with the project.
 */
class TextsPanel final : public QWidget {
    Q_OBJECT

public:
    explicit TextsPanel(DocumentsDock* dock);

    std::function<QString(bool save, const QString& title, const QString& folder, const QString& filter)> chooseFile;
    std::function<void(const QString& text)> showMessage;

    QPlainTextEdit* currentText() const;
    int textCount() const;
    QPlainTextEdit* newText(const QString& title = QString(), const QString& text = QString());
    /** ".text.velm" files open as they were saved; anything else is read as UTF-8 plain text. */
    [[nodiscard]] bool openTextFile(const QString& path, QString* message);
    [[nodiscard]] bool saveCurrent(const QString& path, QString* message);
    [[nodiscard]] bool saveOutput(const QString& path, QString* message);
    [[nodiscard]] bool openOutput(const QString& path, QString* message);

    /** Every text with its title, in page order. */
    QVector<QPair<QString, QString>> allTexts() const;
    void closeAll();

signals:
    void documentsChanged();

private:
    void addOutputButtons();
    QString chooseWithKey(bool save, const char* key, const QString& title, const QString& filter);

    DocumentsDock* m_dock;
    QTabWidget* m_tabs;
    int m_created = 0;
};
