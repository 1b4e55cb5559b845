#include "formitemproperties.h"

#include "numberfield.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int PositionLimit = 10000000;

QPushButton* smallButton(const QString& text, const char* objectName, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(objectName));
    button->setAutoDefault(false);
    return button;
}

/** Selected rows of a view, highest first, so removing them one by one keeps the others' indices. */
template <typename View> QList<int> selectedRowsDescending(View* view)
{
    QList<int> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedIndexes())
        if (!rows.contains(index.row()))
            rows.append(index.row());
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    return rows;
}

QListWidgetItem* editableLine(const QString& text)
{
    auto* line = new QListWidgetItem(text);
    line->setFlags(line->flags() | Qt::ItemIsEditable);
    return line;
}

} // namespace

FormItemProperties::FormItemProperties(QWidget* parent)
    : QDialog(parent)
    , m_pages(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("FormItemProperties"));
    m_pages->addWidget(buildDisplayPage());
    m_pages->addWidget(buildAdvancedPage());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setObjectName(QStringLiteral("pbOk"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("pbCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FormItemProperties::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FormItemProperties::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pages, 1);
    layout->addWidget(buttons);
    setProperties(ItemProperties(), Mode::Display);
}

QWidget* FormItemProperties::buildDisplayPage()
{
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("pageDisplay"));
    m_name = new QLineEdit(page);
    m_name->setObjectName(QStringLiteral("leName"));
    m_drawImage = new QCheckBox(tr("Draw picture"), page);
    m_drawImage->setObjectName(QStringLiteral("cbDrawImage"));
    m_drawMask = new QCheckBox(tr("Draw mask"), page);
    m_drawMask->setObjectName(QStringLiteral("cbDrawMask"));
    m_drawObjects = new QCheckBox(tr("Draw objects"), page);
    m_drawObjects->setObjectName(QStringLiteral("cbDrawObjects"));
    m_drawZ = new QCheckBox(tr("Draw z-matrix"), page);
    m_drawZ->setObjectName(QStringLiteral("cbDrawZ"));
    m_opacityBox = new QDoubleSpinBox(page);
    m_opacityBox->setObjectName(QStringLiteral("dsbOpacity"));
    m_opacityBox->setRange(0, 1);
    m_opacityBox->setSingleStep(0.05);
    m_opacityBox->setDecimals(2);
    // The box rounds to two decimals; the exact value is kept until the user changes the box.
    connect(m_opacityBox, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this](double v) { m_opacity = v; });
    m_left = new QSpinBox(page);
    m_left->setObjectName(QStringLiteral("sbLeft"));
    m_top = new QSpinBox(page);
    m_top->setObjectName(QStringLiteral("sbTop"));
    for (QSpinBox* box : { m_left, m_top })
        box->setRange(-PositionLimit, PositionLimit);

    auto* drawing = new QGroupBox(tr("Drawing"), page);
    auto* drawingLayout = new QVBoxLayout(drawing);
    for (QCheckBox* box : { m_drawImage, m_drawMask, m_drawObjects, m_drawZ })
        drawingLayout->addWidget(box);

    auto* elements = new QGroupBox(tr("Display elements"), page);
    auto* elementsLayout = new QGridLayout(elements);
    const struct {
        const char* name;
        const char* text;
        QStringList keys;
    } switches[] = {
        { "cbShowTitle", QT_TR_NOOP("Title"), { QStringLiteral("showTitle") } },
        { "cbShowZScale", QT_TR_NOOP("Z scale"), { QStringLiteral("showZScale"), QStringLiteral("showZLabels") } },
        { "cbShowHorizontalRuler", QT_TR_NOOP("Horizontal ruler"), { QStringLiteral("showHorizontalRuler") } },
        { "cbShowVerticalRuler", QT_TR_NOOP("Vertical ruler"), { QStringLiteral("showVerticalRuler") } },
        { "cbShowXLabels", QT_TR_NOOP("x axis labels"),
            { QStringLiteral("showXLabels"), QStringLiteral("showXPosLabel") } },
        { "cbShowYLabels", QT_TR_NOOP("y axis labels"),
            { QStringLiteral("showYLabels"), QStringLiteral("showYPosLabel") } },
    };
    for (const auto& s : switches) {
        auto* box = new QCheckBox(tr(s.text), elements);
        box->setObjectName(QLatin1String(s.name));
        elementsLayout->addWidget(box, m_elements.size() / 2, m_elements.size() % 2);
        m_elements.append({ box, s.keys });
    }

    auto* position = new QHBoxLayout;
    position->addWidget(new QLabel(tr("left"), page));
    position->addWidget(m_left);
    position->addWidget(new QLabel(tr("top"), page));
    position->addWidget(m_top);

    auto* form = new QFormLayout;
    form->addRow(tr("Name:"), m_name);
    form->addRow(tr("Opacity:"), m_opacityBox);
    form->addRow(tr("Position [points]:"), position);

    auto* layout = new QVBoxLayout(page);
    layout->addLayout(form);
    layout->addWidget(drawing);
    layout->addWidget(elements);
    layout->addStretch(1);
    return page;
}

