#include "formimageprocessing.h"

#include "denoisepanel.h"
#include "derivativepanel.h"
#include "driftcorrectionpanel.h"
#include "effectpanel.h"
#include "effectpreview.h"
#include "filterpanel.h"
#include "linecorrectionpanel.h"
#include "panelprogresssink.h"
#include "planecorrectionpanel.h"
#include "zformulapanel.h"

#include "core/items/qsciimage.h"
#include "core/processing/qscieffect.h"
#include "core/project/effectoperations.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

FormImageProcessing::FormImageProcessing(QWidget* parent)
    : QDialog(parent)
    , m_list(new QListWidget(this))
    , m_pages(new QStackedWidget(this))
    , m_preview(new EffectPreview(this))
    , m_progress(new QProgressBar(this))
    , m_apply(new QPushButton(tr("Apply"), this))
    , m_stop(new QPushButton(tr("Stop"), this))
{
    setObjectName(QStringLiteral("FormImageProcessing"));
    setWindowTitle(tr("Image processing"));
    m_list->setObjectName(QStringLiteral("lwEffects"));
    m_list->setFixedWidth(140);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_progress->setObjectName(QStringLiteral("progressBar"));
    m_progress->setValue(0);
    m_apply->setObjectName(QStringLiteral("pbApply"));
    m_apply->setToolTip(tr("Apply the effect to the selected items"));
    m_stop->setObjectName(QStringLiteral("pbStop"));
    m_stop->setEnabled(false);
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("pbClose"));

    auto* top = new QHBoxLayout;
    top->addWidget(m_list);
    top->addWidget(m_pages, 1);
    top->addWidget(m_preview);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_progress, 1);
    bottom->addWidget(m_apply);
    bottom->addWidget(m_stop);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(bottom);

    connect(m_list, &QListWidget::currentRowChanged, this, &FormImageProcessing::selectPanel);
    connect(m_apply, &QPushButton::clicked, this, &FormImageProcessing::apply);
    connect(m_stop, &QPushButton::clicked, this, &FormImageProcessing::stop);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(m_preview, &EffectPreview::pointPicked, this, [this](const QPoint& point) {
        if (EffectPanel* panel = currentPanel())
            panel->pickPoint(point);
    });

    addPanel(new PlaneCorrectionPanel(this));
    addPanel(new LineCorrectionPanel(this));
    addPanel(new DriftCorrectionPanel(this));
    addPanel(new DerivativePanel(this));
    addPanel(new DenoisePanel(this));
    addPanel(new FilterPanel(this));
    addPanel(new ZFormulaPanel(this));
}

FormImageProcessing::~FormImageProcessing() = default;

void FormImageProcessing::setProject(Project* project, std::function<QList<QSciImage*>()> selectedItems)
{
    m_project = project;
    m_selectedItems = std::move(selectedItems);
}

void FormImageProcessing::setCurrentItem(QSciImage* item)
{
    m_currentItem = item;
    if (isVisible())
        updatePreview();
}

int FormImageProcessing::addPanel(EffectPanel* panel)
{
    panel->readSettings();
    m_panels.append(panel);
    m_pages->addWidget(panel);
    m_list->addItem(panel->title());
    connect(panel, &EffectPanel::changed, this, [this, panel] {
        if (panel == currentPanel())
            updatePreview();
    });
    if (m_list->currentRow() < 0)
        m_list->setCurrentRow(0);
    return m_panels.size() - 1;
}

void FormImageProcessing::showFilter(int kind)
{
    if (auto* filters = findChild<FilterPanel*>())
        filters->setKind(QSciFilter::Kind(kind));
    showPanel(QStringLiteral("FilterPanel"));
}

void FormImageProcessing::showPanel(const QString& objectName)
{
    for (int i = 0; i < m_panels.size(); ++i)
        if (m_panels.at(i)->objectName() == objectName)
            m_list->setCurrentRow(i);
    show();
    raise();
    activateWindow();
    updatePreview();
}

EffectPanel* FormImageProcessing::currentPanel() const
{
    return m_panels.value(m_pages->currentIndex());
}

void FormImageProcessing::selectPanel(int index)
{
    if (index < 0 || index >= m_panels.size())
        return;
    m_pages->setCurrentIndex(index);
    updatePreview();
}

void FormImageProcessing::updatePreview()
{
    if (!isVisible() || !currentPanel())
        return;
    // The first item Apply would change, else the item the window describes.
    const QList<QSciImage*> items = m_selectedItems ? m_selectedItems() : QList<QSciImage*>();
    m_preview->setItem(items.isEmpty() ? m_currentItem.data() : items.first());
    m_preview->setEffect(currentPanel()->effect());
}

void FormImageProcessing::apply()
{
    EffectPanel* panel = currentPanel();
    if (!panel || !m_project || !m_selectedItems || m_sink)
        return;
    const QList<QSciImage*> items = m_selectedItems();
    if (items.isEmpty()) {
        emit messageRequested(windowTitle(), tr("Select the items to apply the effect to."));
        return;
    }
    const QSciEffect& effect = panel->effect();
    effect.writeSettings();
    m_apply->setEnabled(false);
    m_pages->setEnabled(false);
    m_list->setEnabled(false);
    m_stop->setEnabled(true);
    QString message;
    EffectOperations::Outcome outcome;
    {
        PanelProgressSink sink(m_progress, this);
        m_sink = &sink;
        outcome = panel->applyTo(*m_project, items, &sink, &message);
        m_sink = nullptr;
    }
    m_stop->setEnabled(false);
    m_apply->setEnabled(true);
    m_pages->setEnabled(true);
    m_list->setEnabled(true);
    if (outcome == EffectOperations::Outcome::Stopped)
        m_progress->setValue(0);
    if (outcome != EffectOperations::Outcome::Applied && !message.isEmpty())
        emit messageRequested(effect.name(), message);
    // A result worth a word (objects found) stays readable in the bar until the next run.
    m_progress->setFormat(
        outcome == EffectOperations::Outcome::Applied && !message.isEmpty() ? message : QStringLiteral("%p%"));
}

void FormImageProcessing::stop()
{
    if (m_sink)
        m_sink->stop();
}

void FormImageProcessing::hideEvent(QHideEvent* event)
{
    for (EffectPanel* panel : m_panels)
        panel->effect().writeSettings();
    QDialog::hideEvent(event);
}
