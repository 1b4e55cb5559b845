#include "form3dplot.h"

#include "plotsavedialog.h"
#include "plotwebview.h"

#include "core/base/messages.h"
#include "core/plots/plot3dfile.h"
#include "core/plots/plot3dpage.h"
#include "core/settings/options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebFrame>
#include <QWebPage>
#include <QWebSettings>

namespace {

const QString settingsPrefix = QStringLiteral("form3dPlot.");

} // namespace

Form3dPlot::Form3dPlot(const Plot3dDocument& document, QWidget* parent, bool remembered)
    : QWidget(parent, Qt::Window)
    , m_document(document)
    , m_view(new PlotWebView)
    , m_resizeTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("Form3dPlot"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(
        tr("3D plot") + (document.itemName.isEmpty() ? QString() : QStringLiteral(" - ") + document.itemName));
    m_view->setObjectName(QStringLiteral("webView"));
    m_view->settings()->setAttribute(QWebSettings::WebGLEnabled, true);
    m_view->settings()->setAttribute(QWebSettings::AcceleratedCompositingEnabled, true);
    m_view->setContextMenuPolicy(Qt::NoContextMenu);
    m_resizeTimer->setSingleShot(true);
    m_resizeTimer->setInterval(250);
    connect(m_view, &PlotWebView::resized, this, &Form3dPlot::onWebViewResize);
    connect(m_resizeTimer, &QTimer::timeout, this, &Form3dPlot::resizeTimerTimeout);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_view, 1);
    layout->addWidget(buildPanel());

    chooseSaveFile = [this](const QString& title, const QString& filter) {
        return PlotSaveDialog::choose(this, QStringLiteral("form3dPlot.saveDialogPath"), title, filter);
    };
    showMessage = [this](const QString& title, const QString& text) {
        QMessageBox::warning(this, title, text, QMessageBox::Ok);
    };
    if (remembered)
        restoreSettings();
    writeControls();
    resize(document.geometry.size());
    updatePage();
}

