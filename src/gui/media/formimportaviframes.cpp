#include "formimportaviframes.h"

#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegversion.h"
#include "core/media/qsciffmpegpreviewworker.h"
#include "core/media/qscimovie.h"
#include "core/media/workerthread.h"
#include "core/settings/options.h"
#include "gui/media/formaviimportscalingdialog.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>

namespace {

constexpr int SliderSteps = 10; // slider positions per second
const QSize PreviewArea(400, 300);

} // namespace

FormImportAVIframes::FormImportAVIframes(QWidget* parent)
    : QDialog(parent)
    , m_file(new QLineEdit(this))
    , m_info(new QLabel(this))
    , m_preview(new QLabel(this))
    , m_slider(new QSlider(Qt::Horizontal, this))
    , m_start(new QDoubleSpinBox(this))
    , m_frames(new QSpinBox(this))
    , m_scaling(new QLabel(this))
    , m_message(new QLabel(this))
    , m_scalingDialog(new FormAviImportScalingDialog(this))
{
    setObjectName(QStringLiteral("FormImportAVIframes"));
    setWindowTitle(tr("Import movie"));
    m_file->setObjectName(QStringLiteral("leFile"));
    m_file->setReadOnly(true);
    m_info->setObjectName(QStringLiteral("lbInfo"));
    m_preview->setObjectName(QStringLiteral("lbPreview"));
    m_preview->setMinimumSize(PreviewArea);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setText(tr("No movie chosen"));
    m_slider->setObjectName(QStringLiteral("hsTime"));
    m_start->setObjectName(QStringLiteral("sbStart"));
    m_start->setDecimals(2);
    m_start->setSuffix(tr(" s"));
    m_frames->setObjectName(QStringLiteral("sbFrames"));
    m_frames->setRange(1, 1);
    m_scaling->setObjectName(QStringLiteral("lbScaling"));
    m_message->setObjectName(QStringLiteral("lbMessage"));
    m_message->setWordWrap(true);
    m_message->setStyleSheet(QStringLiteral("color: #b00000"));

    auto* browse = new QPushButton(tr("Browse..."), this);
    browse->setObjectName(QStringLiteral("pbBrowse"));
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &FormImportAVIframes::browse);
    auto* scalingButton = new QPushButton(tr("Scaling..."), this);
    scalingButton->setObjectName(QStringLiteral("pbScaling"));
    scalingButton->setAutoDefault(false);
    connect(scalingButton, &QPushButton::clicked, this, &FormImportAVIframes::chooseScaling);

    connect(m_slider, &QSlider::valueChanged, this, [this](int position) {
        if (!m_start->hasFocus())
            m_start->setValue(double(position) / SliderSteps);
    });
    connect(m_start, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &FormImportAVIframes::startChanged);

    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(m_file, 1);
    fileRow->addWidget(browse);
    auto* scalingRow = new QHBoxLayout;
    scalingRow->addWidget(m_scaling, 1);
    scalingRow->addWidget(scalingButton);
    auto* form = new QFormLayout;
    form->addRow(tr("Movie file:"), fileRow);
    form->addRow(QString(), m_info);
    form->addRow(tr("Time:"), m_slider);
    form->addRow(tr("Start time:"), m_start);
    form->addRow(tr("Number of frames:"), m_frames);
    form->addRow(tr("Frame size:"), scalingRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setObjectName(QStringLiteral("pbOk"));
    m_ok->setText(tr("Import"));
    m_ok->setEnabled(false);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_preview, 1);
    layout->addWidget(m_message);
    layout->addWidget(buttons);
    m_scaling->setText(m_scalingDialog->summary());
}

FormImportAVIframes::~FormImportAVIframes()
{
    if (m_previewCancel)
        *m_previewCancel = true;
}