NumberField* FormItemProperties::numberField(const char* objectName)
{
    auto* field = new NumberField(this);
    field->setObjectName(QLatin1String(objectName));
    connect(field, &NumberField::validityChanged, this, &FormItemProperties::updateOk);
    m_numbers.append(field);
    return field;
}

QWidget* FormItemProperties::buildAdvancedPage()
{
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("pageAdvanced"));

    m_offsetX = numberField("leOffsetX");
    m_offsetY = numberField("leOffsetY");
    m_sizeX = numberField("leSizeX");
    m_sizeY = numberField("leSizeY");
    m_xUnitPerPixel = numberField("leXUnitPerPixel");
    m_yUnitPerPixel = numberField("leYUnitPerPixel");
    m_zMultiply = numberField("leZCalibrateMultiply");
    m_zAdd = numberField("leZCalibrateAdd");
    m_xUnit = new QLineEdit(page);
    m_xUnit->setObjectName(QStringLiteral("leXUnit"));
    m_yUnit = new QLineEdit(page);
    m_yUnit->setObjectName(QStringLiteral("leYUnit"));
    m_zUnit = new QLineEdit(page);
    m_zUnit->setObjectName(QStringLiteral("leZUnit"));

    auto* calibration = new QGroupBox(tr("Calibration"), page);
    auto* grid = new QGridLayout(calibration);
    grid->addWidget(new QLabel(tr("x"), calibration), 0, 1, Qt::AlignHCenter);
    grid->addWidget(new QLabel(tr("y"), calibration), 0, 2, Qt::AlignHCenter);
    const auto row = [&](int r, const QString& caption, QWidget* x, QWidget* y) {
        grid->addWidget(new QLabel(caption, calibration), r, 0);
        grid->addWidget(x, r, 1);
        if (y)
            grid->addWidget(y, r, 2);
    };
    row(1, tr("Offset:"), m_offsetX, m_offsetY);
    row(2, tr("Size:"), m_sizeX, m_sizeY);
    row(3, tr("Units per data point:"), m_xUnitPerPixel, m_yUnitPerPixel);
    row(4, tr("Unit:"), m_xUnit, m_yUnit);
    row(5, tr("z unit:"), m_zUnit, nullptr);
    row(6, tr("z calibration (multiply, add):"), m_zMultiply, m_zAdd);

    m_abstract = new QPlainTextEdit(page);
    m_abstract->setObjectName(QStringLiteral("pteAbstract"));
    m_abstract->setMaximumHeight(70);

    m_header = new QTableWidget(0, 2, page);
    m_header->setObjectName(QStringLiteral("twHeaderLines"));
    m_header->setHorizontalHeaderLabels({ tr("Key"), tr("Value") });
    m_header->horizontalHeader()->setStretchLastSection(true);
    m_header->verticalHeader()->setVisible(false);
    auto* addHeader = smallButton(tr("Add line"), "pbAddHeaderLine", page);
    auto* removeHeader = smallButton(tr("Remove line"), "pbRemoveHeaderLine", page);
    connect(addHeader, &QPushButton::clicked, this, &FormItemProperties::addHeaderLine);
    connect(removeHeader, &QPushButton::clicked, this, &FormItemProperties::removeHeaderLines);

    m_textLines = new QListWidget(page);
    m_textLines->setObjectName(QStringLiteral("lwTextLines"));
    m_textLines->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto* addText = smallButton(tr("Add line"), "pbAddTextLine", page);
    auto* removeText = smallButton(tr("Remove line"), "pbRemoveTextLine", page);
    connect(addText, &QPushButton::clicked, this, &FormItemProperties::addTextLine);
    connect(removeText, &QPushButton::clicked, this, &FormItemProperties::removeTextLines);

    const auto listGroup = [page](const QString& title, QWidget* view, QPushButton* add, QPushButton* remove) {
        auto* group = new QGroupBox(title, page);
        auto* buttons = new QHBoxLayout;
        buttons->addWidget(add);
        buttons->addWidget(remove);
        buttons->addStretch(1);
        auto* layout = new QVBoxLayout(group);
        layout->addWidget(view, 1);
        layout->addLayout(buttons);
        return group;
    };

    auto* lists = new QHBoxLayout;
    lists->addWidget(listGroup(tr("Header lines"), m_header, addHeader, removeHeader), 3);
    lists->addWidget(listGroup(tr("Text lines"), m_textLines, addText, removeText), 2);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(calibration);
    layout->addWidget(new QLabel(tr("Abstract:"), page));
    layout->addWidget(m_abstract);
    layout->addLayout(lists, 1);

    // The log records how the item was made: lines can be removed, but not written by hand.
    m_processingLog = new QListWidget(page);
    m_processingLog->setObjectName(QStringLiteral("lwProcessingLog"));
    m_processingLog->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_processingLog->setMaximumHeight(110);
    auto* removeLog = smallButton(tr("Remove line"), "pbRemoveProcessingLogLine", page);
    connect(removeLog, &QPushButton::clicked, this, [this] {
        for (int row : selectedRowsDescending(m_processingLog))
            delete m_processingLog->takeItem(row);
    });
    auto* logGroup = new QGroupBox(tr("Processing log"), page);
    auto* logLayout = new QVBoxLayout(logGroup);
    logLayout->addWidget(m_processingLog, 1);
    logLayout->addWidget(removeLog, 0, Qt::AlignLeft);
    layout->addWidget(logGroup);
    return page;
}

