#include "formchoosecolorgradient.h"

#include "core/items/qsciimage.h"
#include "core/processing/planecorrection.h"
#include "core/settings/options.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString GradientKey = QStringLiteral("FormChooseColorGradient.gradient");
const QString PlaneCorrectionKey = QStringLiteral("FormChooseColorGradient.globalPlaneCorrection");
const QSize SlotIconSize(16, 50);
constexpr int PreviewSize = 240;

/** A slot the dialog pads with when a gradient brings fewer than eight stops. */
GradientStop paddingStop()
{
    GradientStop stop;
    stop.active = false;
    stop.color = QColor(255, 255, 255, 255);
    stop.position = 50;
    return stop;
}

QIcon gradientIcon(const ColorGradient& gradient)
{
    return QIcon(QPixmap::fromImage(gradient.preview(SlotIconSize.width(), SlotIconSize.height())));
}

QIcon colorIcon(const QColor& color)
{
    QPixmap pixmap(28, 14);
    pixmap.fill(Qt::white);
    QPainter painter(&pixmap);
    // A checkerboard behind the colour shows its transparency.
    for (int x = 0; x < pixmap.width(); x += 7)
        for (int y = 0; y < pixmap.height(); y += 7)
            if (((x + y) / 7) % 2)
                painter.fillRect(x, y, 7, 7, QColor(204, 204, 204));
    painter.fillRect(pixmap.rect(), color);
    painter.setPen(QColor(96, 96, 96));
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

QToolButton* gradientButton(QWidget* parent, const QString& objectName)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setIconSize(SlotIconSize);
    button->setAutoRaise(false);
    return button;
}

} // namespace

FormChooseColorGradient::FormChooseColorGradient(QWidget* parent)
    : QDialog(parent)
    , m_stops(StopCount, paddingStop())
{
    setObjectName(QStringLiteral("FormChooseColorGradient"));
    setWindowTitle(tr("Color gradient"));
    m_updateTimer = new QTimer(this);
    m_updateTimer->setObjectName(QStringLiteral("updateTimer"));
    m_updateTimer->setInterval(UpdateIntervalMs);
    connect(m_updateTimer, &QTimer::timeout, this, &FormChooseColorGradient::updateTimerTimeout);
    buildForm();
    setGradient(ColorGradient());
}

FormChooseColorGradient::~FormChooseColorGradient() = default;

void FormChooseColorGradient::buildForm()
{
    auto* top = new QHBoxLayout;
    top->addWidget(buildColorsGroup(), 1);
    top->addWidget(buildPreviewGroup());

    auto* help = new QPushButton(tr("Help"), this);
    help->setObjectName(QStringLiteral("pbHelp"));
    help->setProperty("helpPage", helpPage());
    help->setEnabled(false); // the help viewer is not built yet
    help->setAutoDefault(false);
    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName(QStringLiteral("pbOk"));
    ok->setDefault(true);
    auto* defaults = new QPushButton(tr("Defaults"), this);
    defaults->setObjectName(QStringLiteral("pbDefaults"));
    defaults->setAutoDefault(false);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("pbCancel"));
    cancel->setAutoDefault(false);
    connect(ok, &QPushButton::clicked, this, &FormChooseColorGradient::accept);
    connect(cancel, &QPushButton::clicked, this, &FormChooseColorGradient::reject);
    connect(defaults, &QPushButton::clicked, this, [this] { setGradient(ColorGradient()); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(help);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(defaults);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buildBuiltInRow());
    layout->addWidget(buildMyGradientsGroup());
    layout->addLayout(buttons);
}