QWidget* Form3dPlot::buildPanel()
{
    auto* panel = new QWidget;
    auto* form = new QFormLayout(panel);
    const auto named = [](auto* widget, const char* name) {
        widget->setObjectName(QLatin1String(name));
        return widget;
    };
    m_title = named(new QLineEdit, "lePlotTitle");
    form->addRow(tr("Title:"), m_title);
    const char* names[] = { "leXAxisTitle", "leYAxisTitle", "leZAxisTitle" };
    const QString captions[] = { tr("x axis:"), tr("y axis:"), tr("z axis:") };
    for (int i = 0; i < 3; ++i) {
        m_axisTitles[i] = named(new QLineEdit, names[i]);
        form->addRow(captions[i], m_axisTitles[i]);
    }
    m_natural = named(new QCheckBox(tr("Natural units")), "cbNaturalUnits");
    m_komma = named(new QCheckBox(tr("Decimal comma")), "cbUseKomma");
    m_webGL = named(new QCheckBox(tr("Use WebGL")), "cbUseWebGL");
    m_autoPrecision = named(new QCheckBox(tr("Automatic precision")), "cbAutoPrecision");
    m_precision = named(new QSpinBox, "sbPrecision");
    m_precision->setRange(2, 400);
    m_render = named(new QComboBox, "cbRender");
    m_render->addItems({ tr("Surface"), tr("Data points") });
    m_fontSize = named(new QSpinBox, "sbFontSize");
    m_fontSize->setRange(4, 72);
    m_fontStyle = named(new QComboBox, "cbFontStyle");
    m_fontStyle->addItems({ QStringLiteral("normal"), QStringLiteral("italic"), QStringLiteral("bold") });
    m_saveWidth = named(new QSpinBox, "sbSaveWidth");
    m_saveHeight = named(new QSpinBox, "sbSaveHeight");
    for (QSpinBox* box : { m_saveWidth, m_saveHeight })
        box->setRange(16, 100000);
    for (QCheckBox* box : { m_natural, m_komma, m_webGL, m_autoPrecision }) {
        form->addRow(box);
        connect(box, &QCheckBox::toggled, this, &Form3dPlot::readControls);
    }
    // One row per axis: whether its title shows, with its unit, its tick labels and sub-ticks, and its tick count.
    auto* axes = new QGridLayout;
    const QString headers[] = { tr("Title"), tr("Unit"), tr("Labels"), tr("Sub-ticks"), tr("Ticks") };
    for (int c = 0; c < 5; ++c)
        axes->addWidget(new QLabel(headers[c]), 0, c + 1);
    const char* axisNames[] = { "x", "y", "z" };
    for (int r = 0; r < 3; ++r) {
        const QString a = QLatin1String(axisNames[r]);
        axes->addWidget(new QLabel(a), r + 1, 0);
        const QString keys[]
            = { a + QLatin1String("AxisCheck"), QLatin1String("add") + a.toUpper() + QLatin1String("Unit"),
                  a + QLatin1String("LabelCheck"), a + QLatin1String("SubTickCheck") };
        for (int c = 0; c < 4; ++c) {
            auto* box = new QCheckBox;
            box->setObjectName(keys[c]);
            m_flagBoxes.insert(keys[c], box);
            connect(box, &QCheckBox::toggled, this, &Form3dPlot::readControls);
            axes->addWidget(box, r + 1, c + 1);
        }
        auto* ticks = new QSpinBox;
        ticks->setRange(0, 50);
        ticks->setObjectName(a + QLatin1String("TickNumberValue"));
        m_numberBoxes.insert(ticks->objectName(), ticks);
        connect(ticks, &QSpinBox::editingFinished, this, &Form3dPlot::readControls);
        axes->addWidget(ticks, r + 1, 5);
    }
    auto* titleBox = named(new QCheckBox(tr("Show title")), "plotTitleCheck");
    m_flagBoxes.insert(titleBox->objectName(), titleBox);
    connect(titleBox, &QCheckBox::toggled, this, &Form3dPlot::readControls);
    form->addRow(titleBox);
    form->addRow(axes);
    form->addRow(tr("Precision:"), m_precision);
    form->addRow(tr("Render:"), m_render);
    form->addRow(tr("Font size:"), m_fontSize);
    form->addRow(tr("Font style:"), m_fontStyle);
    form->addRow(tr("Save width:"), m_saveWidth);
    form->addRow(tr("Save height:"), m_saveHeight);
    for (QLineEdit* edit : { m_title, m_axisTitles[0], m_axisTitles[1], m_axisTitles[2] })
        connect(edit, &QLineEdit::editingFinished, this, &Form3dPlot::readControls);
    for (QSpinBox* box : { m_precision, m_fontSize, m_saveWidth, m_saveHeight })
        connect(box, &QSpinBox::editingFinished, this, &Form3dPlot::readControls);
    for (QComboBox* box : { m_render, m_fontStyle })
        connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this, &Form3dPlot::readControls);

    auto* saveFileButton = named(new QPushButton(tr("Save plot")), "pbSavePlot");
    auto* savePictureButton = named(new QPushButton(tr("Save picture")), "pbSavePicture");
    connect(saveFileButton, &QPushButton::clicked, this, &Form3dPlot::saveFileAsked);
    connect(savePictureButton, &QPushButton::clicked, this, &Form3dPlot::savePictureAsked);
    form->addRow(saveFileButton);
    form->addRow(savePictureButton);
    return panel;
}