void FormItemProperties::setItem(const QSciImage& item, Mode mode)
{
    setProperties(ItemProperties::of(item), mode);
}

void FormItemProperties::setProperties(const ItemProperties& p, Mode mode)
{
    m_loaded = p;
    m_mode = mode;
    setWindowTitle(mode == Mode::Display ? tr("Display properties") : tr("Advanced properties"));
    m_pages->setCurrentIndex(mode == Mode::Display ? 0 : 1);
    // A stacked widget is as large as its largest page; the hidden page must not size the small one.
    for (int i = 0; i < m_pages->count(); ++i) {
        const QSizePolicy::Policy policy = i == m_pages->currentIndex() ? QSizePolicy::Preferred : QSizePolicy::Ignored;
        m_pages->widget(i)->setSizePolicy(policy, policy);
    }
    adjustSize();

    m_name->setText(p.name);
    m_drawImage->setChecked(p.drawImage);
    m_drawMask->setChecked(p.drawMask);
    m_drawObjects->setChecked(p.drawObjects);
    m_drawZ->setChecked(p.drawZ);
    {
        const QSignalBlocker block(m_opacityBox);
        m_opacityBox->setValue(p.opacity);
    }
    m_opacity = p.opacity;
    m_left->setValue(p.position.x());
    m_top->setValue(p.position.y());
    for (const auto& element : qAsConst(m_elements))
        element.first->setChecked(p.displayElements.value(element.second.first()) == QLatin1String("1"));

    m_offsetX->setValue(p.sciValues.offsetX);
    m_offsetY->setValue(p.sciValues.offsetY);
    m_sizeX->setValue(p.sciValues.sizeX);
    m_sizeY->setValue(p.sciValues.sizeY);
    m_xUnitPerPixel->setValue(p.sciValues.xUnitPerPixel);
    m_yUnitPerPixel->setValue(p.sciValues.yUnitPerPixel);
    m_xUnit->setText(p.sciValues.xUnit);
    m_yUnit->setText(p.sciValues.yUnit);
    m_zUnit->setText(p.sciValues.zUnit);
    m_zMultiply->setValue(p.zCalibrateMultiply);
    m_zAdd->setValue(p.zCalibrateAdd);
    m_abstract->setPlainText(p.abstractText);

    m_header->setRowCount(0);
    m_header->setRowCount(p.instrumentHeader.size());
    for (int r = 0; r < p.instrumentHeader.size(); ++r) {
        m_header->setItem(r, 0, new QTableWidgetItem(p.instrumentHeader.at(r).first));
        m_header->setItem(r, 1, new QTableWidgetItem(p.instrumentHeader.at(r).second));
    }
    m_textLines->clear();
    for (const QString& line : p.textLines)
        m_textLines->addItem(editableLine(line));
    m_processingLog->clear();
    m_processingLog->addItems(p.processingLog);
    updateOk();
}

