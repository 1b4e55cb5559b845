#pragma once

#include <QDialog>
#include <QImage>
#include <atomic>
#include <memory>

class FormAviImportScalingDialog;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSciMovie;
class QSlider;
class QSpinBox;

/**
 * "Import movie": the movie file, a preview of the frame at the chosen time, the start time, the number of
 * frames and their scaling. The preview is read on a worker thread, so the dialog stays live while ffmpeg seeks.
 */
class FormImportAVIframes final : public QDialog {
    Q_OBJECT

public:
    explicit FormImportAVIframes(QWidget* parent = nullptr);
    ~FormImportAVIframes() override;

    /** Opens @p path (after the ffmpeg check unless it is an animated GIF) and previews its first frame. */
    void setMovie(const QString& path);
    std::shared_ptr<QSciMovie> movie() const { return m_movie; }
    double startSeconds() const;
    int frameCount() const;
    /** Invalid when the frames keep their size. */
    QSize scaleTo() const;
    /** The frame shown now; null while none was read. */
    QImage previewFrame() const { return m_previewFrame; }
    /** The last problem reported in the dialog; empty when there is none. */
    QString message() const;

private:
    void browse();
    void startChanged(double seconds);
    void requestPreview(double seconds);
    void startPreview(double seconds);
    void showPreview(const QImage& frame);
    void showProblem(const QString& text);
    void chooseScaling();
    void updateFrameRange();

    QLineEdit* m_file;
    QLabel* m_info;
    QLabel* m_preview;
    QSlider* m_slider;
    QDoubleSpinBox* m_start;
    QSpinBox* m_frames;
    QLabel* m_scaling;
    QLabel* m_message;
    QPushButton* m_ok;
    FormAviImportScalingDialog* m_scalingDialog;
    std::shared_ptr<QSciMovie> m_movie;
    std::shared_ptr<std::atomic_bool> m_previewCancel; ///< of the running preview; null while none runs
    int m_previewSerial = 0;
    double m_pending = -1;
    QImage m_previewFrame;
};
