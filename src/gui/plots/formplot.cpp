#include "formplot.h"

#include "plotsavedialog.h"
#include "formaddplot.h"

#include "core/base/atomicfile.h"
#include "core/base/messages.h"
#include "core/plots/plot2dfile.h"
#include "core/plots/plot2dpainter.h"
#include "core/settings/options.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QSvgGenerator>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cmath>
#include "qcustomplotheader.h"

namespace {

/** Fixed or automatic major step, and a fixed or automatic number of sub-ticks. */
class PlotTicker final : public QCPAxisTicker {
public:
    double step = 0;
    int subTicks = -1;

protected:
    double getTickStep(const QCPRange& range) override
    {
        return step > 0 && range.size() / step < 500 ? step : QCPAxisTicker::getTickStep(range);
    }
    int getSubTickCount(double tickStep) override
    {
        return subTicks >= 0 ? subTicks : QCPAxisTicker::getSubTickCount(tickStep);
    }
};

/** "xTickStepAutoCheck" reads "x tick step auto". */
QString caption(const QString& key)
{
    QString text;
    for (const QChar ch : key) {
        if (ch.isUpper() && !text.isEmpty())
            text += QLatin1Char(' ');
        text += ch.toLower();
    }
    if (text.endsWith(QLatin1String(" check")))
        text.chop(6);
    return text;
}

bool isIntegerKey(const QString& key)
{
    return key.endsWith(QLatin1String("Size")) || key.endsWith(QLatin1String("Length"))
        || key.endsWith(QLatin1String("Count"));
}

} // namespace

FormPlot::FormPlot(QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_plot(new QCustomPlot)
    , m_tabs(new QTabWidget)
{
    setObjectName(QStringLiteral("FormPlot"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("2D plot"));
    m_plot->setObjectName(QStringLiteral("customPlot"));
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    m_tabs->addTab(m_plot, tr("Plot"));
    m_tabs->addTab(buildSettingsPage(), tr("Settings"));

    auto* buttons = new QHBoxLayout;
    const auto addButton = [this, buttons](const char* name, const QString& text, void (FormPlot::*slot)()) {
        auto* button = new QPushButton(text);
        button->setObjectName(QLatin1String(name));
        connect(button, &QPushButton::clicked, this, slot);
        buttons->addWidget(button);
    };
    addButton("pbAddPlot", tr("Add plot"), &FormPlot::addPlotAsked);
    addButton("pbRescale", tr("Rescale"), &FormPlot::rescale);
    buttons->addStretch(1);
    addButton("pbSavePlot", tr("Save 2D plot"), &FormPlot::saveAsked);
    addButton("pbExportPicture", tr("Export picture"), &FormPlot::exportPictureAsked);
    addButton("pbExportCsv", tr("Export CSV"), &FormPlot::exportCsvAsked);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addLayout(buttons);

    chooseSaveFile = [this](const QString& title, const QString& filter) {
        return PlotSaveDialog::choose(this, QStringLiteral("FormPlot.saveDialogPath"), title, filter);
    };
    showMessage = [this](const QString& title, const QString& text) {
        QMessageBox::warning(this, title, text, QMessageBox::Ok);
    };
    setDocument(Plot2dDocument());
}

QWidget* FormPlot::buildSettingsPage()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    QButtonGroup* scaleGroups[2] = { new QButtonGroup(page), new QButtonGroup(page) };
    for (const auto& pair : Plot2dDocument::settingDefaults()) {
        const QString& key = pair.first;
        QWidget* control = nullptr;
        if (Plot2dDocument::isBooleanKey(key)) {
            auto* box = new QCheckBox(caption(key));
            connect(box, &QCheckBox::toggled, this, &FormPlot::readControls);
            if (key.endsWith(QLatin1String("LinearCheck")) || key.endsWith(QLatin1String("LnCheck"))
                || key.endsWith(QLatin1String("Log10Check")))
                scaleGroups[key.startsWith(QLatin1Char('y')) ? 1 : 0]->addButton(box);
            form->addRow(box);
            box->setObjectName(key);
            continue;
        }
        if (key == QLatin1String("fontFamily")) {
            auto* box = new QFontComboBox;
            connect(box, &QFontComboBox::currentFontChanged, this, &FormPlot::readControls);
            control = box;
        } else if (key == QLatin1String("legendPosition")) {
            auto* box = new QComboBox;
            box->addItems({ tr("Top right"), tr("Top left"), tr("Bottom right"), tr("Bottom left") });
            connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this, &FormPlot::readControls);
            control = box;
        } else if (key == QLatin1String("title") || key.endsWith(QLatin1String("Label"))) {
            auto* edit = new QLineEdit;
            connect(edit, &QLineEdit::textChanged, this, &FormPlot::readControls);
            control = edit;
        } else {
            auto* spin = new QDoubleSpinBox;
            spin->setDecimals(isIntegerKey(key) ? 0 : 6);
            spin->setRange(isIntegerKey(key) ? 0 : -1e300, isIntegerKey(key) ? 200 : 1e300);
            connect(spin, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &FormPlot::readControls);
            control = spin;
        }
        control->setObjectName(key);
        form->addRow(caption(key), control);
    }
    for (QButtonGroup* group : scaleGroups)
        group->setExclusive(true);
    auto* scroll = new QScrollArea;
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    return scroll;
}