void Form3dPlot::writeControls()
{
    m_updating = true;
    const Plot3dDocument& d = m_document;
    m_title->setText(d.setting(QStringLiteral("plotTitle")));
    const char* keys[] = { "xAxisTitle", "yAxisTitle", "zAxisTitle" };
    for (int i = 0; i < 3; ++i)
        m_axisTitles[i]->setText(d.setting(QLatin1String(keys[i])));
    m_natural->setChecked(d.flag(QStringLiteral("useNaturalUnits")));
    m_komma->setChecked(d.flag(QStringLiteral("useKomma")));
    m_webGL->setChecked(d.flag(QStringLiteral("useWebGL")));
    m_autoPrecision->setChecked(d.flag(QStringLiteral("autoPrecision")));
    m_precision->setValue(int(d.number(QStringLiteral("precision"), 100)));
    m_render->setCurrentIndex(std::clamp(int(d.number(QStringLiteral("render"))), 0, 1));
    m_fontSize->setValue(int(d.number(QStringLiteral("fontSize"), 12)));
    m_fontStyle->setCurrentText(d.setting(QStringLiteral("fontStyle")));
    // Shown as typed, so that a size too large can be refused when saving.
    m_saveWidth->setValue(int(d.number(QStringLiteral("saveWidth"), 1200)));
    m_saveHeight->setValue(int(d.number(QStringLiteral("saveHeight"), 900)));
    for (auto it = m_flagBoxes.constBegin(); it != m_flagBoxes.constEnd(); ++it)
        it.value()->setChecked(d.flag(it.key()));
    for (auto it = m_numberBoxes.constBegin(); it != m_numberBoxes.constEnd(); ++it)
        it.value()->setValue(int(d.number(it.key())));
    m_updating = false;
}

void Form3dPlot::readControls()
{
    if (m_updating)
        return;
    Plot3dDocument& d = m_document;
    if (m_natural->isChecked() && d.xUnit.isEmpty() && d.yUnit.isEmpty()) {
        showMessage(tr("Attention"), tr("No natural units available!"));
        m_updating = true;
        m_natural->setChecked(false);
        m_updating = false;
    }
    d.setSetting(QStringLiteral("plotTitle"), m_title->text());
    const char* keys[] = { "xAxisTitle", "yAxisTitle", "zAxisTitle" };
    for (int i = 0; i < 3; ++i)
        d.setSetting(QLatin1String(keys[i]), m_axisTitles[i]->text());
    d.setFlag(QStringLiteral("useNaturalUnits"), m_natural->isChecked());
    d.setFlag(QStringLiteral("useKomma"), m_komma->isChecked());
    d.setFlag(QStringLiteral("useWebGL"), m_webGL->isChecked());
    d.setFlag(QStringLiteral("autoPrecision"), m_autoPrecision->isChecked());
    d.setNumber(QStringLiteral("precision"), m_precision->value());
    d.setNumber(QStringLiteral("render"), m_render->currentIndex());
    d.setNumber(QStringLiteral("fontSize"), m_fontSize->value());
    d.setSetting(QStringLiteral("fontStyle"), m_fontStyle->currentText());
    d.setNumber(QStringLiteral("saveWidth"), m_saveWidth->value());
    d.setNumber(QStringLiteral("saveHeight"), m_saveHeight->value());
    for (auto it = m_flagBoxes.constBegin(); it != m_flagBoxes.constEnd(); ++it)
        d.setFlag(it.key(), it.value()->isChecked());
    for (auto it = m_numberBoxes.constBegin(); it != m_numberBoxes.constEnd(); ++it)
        d.setNumber(it.key(), it.value()->value());
    storeSettings();
    takeAngles();
    updatePage();
}

void Form3dPlot::storeSettings() const
{
    const Plot3dDocument& d = m_document;
    const auto setFlag = [&d](const char* key, const char* field) {
        Options::setBool(QLatin1String(key), d.flag(QLatin1String(field)));
    };
    setFlag("form3dPlot.xAxisCheck", "xAxisCheck");
    setFlag("form3dPlot.yAxisCheck", "yAxisCheck");
    setFlag("form3dPlot.zAxisCheck", "zAxisCheck");
    setFlag("form3dPlot.precisionAuto", "autoPrecision");
    setFlag("form3dPlot.plotTitleCheck", "plotTitleCheck");
    setFlag("form3dPlot.xLabelCheck", "xLabelCheck");
    setFlag("form3dPlot.yLabelCheck", "yLabelCheck");
    setFlag("form3dPlot.zLabelCheck", "zLabelCheck");
    setFlag("form3dPlot.addXUnit", "addXUnit");
    setFlag("form3dPlot.addYUnit", "addYUnit");
    setFlag("form3dPlot.addZUnit", "addZUnit");
    // This one key is spelled with a lower-case p.
    setFlag("form3dplot.naturalUnits", "useNaturalUnits");
    setFlag("form3dPlot.xSubTickCheck", "xSubTickCheck");
    setFlag("form3dPlot.ySubTickCheck", "ySubTickCheck");
    setFlag("form3dPlot.zSubTickCheck", "zSubTickCheck");
    setFlag("form3dPlot.useKomma", "useKomma");
    for (const char* axis : { "x", "y", "z" }) {
        const QString a = QLatin1String(axis);
        Options::setString(
            settingsPrefix + a + QLatin1String("NumericalFormat"), d.setting(a + QLatin1String("NumericalFormat")));
    }
    Options::setString(QStringLiteral("form3dPlot.xAxisTitle"), d.setting(QStringLiteral("xAxisTitle")));
    Options::setString(QStringLiteral("form3dPlot.yAxisTitle"), d.setting(QStringLiteral("yAxisTitle")));
    Options::setString(QStringLiteral("form3dPlot.fontstyle"), d.setting(QStringLiteral("fontStyle")));
}