ItemProperties FormItemProperties::properties() const
{
    ItemProperties p = m_loaded;
    p.name = m_name->text();
    p.drawImage = m_drawImage->isChecked();
    p.drawMask = m_drawMask->isChecked();
    p.drawObjects = m_drawObjects->isChecked();
    p.drawZ = m_drawZ->isChecked();
    p.opacity = m_opacity;
    p.position = QPoint(m_left->value(), m_top->value());
    for (const auto& element : m_elements) {
        // A switch left alone keeps what the item stores under its keys.
        const bool was = m_loaded.displayElements.value(element.second.first()) == QLatin1String("1");
        if (element.first->isChecked() == was)
            continue;
        for (const QString& key : element.second)
            p.displayElements.insert(key, element.first->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    }

    p.sciValues.offsetX = m_offsetX->value();
    p.sciValues.offsetY = m_offsetY->value();
    p.sciValues.sizeX = m_sizeX->value();
    p.sciValues.sizeY = m_sizeY->value();
    p.sciValues.xUnitPerPixel = m_xUnitPerPixel->value();
    p.sciValues.yUnitPerPixel = m_yUnitPerPixel->value();
    p.sciValues.xUnit = m_xUnit->text();
    p.sciValues.yUnit = m_yUnit->text();
    p.sciValues.zUnit = m_zUnit->text();
    p.zCalibrateMultiply = m_zMultiply->value();
    p.zCalibrateAdd = m_zAdd->value();
    p.abstractText = m_abstract->toPlainText();

    p.instrumentHeader.clear();
    for (int r = 0; r < m_header->rowCount(); ++r) {
        const QTableWidgetItem* key = m_header->item(r, 0);
        const QTableWidgetItem* value = m_header->item(r, 1);
        p.instrumentHeader.append({ key ? key->text() : QString(), value ? value->text() : QString() });
    }
    p.textLines.clear();
    for (int r = 0; r < m_textLines->count(); ++r)
        p.textLines.append(m_textLines->item(r)->text());
    p.processingLog.clear();
    for (int r = 0; r < m_processingLog->count(); ++r)
        p.processingLog.append(m_processingLog->item(r)->text());
    return p;
}

void FormItemProperties::updateOk()
{
    m_ok->setEnabled(
        std::all_of(m_numbers.cbegin(), m_numbers.cend(), [](const NumberField* f) { return f->isValid(); }));
}

void FormItemProperties::addHeaderLine()
{
    const int row = m_header->rowCount();
    m_header->insertRow(row);
    m_header->setItem(row, 0, new QTableWidgetItem);
    m_header->setItem(row, 1, new QTableWidgetItem);
    m_header->setCurrentCell(row, 0);
    m_header->editItem(m_header->item(row, 0));
}

void FormItemProperties::removeHeaderLines()
{
    for (int row : selectedRowsDescending(m_header))
        m_header->removeRow(row);
}

void FormItemProperties::addTextLine()
{
    QListWidgetItem* line = editableLine(QString());
    m_textLines->addItem(line);
    m_textLines->setCurrentItem(line);
    m_textLines->editItem(line);
}

void FormItemProperties::removeTextLines()
{
    for (int row : selectedRowsDescending(m_textLines))
        delete m_textLines->takeItem(row);
}