void FormPlot::writeControls()
{
    m_updating = true;
    for (const auto& pair : Plot2dDocument::settingDefaults()) {
        QWidget* control = findChild<QWidget*>(pair.first);
        const QString value = m_document.setting(pair.first);
        if (auto* box = qobject_cast<QCheckBox*>(control))
            box->setChecked(value == QLatin1String("1"));
        else if (auto* font = qobject_cast<QFontComboBox*>(control))
            font->setCurrentFont(QFont(value));
        else if (auto* combo = qobject_cast<QComboBox*>(control))
            combo->setCurrentIndex(std::clamp(value.toInt(), 0, combo->count() - 1));
        else if (auto* edit = qobject_cast<QLineEdit*>(control))
            edit->setText(value);
        else if (auto* spin = qobject_cast<QDoubleSpinBox*>(control))
            spin->setValue(m_document.number(pair.first));
    }
    m_updating = false;
}

void FormPlot::readControls()
{
    if (m_updating)
        return;
    for (const auto& pair : Plot2dDocument::settingDefaults()) {
        QWidget* control = findChild<QWidget*>(pair.first);
        if (auto* box = qobject_cast<QCheckBox*>(control))
            m_document.setFlag(pair.first, box->isChecked());
        else if (auto* font = qobject_cast<QFontComboBox*>(control))
            m_document.setSetting(pair.first, font->currentFont().family());
        else if (auto* combo = qobject_cast<QComboBox*>(control))
            m_document.setSetting(pair.first, QString::number(combo->currentIndex()));
        else if (auto* edit = qobject_cast<QLineEdit*>(control))
            m_document.setSetting(pair.first, edit->text());
        else if (auto* spin = qobject_cast<QDoubleSpinBox*>(control))
            m_document.setNumber(pair.first, spin->value());
    }
    redraw();
}

void FormPlot::setDocument(const Plot2dDocument& document)
{
    m_document = document;
    setGeometry(document.geometry);
    writeControls();
    redraw();
}

Plot2dDocument FormPlot::document() const
{
    Plot2dDocument d = m_document;
    d.geometry = geometry();
    return d;
}

void FormPlot::addCurve(const Plot2dCurve& curve)
{
    m_document.curves.append(curve);
    redraw();
}

void FormPlot::rescale()
{
    double x0 = qInf(), x1 = -qInf(), y0 = qInf(), y1 = -qInf();
    for (const Plot2dCurve& curve : qAsConst(m_document.curves)) {
        for (int i = 0; i < curve.pointCount(); ++i) {
            for (int c = 1; c < curve.variables.size(); ++c) {
                const double x = curve.x(i), y = curve.y(i, c);
                if (!std::isfinite(x) || !std::isfinite(y))
                    continue;
                x0 = std::min(x0, x), x1 = std::max(x1, x);
                y0 = std::min(y0, y), y1 = std::max(y1, y);
            }
        }
    }
    if (!(x0 <= x1))
        return;
    const double margin = (y1 - y0) * 0.05;
    m_document.setNumber(QStringLiteral("xRangeMin"), x0);
    m_document.setNumber(QStringLiteral("xRangeMax"), x1 > x0 ? x1 : x0 + 1);
    m_document.setNumber(QStringLiteral("yRangeMin"), y0 - margin);
    m_document.setNumber(QStringLiteral("yRangeMax"), y1 > y0 ? y1 + margin : y0 + 1);
    writeControls();
    redraw();
}