void Form3dPlot::restoreSettings()
{
    Plot3dDocument& d = m_document;
    const auto flag = [&d](const char* key, const char* field) {
        d.setFlag(QLatin1String(field), Options::getBool(QLatin1String(key), d.flag(QLatin1String(field))));
    };
    flag("form3dPlot.xAxisCheck", "xAxisCheck");
    flag("form3dPlot.yAxisCheck", "yAxisCheck");
    flag("form3dPlot.zAxisCheck", "zAxisCheck");
    flag("form3dPlot.precisionAuto", "autoPrecision");
    flag("form3dPlot.plotTitleCheck", "plotTitleCheck");
    flag("form3dPlot.xLabelCheck", "xLabelCheck");
    flag("form3dPlot.yLabelCheck", "yLabelCheck");
    flag("form3dPlot.zLabelCheck", "zLabelCheck");
    flag("form3dPlot.addXUnit", "addXUnit");
    flag("form3dPlot.addYUnit", "addYUnit");
    flag("form3dPlot.addZUnit", "addZUnit");
    flag("form3dplot.naturalUnits", "useNaturalUnits");
    flag("form3dPlot.xSubTickCheck", "xSubTickCheck");
    flag("form3dPlot.ySubTickCheck", "ySubTickCheck");
    flag("form3dPlot.zSubTickCheck", "zSubTickCheck");
    flag("form3dPlot.useKomma", "useKomma");
    for (const char* axis : { "x", "y", "z" }) {
        const QString a = QLatin1String(axis);
        const QString key = a + QLatin1String("NumericalFormat");
        d.setSetting(key, Options::getString(settingsPrefix + key, d.setting(key)));
    }
    d.setSetting(QStringLiteral("xAxisTitle"),
        Options::getString(QStringLiteral("form3dPlot.xAxisTitle"), d.setting(QStringLiteral("xAxisTitle"))));
    d.setSetting(QStringLiteral("yAxisTitle"),
        Options::getString(QStringLiteral("form3dPlot.yAxisTitle"), d.setting(QStringLiteral("yAxisTitle"))));
    d.setSetting(QStringLiteral("fontStyle"),
        Options::getString(QStringLiteral("form3dPlot.fontstyle"), d.setting(QStringLiteral("fontStyle"))));
    // An item without units cannot show natural ones, whatever the last window used.
    if (d.xUnit.isEmpty() && d.yUnit.isEmpty())
        d.setFlag(QStringLiteral("useNaturalUnits"), false);
}

void Form3dPlot::takeAngles()
{
    const QVariant angles = m_view->page()->mainFrame()->evaluateJavaScript(
        QStringLiteral("window.surfacePlot ? window.surfacePlot.angles() : null"));
    const QVariantList list = angles.toList();
    if (list.size() == 2) {
        m_document.setNumber(QStringLiteral("angleWebGLX"), list[0].toDouble());
        m_document.setNumber(QStringLiteral("angleWebGLY"), list[1].toDouble());
    }
}