QWidget* FormChooseColorGradient::buildColorsGroup()
{
    auto* group = new QGroupBox(tr("Colors"), this);
    group->setObjectName(QStringLiteral("gbColors"));
    auto* grid = new QGridLayout(group);
    for (int slot = 0; slot < StopCount; ++slot) {
        const QString number = QString::number(slot + 1);
        auto* use = new QCheckBox(tr("Use Color"), group);
        use->setObjectName(QStringLiteral("cbUseColor") + number);
        auto* color = new QPushButton(tr("Color"), group);
        color->setObjectName(QStringLiteral("pbColor") + number);
        color->setAutoDefault(false);
        color->setIconSize(QSize(28, 14));
        auto* caption = new QLabel(tr("Position [%]"), group);
        auto* position = new QDoubleSpinBox(group);
        position->setObjectName(QStringLiteral("dsbPosition") + number);
        // Stored positions outside 0 to 100 are kept (they paint nothing), so the field must hold them.
        position->setRange(-1e6, 1e6);
        position->setDecimals(2);
        position->setSingleStep(1);
        caption->setBuddy(position);
        grid->addWidget(use, slot, 0);
        grid->addWidget(color, slot, 1);
        grid->addWidget(caption, slot, 2);
        grid->addWidget(position, slot, 3);
        m_useColor.append(use);
        m_colorButtons.append(color);
        m_positions.append(position);

        connect(use, &QCheckBox::toggled, this, [this, slot](bool on) {
            m_stops[slot].active = on;
            edited();
        });
        connect(color, &QPushButton::clicked, this, [this, slot] { chooseColor(slot); });
        connect(position, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this, slot](double value) {
            m_stops[slot].position = value;
            edited();
        });
    }
    auto* repeatCaption = new QLabel(tr("Repeat:"), group);
    m_repeat = new QSpinBox(group);
    m_repeat->setObjectName(QStringLiteral("sbRepeat"));
    m_repeat->setRange(1, 1000);
    repeatCaption->setBuddy(m_repeat);
    grid->addWidget(repeatCaption, StopCount, 2);
    grid->addWidget(m_repeat, StopCount, 3);
    connect(m_repeat, qOverload<int>(&QSpinBox::valueChanged), this, [this](int) { edited(); });
    grid->setColumnStretch(4, 1);
    return group;
}