void FormPlot::redraw()
{
    const Plot2dDocument& d = m_document;
    const QString family = d.setting(QStringLiteral("fontFamily"));
    const auto font = [&](const char* sizeKey, const char* boldKey) {
        QFont f(family);
        f.setPointSizeF(std::clamp(d.number(QLatin1String(sizeKey)), 4.0, 72.0));
        if (boldKey)
            f.setBold(d.flag(QLatin1String(boldKey)));
        return f;
    };
    m_plot->setLocale(d.flag(QStringLiteral("useKomma")) ? QLocale(QLocale::German) : QLocale::c());

    m_plot->clearGraphs();
    for (int i = 0; i < d.curves.size(); ++i) {
        const Plot2dCurve& curve = d.curves[i];
        for (int column = 1; column < std::max(2, int(curve.variables.size())); ++column) {
            QCPGraph* graph = m_plot->addGraph();
            graph->setName(curve.plotName);
            graph->setPen(QPen(Plot2dPainter::curveColor(i + column - 1), 1.5));
            QVector<double> xs, ys;
            for (int k = 0; k < curve.pointCount(); ++k) {
                xs.append(curve.x(k));
                ys.append(curve.y(k, column));
            }
            graph->setData(xs, ys, true);
            if (column > 1)
                graph->removeFromLegend();
        }
    }

    if (!m_title) {
        m_plot->plotLayout()->insertRow(0);
        m_title = new QCPTextElement(m_plot, QString());
        m_plot->plotLayout()->addElement(0, 0, m_title);
    }
    const bool titled = d.flag(QStringLiteral("titleCheck"));
    m_title->setText(titled ? d.setting(QStringLiteral("title")) : QString());
    m_title->setFont(font("titleSize", "titleBoldCheck"));
    m_title->setVisible(titled && !d.setting(QStringLiteral("title")).isEmpty());

    for (const QChar a : { QLatin1Char('x'), QLatin1Char('y') }) {
        QCPAxis* axis = a == QLatin1Char('x') ? m_plot->xAxis : m_plot->yAxis;
        const QString p = a;
        const auto key = [&p](const char* field) -> QString { return p + QLatin1String(field); };
        const QByteArray sizeKey = key("TickSize").toLatin1(), labelSizeKey = key("LabelSize").toLatin1(),
                         labelBoldKey = key("LabelBoldCheck").toLatin1();
        axis->setLabel(d.flag(key("LabelCheck")) ? d.setting(key("Label")) : QString());
        axis->setLabelFont(font(labelSizeKey.constData(), labelBoldKey.constData()));
        axis->setTickLabels(d.flag(key("AxisValueCheck")));
        axis->setTickLabelFont(font(sizeKey.constData(), nullptr));
        axis->setTicks(d.flag(key("TickCheck")));
        axis->setTickLength(0, int(d.number(key("TickLength"))));
        axis->setSubTicks(d.flag(key("SubTickCheck")));
        axis->setSubTickLength(0, int(d.number(key("SubTickLength"))));
        axis->grid()->setVisible(d.flag(key("TickGridCheck")));
        axis->grid()->setSubGridVisible(d.flag(key("SubTickGridCheck")));
        const Plot2dDocument::Scale scale = d.scale(a);
        if (scale == Plot2dDocument::Scale::Linear) {
            axis->setScaleType(QCPAxis::stLinear);
            auto ticker = QSharedPointer<PlotTicker>::create();
            ticker->step = d.flag(key("TickStepAutoCheck")) ? 0 : d.number(key("TickStep"));
            ticker->subTicks = d.flag(key("SubTickStepAutoCheck")) ? -1 : int(d.number(key("SubTickCount")));
            axis->setTicker(ticker);
            axis->setNumberFormat(QStringLiteral("g"));
        } else {
            axis->setScaleType(QCPAxis::stLogarithmic);
            auto ticker = QSharedPointer<QCPAxisTickerLog>::create();
            ticker->setLogBase(scale == Plot2dDocument::Scale::Ln ? M_E : 10.0);
            axis->setTicker(ticker);
            axis->setNumberFormat(QStringLiteral("gb"));
        }
        double low = d.number(key("RangeMin")), high = d.number(key("RangeMax"));
        if (scale != Plot2dDocument::Scale::Linear && low <= 0)
            low = high > 0 ? high * 1e-3 : 1e-3;
        axis->setRange(low, high);
    }
    const bool frame = d.flag(QStringLiteral("useFrame"));
    for (QCPAxis* axis : { m_plot->xAxis2, m_plot->yAxis2 }) {
        axis->setVisible(frame);
        axis->setTicks(false);
        axis->setTickLabels(false);
    }

    m_plot->legend->setVisible(d.flag(QStringLiteral("legendCheck")) && !d.curves.isEmpty());
    m_plot->legend->setFont(font("legendSize", "legendBoldCheck"));
    static const Qt::Alignment corners[] = { Qt::AlignTop | Qt::AlignRight, Qt::AlignTop | Qt::AlignLeft,
        Qt::AlignBottom | Qt::AlignRight, Qt::AlignBottom | Qt::AlignLeft };
    m_plot->axisRect()->insetLayout()->setInsetAlignment(
        0, corners[std::clamp(d.setting(QStringLiteral("legendPosition")).toInt(), 0, 3)]);
    m_plot->replot();
}

