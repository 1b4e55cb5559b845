#pragma once

#include <functional>
#include <memory>

#include <QDialog>
#include <QStringList>
#include <QtTest>

#include "core/settings/options.h"
#include "gui/app/mainwindow.h"

/**
 * A main window whose file dialogs, message boxes, questions and dialogs are answered by the test:
 * each file dialog takes the next entry of `files` (none left: cancelled), messages are collected,
 * questions get `answer`, and dialogs go to `fillDialog` (no function: cancelled).
 */
class ScriptedWindow final : public MainWindow {
public:
    QStringList files;
    QStringList messages;
    QStringList dialogFolders;
    QMessageBox::StandardButton answer = QMessageBox::No;
    std::function<bool(QDialog*)> fillDialog;

protected:
    QStringList chooseFiles(FileChoice, const QString&, const QString& folder, const QString&) override
    {
        dialogFolders << folder;
        return files.isEmpty() ? QStringList() : QStringList { files.takeFirst() };
    }
    void showMessage(const QString&, const QString& text) override { messages << text; }
    QMessageBox::StandardButton askQuestion(const QString&, const QString&) override { return answer; }
    QMessageBox::StandardButton askSaveProjectOnQuit() override { return answer; }
    int runDialog(QDialog* dialog) override
    {
        if (!fillDialog || !fillDialog(dialog)) {
            dialog->reject();
            return QDialog::Rejected;
        }
        dialog->accept();
        return dialog->result();
    }
};

/** A shown window of type @p Window without the first-start demo item. */
template <typename Window> std::unique_ptr<Window> shownWindowWithoutDemo(const QSize& size)
{
    Options::setBool(QStringLiteral("MainWindow.firstStartDone"), true);
    auto window = std::make_unique<Window>();
    window->resize(size);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qWarning("window not exposed");
    return window;
}