QWidget* FormChooseColorGradient::buildBuiltInRow()
{
    auto* row = new QWidget(this);
    row->setObjectName(QStringLiteral("builtInGradients"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (int number = 1; number <= ColorGradient::builtInCount(); ++number) {
        QToolButton* button = gradientButton(row, QStringLiteral("pbBuiltIn") + QString::number(number));
        button->setIcon(gradientIcon(ColorGradient::builtIn(number)));
        connect(button, &QToolButton::clicked, this, [this, number] { builtInClicked(number); });
        layout->addWidget(button);
    }
    layout->addStretch(1);
    return row;
}

QWidget* FormChooseColorGradient::buildMyGradientsGroup()
{
    auto* group = new QGroupBox(tr("My gradients"), this);
    group->setObjectName(QStringLiteral("gbMyGradients"));
    auto* slotRow = new QHBoxLayout;
    for (int number = 1; number <= MyGradientCount; ++number) {
        QToolButton* button = gradientButton(group, QStringLiteral("pbMyGradient") + QString::number(number));
        connect(button, &QToolButton::clicked, this, [this, number] { myGradientClicked(number); });
        slotRow->addWidget(button);
        m_myGradientButtons.append(button);
    }
    m_saveAsMyGradient = new QPushButton(tr("Save as my gradient..."), group);
    m_saveAsMyGradient->setObjectName(QStringLiteral("pbSaveAsMyGradient"));
    m_saveAsMyGradient->setCheckable(true);
    m_saveAsMyGradient->setAutoDefault(false);
    connect(m_saveAsMyGradient, &QPushButton::clicked, this, [this] { setSaveMode(!m_saveMode); });
    slotRow->addStretch(1);
    slotRow->addWidget(m_saveAsMyGradient);

    m_saveHint = new QLabel(
        tr("Click on a gradient to save the settings or click on \"save as my gradient\" to abort."), group);
    m_saveHint->setObjectName(QStringLiteral("lbSaveHint"));
    m_saveHint->setStyleSheet(QStringLiteral("color: #b00000;"));
    // Keep the hint's line when hidden, so switching the save mode does not make the rows above jump.
    QSizePolicy policy = m_saveHint->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_saveHint->setSizePolicy(policy);
    m_saveHint->setVisible(false);

    auto* layout = new QVBoxLayout(group);
    layout->addLayout(slotRow);
    layout->addWidget(m_saveHint);
    return group;
}

QWidget* FormChooseColorGradient::buildPreviewGroup()
{
    auto* group = new QGroupBox(tr("Preview"), this);
    group->setObjectName(QStringLiteral("gbPreview"));
    m_preview = new QLabel(group);
    m_preview->setObjectName(QStringLiteral("lbPreview"));
    m_preview->setFixedSize(PreviewSize, PreviewSize);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_planeCorrection = new QCheckBox(tr("Apply global plane correction for preview"), group);
    m_planeCorrection->setObjectName(QStringLiteral("cbGlobalPlaneCorrection"));
    m_planeCorrection->setChecked(Options::getBool(PlaneCorrectionKey, true));
    connect(m_planeCorrection, &QCheckBox::toggled, this, &FormChooseColorGradient::planeCorrectionToggled);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(m_preview, 0, Qt::AlignHCenter);
    layout->addWidget(m_planeCorrection);
    layout->addStretch(1);
    return group;
}

void FormChooseColorGradient::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        // Opened for an item, the dialog starts from what that item shows, not from a gradient it never had.
        ColorGradient start;
        if (m_previewItem)
            start = m_previewItem->colorGradient();
        else
            start.fromString(Options::getString(GradientKey, QString()));
        setGradient(start);
        for (int number = 1; number <= MyGradientCount; ++number)
            refreshMyGradientIcon(number);
        {
            const QSignalBlocker block(m_planeCorrection);
            m_planeCorrection->setChecked(Options::getBool(PlaneCorrectionKey, true));
        }
        setSaveMode(false);
        rebuildPreviewBase();
        updateTimerTimeout();
    }
    QDialog::showEvent(event);
}

void FormChooseColorGradient::setPreviewItem(const QSciImage* item)
{
    m_previewItem = item;
    rebuildPreviewBase();
    if (isVisible())
        updateTimerTimeout();
}

void FormChooseColorGradient::setPlaneCorrectionOptionVisible(bool visible)
{
    m_planeCorrection->setVisible(visible);
    rebuildPreviewBase();
    if (isVisible())
        updateTimerTimeout();
}

ColorGradient FormChooseColorGradient::gradient() const
{
    ColorGradient result;
    result.setRepeat(m_repeat->value());
    result.setStops(m_stops);
    return result;
}

void FormChooseColorGradient::setGradient(const ColorGradient& gradient)
{
    m_stops = gradient.stops();
    m_stops.resize(StopCount);
    for (int slot = gradient.stops().size(); slot < StopCount; ++slot)
        m_stops[slot] = paddingStop();
    m_loading = true;
    {
        const QSignalBlocker block(m_repeat);
        m_repeat->setValue(gradient.repeat());
    }
    for (int slot = 0; slot < StopCount; ++slot)
        showStop(slot);
    m_loading = false;
    edited();
}

void FormChooseColorGradient::showStop(int slot)
{
    const GradientStop& stop = m_stops.at(slot);
    const QSignalBlocker blockUse(m_useColor.at(slot));
    const QSignalBlocker blockPosition(m_positions.at(slot));
    m_useColor.at(slot)->setChecked(stop.active);
    // The field rounds to its decimals; m_stops keeps the exact value until the user edits the field.
    m_positions.at(slot)->setValue(stop.position);
    m_colorButtons.at(slot)->setIcon(colorIcon(stop.color));
    m_colorButtons.at(slot)->setToolTip(Options::formatColor(stop.color));
}