bool FormPlot::saveFile(const QString& path, QString* message)
{
    return Plot2dFile::write(document(), path, message);
}

bool FormPlot::exportPicture(const QString& path, QString* message)
{
    const int w = std::max(100, m_plot->width()), h = std::max(80, m_plot->height());
    bool ok = false;
    if (path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
        ok = m_plot->savePdf(path, w, h);
    } else if (path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) {
        QSvgGenerator svg;
        svg.setFileName(path);
        svg.setSize(QSize(w, h));
        svg.setViewBox(QRect(0, 0, w, h));
        svg.setTitle(m_document.setting(QStringLiteral("title")));
        QCPPainter painter;
        ok = painter.begin(&svg);
        if (ok) {
            m_plot->toPainter(&painter, w, h);
            ok = painter.end();
        }
    } else {
        ok = m_plot->toPixmap(w, h).save(path);
    }
    if (!ok && message)
        *message = Messages::unableToWriteFile(path);
    return ok;
}

bool FormPlot::exportCsv(const QString& path, QString* message)
{
    QString text;
    for (const Plot2dCurve& curve : qAsConst(m_document.curves)) {
        if (m_document.curves.size() > 1)
            text += QStringLiteral("# ") + curve.plotName + QLatin1Char('\n');
        text += curve.variables.join(QLatin1Char(',')) + QLatin1Char('\n');
        const int columns = std::max(1, int(curve.variables.size()));
        for (qsizetype i = 0; i + columns <= curve.values.size(); i += columns) {
            QStringList row;
            for (int c = 0; c < columns; ++c)
                row.append(QString::number(curve.values[i + c], 'g', 17));
            text += row.join(QLatin1Char(',')) + QLatin1Char('\n');
        }
    }
    return AtomicFile::write(path, text.toUtf8(), message);
}

FormPlot* FormPlot::open(const QString& path, QWidget* parent, QString* message)
{
    Plot2dDocument document;
    if (!Plot2dFile::read(path, &document, message))
        return nullptr;
    auto* window = new FormPlot(parent);
    window->setDocument(document);
    window->setWindowTitle(tr("2D plot") + QStringLiteral(" - ") + QFileInfo(path).fileName());
    return window;
}

void FormPlot::saveAsked()
{
    const QString path
        = chooseSaveFile(tr("Save 2D plot"), tr("2D-Plot .velm files") + QStringLiteral(" (*.plot2d.velm)"));
    if (path.isEmpty())
        return;
    const QString target
        = path.endsWith(Plot2dFile::suffix(), Qt::CaseInsensitive) ? path : path + Plot2dFile::suffix();
    QString message;
    if (!saveFile(target, &message))
        showMessage(tr("Save 2D plot"), message);
}

void FormPlot::exportPictureAsked()
{
    const QString path = chooseSaveFile(tr("Export picture"),
        tr("PNG files") + QStringLiteral(" (*.png);;") + tr("PDF files") + QStringLiteral(" (*.pdf);;")
            + tr("SVG files") + QStringLiteral(" (*.svg)"));
    QString message;
    if (!path.isEmpty() && !exportPicture(path, &message))
        showMessage(tr("Export picture"), message);
}

void FormPlot::exportCsvAsked()
{
    const QString path = chooseSaveFile(tr("Export CSV"), tr("CSV files") + QStringLiteral(" (*.csv)"));
    QString message;
    if (!path.isEmpty() && !exportCsv(path, &message))
        showMessage(tr("Export CSV"), message);
}

void FormPlot::addPlotAsked()
{
    const TableList list = tables ? tables() : TableList();
    if (list.isEmpty()) {
        showMessage(tr("Add plot"), tr("There is no table to take columns from."));
        return;
    }
    FormAddPlot dialog(list, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const bool first = m_document.curves.isEmpty();
    for (const Plot2dCurve& curve : dialog.curves())
        m_document.curves.append(curve);
    if (first)
        rescale();
    else
        redraw();
}