void FormImportAVIframes::browse()
{
    const QString key = QStringLiteral("FormImportAVIframes.path");
    QString folder = Options::getPath(key, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    const QString path = QFileDialog::getOpenFileName(this, tr("Import movie"), folder,
        tr("Movies (*.mp4 *.avi *.mov *.mkv *.mpg *.mpeg *.wmv *.webm *.gif);;All files (*)"));
    if (path.isEmpty())
        return;
    Options::setString(key, QFileInfo(path).absolutePath());
    setMovie(path);
}

void FormImportAVIframes::setMovie(const QString& path)
{
    if (m_previewCancel)
        *m_previewCancel = true;
    m_previewCancel.reset();
    ++m_previewSerial;
    m_pending = -1;
    m_movie.reset();
    m_previewFrame = QImage();
    m_preview->setPixmap(QPixmap());
    m_preview->setText(tr("No preview"));
    m_info->clear();
    m_message->clear();
    m_ok->setEnabled(false);
    m_file->setText(QDir::toNativeSeparators(path));

    if (QFileInfo(path).isFile() && QSciMovie::needsFfmpeg(path)) {
        const FfmpegVersion::Result check = FfmpegVersion::check(FfmpegCommands::ffmpeg());
        if (!check.passed()) {
            showProblem(check.title + QStringLiteral(": ") + check.message);
            return;
        }
    }
    QString problem;
    m_movie = QSciMovie::open(path, &problem);
    if (!m_movie) {
        showProblem(problem);
        return;
    }
    const QSciMovie::Info& info = m_movie->info();
    m_info->setText(tr("%1 x %2 points, %3 frames, %4 frames per second, %5 s")
                        .arg(info.size.width())
                        .arg(info.size.height())
                        .arg(info.frameCount)
                        .arg(info.fps, 0, 'g', 4)
                        .arg(info.duration, 0, 'f', 2));
    m_scalingDialog->setOriginalSize(info.size);
    m_scaling->setText(m_scalingDialog->summary());
    const QSignalBlocker sliderBlock(m_slider), startBlock(m_start);
    m_slider->setRange(0, int(std::floor(info.duration * SliderSteps)));
    m_slider->setValue(0);
    m_start->setRange(0, info.duration);
    m_start->setValue(0);
    updateFrameRange();
    m_frames->setValue(m_frames->maximum());
    m_ok->setEnabled(true);
    requestPreview(0);
}

double FormImportAVIframes::startSeconds() const
{
    return m_start->value();
}

int FormImportAVIframes::frameCount() const
{
    return m_frames->value();
}

QSize FormImportAVIframes::scaleTo() const
{
    return m_scalingDialog->scaleTo();
}

QString FormImportAVIframes::message() const
{
    return m_message->text();
}

void FormImportAVIframes::startChanged(double seconds)
{
    const QSignalBlocker block(m_slider);
    m_slider->setValue(int(std::lround(seconds * SliderSteps)));
    updateFrameRange();
    requestPreview(seconds);
}

void FormImportAVIframes::updateFrameRange()
{
    if (!m_movie)
        return;
    const QSciMovie::Info& info = m_movie->info();
    const int skipped = int(std::floor(m_start->value() * info.fps + 1e-6));
    m_frames->setRange(1, qMax(1, info.frameCount - skipped));
}

void FormImportAVIframes::requestPreview(double seconds)
{
    if (!m_movie)
        return;
    // One seek at a time: while one runs, only the latest wish waits; the ones in between are never shown.
    if (m_previewCancel) {
        m_pending = seconds;
        return;
    }
    startPreview(seconds);
}

void FormImportAVIframes::startPreview(double seconds)
{
    auto* worker = new QSciFFMPEGPreviewWorker(m_movie, seconds, Options::tempDir());
    m_previewCancel = worker->cancelFlag();
    const int serial = ++m_previewSerial;
    // A worker of a movie that was replaced meanwhile reports nothing.
    connect(worker, &QSciFFMPEGPreviewWorker::frameReady, this, [this, serial](const QImage& frame) {
        if (serial != m_previewSerial)
            return;
        m_message->clear();
        showPreview(frame);
    });
    connect(worker, &QSciFFMPEGPreviewWorker::failed, this, [this, serial](const QString& text) {
        if (serial == m_previewSerial)
            showProblem(text);
    });
    connect(worker, &QSciFFMPEGPreviewWorker::finished, this, [this, serial] {
        if (serial != m_previewSerial)
            return;
        m_previewCancel.reset();
        if (m_pending >= 0) {
            const double next = m_pending;
            m_pending = -1;
            startPreview(next);
        }
    });
    WorkerThread::start(worker, [worker] { worker->run(); });
}

void FormImportAVIframes::showPreview(const QImage& frame)
{
    m_previewFrame = frame;
    const QSize area = m_preview->contentsRect().size().boundedTo(frame.size() * 8);
    m_preview->setPixmap(QPixmap::fromImage(frame.scaled(area, Qt::KeepAspectRatio, Qt::FastTransformation)));
}

void FormImportAVIframes::showProblem(const QString& text)
{
    m_message->setText(text);
}

void FormImportAVIframes::chooseScaling()
{
    if (m_scalingDialog->exec() == QDialog::Accepted)
        m_scaling->setText(m_scalingDialog->summary());
}