void FormChooseColorGradient::edited()
{
    if (!m_loading)
        m_updateTimer->start();
}

void FormChooseColorGradient::chooseColor(int slot)
{
    const QColor chosen
        = QColorDialog::getColor(m_stops.at(slot).color, this, tr("Color"), QColorDialog::ShowAlphaChannel);
    if (!chosen.isValid())
        return;
    m_stops[slot].color = chosen;
    showStop(slot);
    edited();
}

void FormChooseColorGradient::builtInClicked(int number)
{
    setGradient(ColorGradient::builtIn(number));
}

void FormChooseColorGradient::myGradientClicked(int number)
{
    if (m_saveMode) {
        Options::setString(myGradientKey(number), gradient().toString());
        refreshMyGradientIcon(number);
        setSaveMode(false);
        return;
    }
    setGradient(myGradient(number));
}

void FormChooseColorGradient::setSaveMode(bool on)
{
    m_saveMode = on;
    m_saveAsMyGradient->setChecked(on);
    m_saveHint->setVisible(on);
}

QString FormChooseColorGradient::myGradientKey(int number)
{
    return QStringLiteral("FormChooseColorGradient.myGradient") + QString::number(number);
}

ColorGradient FormChooseColorGradient::myGradient(int number)
{
    ColorGradient gradient;
    gradient.fromString(Options::getString(myGradientKey(number), QString()));
    return gradient;
}

void FormChooseColorGradient::refreshMyGradientIcon(int number)
{
    if (QToolButton* button = m_myGradientButtons.value(number - 1))
        button->setIcon(gradientIcon(myGradient(number)));
}

void FormChooseColorGradient::planeCorrectionToggled(bool on)
{
    Options::setBool(PlaneCorrectionKey, on);
    rebuildPreviewBase();
    updateTimerTimeout();
}

void FormChooseColorGradient::rebuildPreviewBase()
{
    m_lastPreviewText.clear();
    m_previewCopy.reset();
    if (!m_previewItem)
        return;
    // One copy per item and correction state: each refresh then only recolours it, so dragging a
    // position field stays smooth on large items. The item itself is only read.
    m_previewCopy.reset(m_previewItem->duplicate());
    if (!m_planeCorrection->isHidden() && m_planeCorrection->isChecked())
        PlaneCorrection::subtractGlobalPlane(*m_previewCopy);
}

void FormChooseColorGradient::updateTimerTimeout()
{
    m_updateTimer->stop();
    const ColorGradient current = gradient();
    const QString text = current.toString();
    if (text == m_lastPreviewText)
        return;
    m_lastPreviewText = text;
    if (!m_previewCopy) {
        m_previewPicture = QImage();
        m_preview->clear();
        return;
    }
    m_previewCopy->setColorGradient(current);
    m_previewCopy->mapZToPicture();
    m_previewPicture = m_previewCopy->picture();
    showPreviewPicture();
}

void FormChooseColorGradient::showPreviewPicture()
{
    const QSize target = m_previewPicture.size().scaled(m_preview->contentsRect().size(), Qt::KeepAspectRatio);
    // Small items are enlarged without smoothing so their data points stay visible.
    const bool enlarge = target.width() > m_previewPicture.width();
    m_preview->setPixmap(QPixmap::fromImage(m_previewPicture.scaled(
        target, Qt::IgnoreAspectRatio, enlarge ? Qt::FastTransformation : Qt::SmoothTransformation)));
}

void FormChooseColorGradient::accept()
{
    m_updateTimer->stop();
    setSaveMode(false);
    Options::setString(GradientKey, gradient().toString());
    QDialog::accept();
}

void FormChooseColorGradient::reject()
{
    m_updateTimer->stop();
    setSaveMode(false);
    QDialog::reject();
}