void Form3dPlot::updatePage()
{
    const QSize size = m_view->size().expandedTo(QSize(64, 64));
    m_view->setHtml(Plot3dPage::html(m_document, size, false), QUrl(Plot3dPage::baseUrl()));
}

void Form3dPlot::onWebViewResize()
{
    m_resizeTimer->start();
}

void Form3dPlot::resizeTimerTimeout()
{
    takeAngles();
    updatePage();
}

Plot3dDocument Form3dPlot::document() const
{
    Plot3dDocument d = m_document;
    d.geometry = geometry();
    return d;
}

bool Form3dPlot::savePicture(const QString& path, QString* message)
{
    const int width = int(m_document.number(QStringLiteral("saveWidth"), 1200));
    const int height = int(m_document.number(QStringLiteral("saveHeight"), 900));
    if (width > MaxSaveSide || height > MaxSaveSide) {
        if (message)
            *message = width > MaxSaveSide ? tr("Chosen value exceeds allowed maximum range of width!")
                                           : tr("Chosen value exceeds allowed maximum range of height!");
        return false;
    }
    takeAngles();
    // The page is drawn once more at the picture's own size, so that the texts stay sharp.
    QWebPage page;
    page.settings()->setAttribute(QWebSettings::WebGLEnabled, true);
    page.setViewportSize(QSize(width, height));
    QEventLoop loop;
    bool loaded = false;
    connect(&page, &QWebPage::loadFinished, &loop, [&loop, &loaded] {
        loaded = true;
        loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    page.mainFrame()->setHtml(Plot3dPage::html(m_document, QSize(width, height), false), QUrl(Plot3dPage::baseUrl()));
    // Pages whose parts all come from the resources may finish loading before setHtml returns.
    if (!loaded)
        loop.exec();
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(m_document.color(QStringLiteral("backgroundColor"), Qt::black));
    {
        QPainter painter(&image);
        page.mainFrame()->render(&painter);
    }
    bool ok = false;
    if (path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
        QPdfWriter pdf(path);
        pdf.setPageSize(QPageSize(QSizeF(width, height), QPageSize::Point));
        pdf.setPageMargins(QMarginsF());
        pdf.setResolution(72);
        QPainter painter;
        ok = painter.begin(&pdf);
        if (ok) {
            painter.drawImage(QRect(0, 0, width, height), image);
            ok = painter.end();
        }
    } else {
        ok = image.save(path);
    }
    if (!ok && message)
        *message = Messages::unableToOpenFile(path);
    return ok;
}

bool Form3dPlot::saveFile(const QString& path, QString* message)
{
    takeAngles();
    return Plot3dFile::write(document(), path, message);
}

void Form3dPlot::savePictureAsked()
{
    readControls();
    const QString title = tr("Save 3D plot to file");
    const QString path = chooseSaveFile(title,
        tr("PDF files") + QStringLiteral(" (*.pdf);;") + tr("PNG files") + QStringLiteral(" (*.png);;")
            + tr("JPEG files") + QStringLiteral(" (*.jpg);;") + tr("All") + QStringLiteral(" (*)"));
    if (path.isEmpty())
        return;
    QString message;
    if (!savePicture(path, &message))
        showMessage(message.startsWith(tr("Chosen value")) ? tr("Error") : title, message);
}

void Form3dPlot::saveFileAsked()
{
    const QString path
        = chooseSaveFile(tr("Save 3D plot"), tr("3D-Plot .velm files") + QStringLiteral(" (*.plot3d.velm)"));
    if (path.isEmpty())
        return;
    const QString target
        = path.endsWith(Plot3dFile::suffix(), Qt::CaseInsensitive) ? path : path + Plot3dFile::suffix();
    QString message;
    if (!saveFile(target, &message))
        showMessage(tr("Save 3D plot"), message);
}

Form3dPlot* Form3dPlot::open(const QString& path, QWidget* parent, QString* message)
{
    Plot3dDocument document;
    if (!Plot3dFile::read(path, &document, message))
        return nullptr;
    // A saved plot shows as it was saved, whatever the last window used.
    auto* window = new Form3dPlot(document, parent, false);
    window->setGeometry(document.geometry);
    return window;
}
