#include "formexportmovie.h"

#include "core/items/qsciimage.h"
#include "core/media/ffmpegcommands.h"
#include "core/media/ffmpegversion.h"
#include "core/media/qsciffmpegexportworker.h"
#include "core/media/workerthread.h"
#include "core/settings/options.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString FpsKey = QStringLiteral("FormExportMovie.fps");
const QString OddKey = QStringLiteral("FormExportMovie.padOddSides");
const QString FromZKey = QStringLiteral("FormExportMovie.fromZ");

QSpinBox* sideBox(QWidget* parent, const QString& name)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(1, 16000);
    box->setSuffix(FormExportMovie::tr(" points"));
    return box;
}

QRadioButton* choice(QButtonGroup* group, int id, const QString& text, const QString& name)
{
    auto* button = new QRadioButton(text);
    button->setObjectName(name);
    group->addButton(button, id);
    return button;
}

} // namespace

FormExportMovie::FormExportMovie(QWidget* parent)
    : QDialog(parent)
    , m_file(new QLineEdit(this))
    , m_fps(new QSpinBox(this))
    , m_width(sideBox(this, QStringLiteral("sbWidth")))
    , m_height(sideBox(this, QStringLiteral("sbHeight")))
    , m_odd(new QButtonGroup(this))
    , m_source(new QButtonGroup(this))
    , m_note(new QLabel(this))
    , m_log(new QPlainTextEdit(this))
    , m_progress(new QProgressBar(this))
{
    setObjectName(QStringLiteral("FormExportMovie"));
    setWindowTitle(tr("Export selected images as movie"));
    m_file->setObjectName(QStringLiteral("leFile"));
    m_fps->setObjectName(QStringLiteral("sbFps"));
    m_fps->setRange(1, 120);
    m_fps->setSuffix(tr(" frames per second"));
    m_fps->setValue(Options::getInt(FpsKey, 10));
    m_note->setObjectName(QStringLiteral("lbOddSize"));
    m_note->setWordWrap(true);
    m_log->setObjectName(QStringLiteral("teLog"));
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(2000);
    m_progress->setObjectName(QStringLiteral("progressBar"));

    auto* browse = new QPushButton(tr("Browse..."), this);
    browse->setObjectName(QStringLiteral("pbBrowse"));
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &FormExportMovie::browse);
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(m_file, 1);
    fileRow->addWidget(browse);
    auto* sizeRow = new QHBoxLayout;
    sizeRow->addWidget(m_width);
    sizeRow->addWidget(new QLabel(QStringLiteral("x"), this));
    sizeRow->addWidget(m_height);
    auto* oddRow = new QHBoxLayout;
    oddRow->addWidget(choice(m_odd, int(MovieFrames::OddSize::Pad), tr("Pad with black"), QStringLiteral("rbPad")));
    oddRow->addWidget(choice(m_odd, int(MovieFrames::OddSize::Scale), tr("Scale"), QStringLiteral("rbScale")));
    m_odd->button(Options::getBool(OddKey, true) ? int(MovieFrames::OddSize::Pad) : int(MovieFrames::OddSize::Scale))
        ->setChecked(true);
    auto* sourceRow = new QHBoxLayout;
    sourceRow->addWidget(
        choice(m_source, int(MovieFrames::Source::Picture), tr("Pictures"), QStringLiteral("rbPicture")));
    sourceRow->addWidget(choice(m_source, int(MovieFrames::Source::ZThroughGradient),
        tr("Z-matrices through their gradients"), QStringLiteral("rbFromZ")));
    m_source
        ->button(Options::getBool(FromZKey, false) ? int(MovieFrames::Source::ZThroughGradient)
                                                   : int(MovieFrames::Source::Picture))
        ->setChecked(true);

    auto* form = new QFormLayout;
    form->addRow(tr("Movie file (*.mp4):"), fileRow);
    form->addRow(tr("Frame rate:"), m_fps);
    form->addRow(tr("Size:"), sizeRow);
    form->addRow(tr("Odd sides:"), oddRow);
    form->addRow(QString(), m_note);
    form->addRow(tr("Frames show:"), sourceRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_startButton = buttons->addButton(tr("Export"), QDialogButtonBox::ActionRole);
    m_startButton->setObjectName(QStringLiteral("pbExport"));
    buttons->button(QDialogButtonBox::Close)->setObjectName(QStringLiteral("pbClose"));
    connect(m_startButton, &QPushButton::clicked, this, [this] { start(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &FormExportMovie::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_progress);
    layout->addWidget(m_log, 1);
    layout->addWidget(buttons);

    connect(m_width, QOverload<int>::of(&QSpinBox::valueChanged), this, &FormExportMovie::updateNote);
    connect(m_height, QOverload<int>::of(&QSpinBox::valueChanged), this, &FormExportMovie::updateNote);
    connect(m_odd, &QButtonGroup::idClicked, this, &FormExportMovie::updateNote);
    updateNote();
}

FormExportMovie::~FormExportMovie()
{
    if (m_cancel)
        *m_cancel = true;
}

void FormExportMovie::setItems(const QList<QSciImage*>& items)
{
    m_items.clear();
    for (QSciImage* item : items)
        m_items << item;
    if (!items.isEmpty()) {
        m_width->setValue(items.first()->width());
        m_height->setValue(items.first()->height());
    }
    m_log->clear();
    m_progress->setValue(0);
    m_succeeded = false;
    updateNote();
}

void FormExportMovie::setOutput(const QString& path)
{
    m_file->setText(path);
}

QString FormExportMovie::logText() const
{
    return m_log->toPlainText();
}

void FormExportMovie::browse()
{
    const QString key = QStringLiteral("FormExportMovie.path");
    QString folder = Options::getPath(key, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    QString path = QFileDialog::getSaveFileName(this, tr("Export movie"), folder, tr("Movie (*.mp4)"));
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".mp4");
    Options::setString(key, QFileInfo(path).absolutePath());
    m_file->setText(path);
}

void FormExportMovie::updateNote()
{
    const QString text = MovieFrames::oddSizeText(
        QSize(m_width->value(), m_height->value()), MovieFrames::OddSize(m_odd->checkedId()));
    m_note->setText(text.isEmpty() ? tr("Even sides: the frames keep their size.") : text);
}

void FormExportMovie::appendLog(const QString& line)
{
    m_log->appendPlainText(line);
}

bool FormExportMovie::start()
{
    if (m_cancel)
        return false;
    QList<QImage> frames;
    const auto source = MovieFrames::Source(m_source->checkedId());
    for (const QPointer<QSciImage>& item : qAsConst(m_items)) {
        if (item)
            frames << MovieFrames::render(*item, source);
    }
    const QString output = m_file->text().trimmed();
    if (frames.isEmpty() || output.isEmpty()) {
        appendLog(frames.isEmpty() ? tr("No items to export.") : tr("Choose the movie file first."));
        return false;
    }
    const FfmpegVersion::Result check = FfmpegVersion::check(FfmpegCommands::ffmpeg());
    if (!check.passed()) {
        appendLog(check.title + QStringLiteral(": ") + check.message);
        return false;
    }
    Options::setInt(FpsKey, m_fps->value());
    Options::setBool(OddKey, m_odd->checkedId() == int(MovieFrames::OddSize::Pad));
    Options::setBool(FromZKey, source == MovieFrames::Source::ZThroughGradient);

    QSciFFMPEGExportWorker::Options options;
    options.output = QFileInfo(output).absoluteFilePath();
    options.fps = m_fps->value();
    options.size = QSize(m_width->value(), m_height->value());
    options.oddSize = MovieFrames::OddSize(m_odd->checkedId());
    options.tempDir = Options::tempDir();
    auto* worker = new QSciFFMPEGExportWorker(frames, options);
    m_cancel = worker->cancelFlag();
    m_succeeded = false;
    m_progress->setRange(0, frames.size() + 1);
    m_progress->setValue(0);
    m_startButton->setEnabled(false);
    connect(worker, &QSciFFMPEGExportWorker::log, this, &FormExportMovie::appendLog);
    connect(worker, &QSciFFMPEGExportWorker::progress, m_progress, &QProgressBar::setValue);
    connect(worker, &QSciFFMPEGExportWorker::finished, this, &FormExportMovie::finish);
    WorkerThread::start(worker, [worker] { worker->run(); });
    return true;
}

void FormExportMovie::finish(bool ok, const QString& message)
{
    m_cancel.reset();
    m_succeeded = ok;
    m_startButton->setEnabled(true);
    if (!ok && !message.isEmpty() && !logText().endsWith(message))
        appendLog(message);
    emit exportFinished(ok);
}

void FormExportMovie::reject()
{
    // Cancel stops a running export first; the next one closes the dialog.
    if (m_cancel) {
        *m_cancel = true;
        return;
    }
    QDialog::reject();
}
