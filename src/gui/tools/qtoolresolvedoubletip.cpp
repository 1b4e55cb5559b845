#include "qtoolresolvedoubletip.h"

#include "core/processing/doubletip.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

QToolResolveDoubleTip::QToolResolveDoubleTip(QWidget* parent)
    : QTool(QStringLiteral("RESOLVE_DOUBLE_TIP"), parent)
    , m_autoRatio(new QCheckBox(tr("Ghost ratio from the marks")))
    , m_ratio(new QDoubleSpinBox)
    , m_status(new QLabel)
    , m_apply(new QPushButton(tr("Apply")))
    , m_discard(new QPushButton(tr("Discard")))
{
    m_autoRatio->setObjectName(QStringLiteral("cbAutoRatio"));
    m_autoRatio->setChecked(true);
    m_ratio->setObjectName(QStringLiteral("dsbGhostRatio"));
    m_ratio->setRange(0, 0.95);
    m_ratio->setDecimals(3);
    m_ratio->setSingleStep(0.05);
    m_ratio->setValue(0.5);
    m_ratio->setEnabled(false);
    m_status->setObjectName(QStringLiteral("lbDoubleTipStatus"));
    m_status->setWordWrap(true);
    m_apply->setObjectName(QStringLiteral("pbApplyDoubleTip"));
    m_discard->setObjectName(QStringLiteral("pbDiscardDoubleTip"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_apply);
    buttons->addWidget(m_discard);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_autoRatio);
    layout->addWidget(new QLabel(tr("Ghost height / feature height:")));
    layout->addWidget(m_ratio);
    layout->addWidget(m_status);
    layout->addLayout(buttons);
    layout->addStretch(1);

    connect(m_autoRatio, &QCheckBox::toggled, m_ratio, [this](bool on) {
        m_ratio->setEnabled(!on);
        computePreview();
    });
    connect(m_ratio, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, [this] {
        if (!m_autoRatio->isChecked())
            computePreview();
    });
    connect(m_apply, &QPushButton::clicked, this, &QToolResolveDoubleTip::applyPreview);
    connect(m_discard, &QPushButton::clicked, this, &QToolResolveDoubleTip::discard);
    connect(this, &QTool::activated, this, &QToolResolveDoubleTip::discard);
    watchPanel();
    discard();
}

void QToolResolveDoubleTip::endDrag(const QPoint& point, Qt::MouseButton)
{
    const QSciImage* target = item();
    if (!target || !QRect(QPoint(), target->size()).contains(point))
        return;
    if (m_marks != 1) {
        m_preview.clear();
        m_feature = point;
        m_marks = 1;
        m_status->setText(tr("Now click the ghost of that feature."));
        showMarks();
        m_apply->setEnabled(false);
        return;
    }
    m_ghost = point;
    m_marks = 2;
    computePreview();
}

void QToolResolveDoubleTip::computePreview()
{
    const QSciImage* target = item();
    if (m_marks != 2 || !target)
        return;
    const int h = target->height();
    const auto stored = [h](const QPoint& p) { return QPoint(p.x(), h - 1 - p.y()); };
    double ratio = 0;
    QPoint vector;
    m_preview = DoubleTip::resolved(
        *target, stored(m_feature), stored(m_ghost), m_autoRatio->isChecked() ? -1 : m_ratio->value(), &ratio, &vector);
    if (m_autoRatio->isChecked()) {
        const QSignalBlocker blocker(m_ratio);
        m_ratio->setValue(ratio);
    }
    m_status->setText(tr("Ghost at (%1, %2) points, ratio %3. Preview shown: Apply or Discard.")
                          .arg(vector.x())
                          .arg(-vector.y())
                          .arg(ratio, 0, 'g', 3));
    m_apply->setEnabled(true);
    overlay() = renderZ(*target, m_preview);
    showMarks();
}

void QToolResolveDoubleTip::showMarks()
{
    if (!item())
        return;
    QImage& image = overlay();
    if (m_preview.isEmpty())
        image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath marks;
    marks.addEllipse(QPointF(m_feature) + QPointF(0.5, 0.5), 3, 3);
    if (m_marks == 2) {
        marks.addEllipse(QPointF(m_ghost) + QPointF(0.5, 0.5), 3, 3);
        marks.moveTo(QPointF(m_feature) + QPointF(0.5, 0.5));
        marks.lineTo(QPointF(m_ghost) + QPointF(0.5, 0.5));
    }
    paintRubberBand(painter, marks);
    painter.end();
    emit overlayChanged();
}

void QToolResolveDoubleTip::applyPreview()
{
    QSciImage* target = item();
    if (m_preview.isEmpty() || !target || m_preview.size() != qsizetype(target->width()) * target->height())
        return;
    const QVector<double> z = m_preview;
    applyZToItem(DoubleTip::operationText(), [&z](QSciImage& changed) { (void)changed.setZMatrix(z); });
    discard();
}

void QToolResolveDoubleTip::discard()
{
    m_preview.clear();
    m_marks = 0;
    m_apply->setEnabled(false);
    m_status->setText(tr("Click a feature, then its ghost."));
    emit overlayCleared();
}
