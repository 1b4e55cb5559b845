#pragma once

#include "core/media/movieframes.h"

#include <QDialog>
#include <QList>
#include <QPointer>
#include <atomic>
#include <memory>

class QButtonGroup;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSciImage;
class QSpinBox;

/**
 * "Export selected images as movie": file, frame rate, size (odd sides padded or scaled, as the dialog says),
 * and whether frames show the pictures or z through each item's gradient. Encodes on a worker thread and shows
 * the encoder's log; Cancel stops a running export.
 */
class FormExportMovie final : public QDialog {
    Q_OBJECT

public:
    explicit FormExportMovie(QWidget* parent = nullptr);
    ~FormExportMovie() override;

    /** The items to export, in order; the size starts from the first one's. */
    void setItems(const QList<QSciImage*>& items);
    void setOutput(const QString& path);
    /** Starts the export; false (with the reason in the log) when it cannot start. */
    bool start();
    bool isRunning() const { return bool(m_cancel); }
    /** The last export's result: true once one finished well. */
    bool succeeded() const { return m_succeeded; }
    QString logText() const;

public slots:
    void reject() override;

signals:
    void exportFinished(bool ok);

private:
    void browse();
    void updateNote();
    void appendLog(const QString& line);
    void finish(bool ok, const QString& message);

    QLineEdit* m_file;
    QSpinBox* m_fps;
    QSpinBox* m_width;
    QSpinBox* m_height;
    QButtonGroup* m_odd;
    QButtonGroup* m_source;
    QLabel* m_note;
    QPlainTextEdit* m_log;
    QProgressBar* m_progress;
    QPushButton* m_startButton;
    QList<QPointer<QSciImage>> m_items;
    std::shared_ptr<std::atomic_bool> m_cancel; ///< of the running export; null while none runs
    bool m_succeeded = false;
};
