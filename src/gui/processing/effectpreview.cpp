#include "effectpreview.h"

#include "core/base/progresssink.h"
#include "core/items/qsciimage.h"
#include "core/processing/qscieffect.h"

#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmap>
#include <QtConcurrent/QtConcurrentRun>

namespace {

/** Tells a preview computation to give up; nothing else of a sink is needed off the GUI thread. */
class StopFlagSink final : public ProgressSink {
public:
    explicit StopFlagSink(std::shared_ptr<std::atomic<bool>> stop)
        : m_stop(std::move(stop))
    {
    }
    void begin(const QString&, int) override { }
    void step(int) override { }
    void end() override { }
    bool isCancelled() const override { return m_stop->load(); }

private:
    std::shared_ptr<std::atomic<bool>> m_stop;
};

QLabel* pictureLabel(const char* name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setFixedSize(EffectPreview::Side, EffectPreview::Side);
    label->setAlignment(Qt::AlignCenter);
    label->setFrameShape(QFrame::StyledPanel);
    return label;
}

} // namespace

EffectPreview::EffectPreview(QWidget* parent)
    : QWidget(parent)
    , m_before(pictureLabel("lbPreviewOriginal", this))
    , m_after(pictureLabel("lbPreviewResult", this))
    , m_message(new QLabel(this))
{
    setObjectName(QStringLiteral("EffectPreview"));
    m_message->setObjectName(QStringLiteral("lbPreviewMessage"));
    m_message->setWordWrap(true);
    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("Original"), this), 0, 0);
    layout->addWidget(new QLabel(tr("Preview"), this), 0, 1);
    layout->addWidget(m_before, 1, 0);
    layout->addWidget(m_after, 1, 1);
    layout->addWidget(m_message, 2, 0, 1, 2);
    layout->setRowStretch(3, 1);
    connect(&m_watcher, &QFutureWatcher<QImage>::finished, this, &EffectPreview::finished);
    m_before->installEventFilter(this);
    m_before->setToolTip(tr("Click to pick a point of the item"));
}

bool EffectPreview::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_before && event->type() == QEvent::MouseButtonPress && m_crop && !m_crop->isEmpty()) {
        const QPixmap picture = m_before->pixmap(Qt::ReturnByValue);
        // The label centres its picture.
        const QPoint offset((m_before->width() - picture.width()) / 2, (m_before->height() - picture.height()) / 2);
        const QPoint pixel = static_cast<QMouseEvent*>(event)->pos() - offset;
        if (QRect(QPoint(0, 0), picture.size()).contains(pixel))
            emit pointPicked(m_crop->itemPoint(pixel));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

EffectPreview::~EffectPreview()
{
    if (m_stop)
        m_stop->store(true);
    m_watcher.waitForFinished();
}

void EffectPreview::setItem(QSciImage* item)
{
    if (item == m_item && m_crop)
        return;
    if (m_item)
        disconnect(m_item, nullptr, this, nullptr);
    m_item = item;
    if (item)
        connect(item, &QSciImage::contentChanged, this, [this](QSciImage::Parts parts) {
            if (parts & (QSciImage::ZPart | QSciImage::MaskPart | QSciImage::DisplayPart)) {
                takeCrop();
                start();
            }
        });
    takeCrop();
    start();
}

void EffectPreview::setEffect(const QSciEffect& effect)
{
    m_effect = effect.clone();
    start();
}

void EffectPreview::takeCrop()
{
    m_crop = m_item ? std::make_shared<const PreviewCrop>(*m_item, Side) : nullptr;
    const QImage original = m_crop ? m_crop->original() : QImage();
    m_before->setPixmap(QPixmap::fromImage(original));
}

void EffectPreview::start()
{
    if (!m_effect || !m_crop || !m_item) {
        m_after->setPixmap(QPixmap());
        m_message->setText(m_item ? QString() : tr("No item to preview"));
        return;
    }
    QString message;
    if (!m_effect->check(*m_item, &message)) {
        if (m_stop)
            m_stop->store(true);
        m_after->setPixmap(QPixmap());
        m_message->setText(message);
        emit updated();
        return;
    }
    m_pending = true;
    if (m_running) {
        m_stop->store(true); // finished() starts again with the newest options
        return;
    }
    m_pending = false;
    m_running = true;
    m_message->setText(tr("Computing..."));
    m_stop = std::make_shared<std::atomic<bool>>(false);
    m_watcher.setFuture(QtConcurrent::run(
        [crop = m_crop, effect = std::shared_ptr<const QSciEffect>(m_effect->clone()), stop = m_stop]() {
            StopFlagSink sink(stop);
            return crop->processed(*effect, &sink);
        }));
}

void EffectPreview::finished()
{
    m_running = false;
    const QImage result = m_watcher.result();
    if (m_pending) {
        start();
        return;
    }
    if (!result.isNull()) {
        m_after->setPixmap(QPixmap::fromImage(result));
        m_message->clear();
    }
    emit updated();
}
