#pragma once

#include "core/script/qsciscripthost.h"

#include <functional>

class OutputPage;
class TextsPanel;

/** The window's side of script runs: the output page, the named texts of the "Texts" page, message boxes. */
class WindowScriptHost final : public QSciScriptHost {
    Q_OBJECT

public:
    WindowScriptHost(Project* project, OutputPage* output, TextsPanel* texts, QObject* parent = nullptr);

    /** Shows a failure of a run; the window puts up a message box, a test collects the text. */
    std::function<void(const QString& title, const QString& text)> showMessage;

protected:
    void writeOutput(const QString& text, bool defaultOutput, const QString& outputName) override;
    void showError(const QString& title, const QString& text) override;

private:
    OutputPage* m_output;
    TextsPanel* m_texts;
};
