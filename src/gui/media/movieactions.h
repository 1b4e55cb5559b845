#pragma once

#include <QList>
#include <QObject>
#include <QSize>
#include <functional>
#include <memory>

class FormExportMovie;
class FormImportAVIframes;
class Project;
class QDialog;
class QSciImage;
class QSciMovie;
class QWidget;

/**
 * The window's movie entries: "Import movie" (dialog, then the frames as items on the current tab in one history
 * step, with a progress dialog that can abort) and "Export selected images as movie". Owns both dialogs.
 */
class MovieActions final : public QObject {
    Q_OBJECT

public:
    /** What the window lends: its dialog runner (tests fill dialogs in), messages, output page and selection. */
    struct Hooks {
        std::function<int(QDialog*)> runDialog;
        std::function<void(const QString& title, const QString& text)> showMessage;
        std::function<void(const QString& html)> output;
        std::function<QList<QSciImage*>()> selectedItems;
    };

    MovieActions(QWidget* window, Project* project, const Hooks& hooks);

    FormImportAVIframes* importForm() const { return m_importForm; }
    FormExportMovie* exportForm() const { return m_exportForm; }

    void importMovie();
    void exportMovie();
    /**
     * Imports @p count frames of @p movie from @p seconds on into the current tab (one is made when there is
     * none), waiting until the worker is done; false with @p message when the movie could not be read.
     */
    bool importFrames(
        const std::shared_ptr<QSciMovie>& movie, double seconds, int count, const QSize& scaleTo, QString* message);

private:
    /** The version check with its messages; when ffmpeg is missing, offers to choose its folder. */
    bool ensureFfmpeg();

    QWidget* m_window;
    Project* m_project;
    Hooks m_hooks;
    FormImportAVIframes* m_importForm;
    FormExportMovie* m_exportForm;
};
