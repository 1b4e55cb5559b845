#pragma once

#include "core/import/filepreview.h"
#include "core/import/thumbnailcache.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QRegularExpression>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QFileSystemModel;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QTreeView;

/**
 * The file browser: a folder tree, and beside it every file of the chosen folder that the program can read,
 * with a thumbnail and its channels, size, scan size and date. Thumbnails are made on worker threads and
 * kept in a ThumbnailCache, so a folder seen before shows at once. Opening hands the chosen paths to the
 * window through openRequested().
 */
class FormBrowse final : public QDialog {
    Q_OBJECT

public:
    explicit FormBrowse(QWidget* parent = nullptr, const QString& cacheDirectory = QString());
    ~FormBrowse() override;

    /** Shows @p folder and starts its thumbnails; remembered for the next start. */
    void setFolder(const QString& folder);
    QString folder() const { return m_folder; }
    /** Files listed in the folder, before the filters. */
    int fileCount() const { return m_paths.size(); }
    /** Thumbnails done so far for the folder shown. */
    int readyCount() const { return m_ready; }
    /** Milliseconds from listing the folder to the last thumbnail; -1 while still at work. */
    qint64 lastDuration() const { return m_duration; }
    /** The paths the filters let through, in list order. */
    QStringList shownPaths() const;

signals:
    void openRequested(const QStringList& paths);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void startPreviews();
    void stopPreviews();
    void previewReady(int index);
    void applyFilters();
    void openSelected();
    bool passesFilters(int index) const;
    QString describe(const FilePreview& preview) const;

    ThumbnailCache m_cache;
    QFileSystemModel* m_folders = nullptr;
    QTreeView* m_tree = nullptr;
    QListWidget* m_list = nullptr;
    QLineEdit* m_nameFilter = nullptr;
    QComboBox* m_formatFilter = nullptr;
    QCheckBox* m_subfolders = nullptr;
    QLabel* m_status = nullptr;
    QPushButton* m_openButton = nullptr;
    QFutureWatcher<FilePreview>* m_watcher = nullptr;
    QString m_folder;
    QStringList m_paths;
    QStringList m_formats; ///< by name, parallel to m_paths
    QRegularExpression m_namePattern;
    QString m_format; ///< the format filter; empty: all
    int m_ready = 0;
    qint64 m_duration = -1;
    QElapsedTimer m_clock;
};
