#include "objectrecognitionpanel.h"

#include "core/project/objectoperations.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QDoubleSpinBox* spin(QWidget* parent, double low, double high, int decimals, const QString& suffix = QString())
{
    auto* box = new QDoubleSpinBox(parent);
    box->setRange(low, high);
    box->setDecimals(decimals);
    box->setSuffix(suffix);
    return box;
}

} // namespace

ObjectRecognitionPanel::ObjectRecognitionPanel(QWidget* parent)
    : EffectPanel(parent)
    , m_type(new QComboBox(this))
    , m_protrusions(new QRadioButton(tr("Protrusions"), this))
    , m_depressions(new QRadioButton(tr("Depressions"), this))
    , m_floodFill(new QRadioButton(tr("Flood fill"), this))
    , m_zRange(new QRadioButton(tr("Z range"), this))
    , m_fill(spin(this, 0, 100, 1, QStringLiteral(" %")))
    , m_zMin(spin(this, 0, 100, 2, QStringLiteral(" %")))
    , m_zMax(spin(this, 0, 100, 2, QStringLiteral(" %")))
    , m_subPlanes(new QCheckBox(tr("Use selection(s) as subsurface plane(s)"), this))
    , m_inSelection(new QCheckBox(tr("Find only those objects that lie completely within the selection mask."), this))
    , m_mark(new QCheckBox(tr("Mark found object pixels"), this))
    , m_selected(new QRadioButton(tr("New objects are selected"), this))
    , m_unselected(new QRadioButton(tr("New objects are unselected"), this))
    , m_labelSize(new QSpinBox(this))
    , m_offsetX(new QSpinBox(this))
    , m_offsetY(new QSpinBox(this))
    , m_constant(new QRadioButton(tr("Constant"), this))
    , m_changing(new QRadioButton(tr("Changing"), this))
    , m_stable(new QRadioButton(tr("Stable"), this))
    , m_moving(new QRadioButton(tr("Moving"), this))
    , m_reference(new QSpinBox(this))
{
    setObjectName(QStringLiteral("ObjectRecognitionPanel"));
    m_type->setObjectName(QStringLiteral("cbObjectType"));
    m_type->addItems(
        { tr("Open + closed objects"), tr("Open objects (within image)"), tr("Closed objects (within image)") });
    m_protrusions->setToolTip(tr("Objects rise mountain-like"));
    m_depressions->setToolTip(tr("Objects descend valley-like"));
    m_floodFill->setToolTip(tr("Object heights are compared to their local environment"));
    m_fill->setObjectName(QStringLiteral("dsbFillFactor"));
    m_fill->setToolTip(tr("Fill percentage of objects in respect to their local environment"));
    m_zRange->setToolTip(tr("Search objects within a global z range"));
    m_subPlanes->setToolTip(tr("The nearest-in-z previously marked area is used as reference height"));
    m_mark->setObjectName(QStringLiteral("chkMarkFoundPixels"));
    m_mark->setToolTip(tr("Set selected (marked) area to found objects"));
    m_labelSize->setRange(1, 200);
    m_labelSize->setSuffix(tr(" px"));
    m_labelSize->setToolTip(tr("Object label size in pixels"));
    m_inSelection->setObjectName(QStringLiteral("chkOnlyInSelection"));
    m_zMin->setObjectName(QStringLiteral("dsbZMin"));
    m_zMax->setObjectName(QStringLiteral("dsbZMax"));

    auto* kind = new QFormLayout;
    kind->addRow(tr("Objects are"), m_type);
    auto* mode = new QGridLayout;
    mode->addWidget(m_floodFill, 0, 0);
    mode->addWidget(new QLabel(tr("Fill percentage"), this), 0, 1);
    mode->addWidget(m_fill, 0, 2);
    mode->addWidget(m_zRange, 1, 0);
    mode->addWidget(new QLabel(tr("Z (min) / Z (max)"), this), 1, 1);
    auto* range = new QHBoxLayout;
    range->addWidget(m_zMin);
    range->addWidget(m_zMax);
    mode->addLayout(range, 1, 2);
    auto* modeBox = new QGroupBox(tr("Detection mode"), this);
    modeBox->setLayout(mode);

    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->addLayout(kind);
    layout->addWidget(choiceGroup(tr("Objects"), { m_protrusions, m_depressions }, [this] { collect(); }));
    layout->addWidget(modeBox);
    layout->addWidget(limitsBox());
    layout->addWidget(m_subPlanes);
    layout->addWidget(m_inSelection);
    layout->addWidget(m_mark);
    layout->addWidget(choiceGroup(tr("Selection"), { m_selected, m_unselected }, [this] { collect(); }));
    auto* label = new QFormLayout;
    label->addRow(tr("Label size"), m_labelSize);
    layout->addLayout(label);
    layout->addWidget(seriesBox());
    layout->addStretch(1);
    // The page is long: it scrolls rather than stretching the dialog past the screen.
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);

    for (QRadioButton* button : { m_floodFill, m_zRange })
        connect(button, &QRadioButton::toggled, this, &ObjectRecognitionPanel::collect);
    for (QDoubleSpinBox* box : { m_fill, m_zMin, m_zMax })
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &ObjectRecognitionPanel::collect);
    for (QSpinBox* box : { m_labelSize, m_offsetX, m_offsetY, m_reference })
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &ObjectRecognitionPanel::collect);
    for (QCheckBox* box : { m_subPlanes, m_inSelection, m_mark })
        connect(box, &QCheckBox::toggled, this, &ObjectRecognitionPanel::collect);
    connect(m_type, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &ObjectRecognitionPanel::collect);
    showOptions(m_effect.options());
}

QWidget* ObjectRecognitionPanel::limitsBox()
{
    using O = ObjectRecognitionOptions;
    const struct {
        const char* name;
        const char* tip;
        ObjectLimit O::*min;
        ObjectLimit O::*max;
        int decimals;
    } rows[] = {
        { "DeltaZ", "Exclude object heights below / above this value", &O::deltaZMin, &O::deltaZMax, 12 },
        { "R1", "First object radius (regularly shaped objects)", &O::r1Min, &O::r1Max, 2 },
        { "R2", "Second object radius (elliptical shaped objects)", &O::r2Min, &O::r2Max, 2 },
        { "Width", "Object width (rectangular or irregular shaped objects)", &O::widthMin, &O::widthMax, 0 },
        { "Height", "Object height (rectangular or irregular shaped objects)", &O::heightMin, &O::heightMax, 0 },
        { "Area", "Object area in pixels", &O::areaMin, &O::areaMax, 0 },
    };
    auto* grid = new QGridLayout;
    int row = 0;
    for (const auto& r : rows) {
        const QString name = QString::fromLatin1(r.name);
        grid->addWidget(new QLabel(tr(r.name), this), row, 0);
        int column = 1;
        for (auto member : { r.min, r.max }) {
            const bool isMin = member == r.min;
            auto* check = new QCheckBox(isMin ? tr("(min)") : tr("(max)"), this);
            check->setObjectName(
                QStringLiteral("chk") + name + (isMin ? QStringLiteral("Min") : QStringLiteral("Max")));
            check->setToolTip(tr(r.tip));
            auto* value = spin(this, r.decimals > 6 ? -1e300 : 0, 1e12, r.decimals);
            value->setObjectName(
                QStringLiteral("dsb") + name + (isMin ? QStringLiteral("Min") : QStringLiteral("Max")));
            grid->addWidget(check, row, column++);
            grid->addWidget(value, row, column++);
            connect(check, &QCheckBox::toggled, this, &ObjectRecognitionPanel::collect);
            connect(
                value, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &ObjectRecognitionPanel::collect);
            m_limits.append({ check, value, member });
        }
        ++row;
    }
    auto* box = new QGroupBox(tr("Limits"), this);
    box->setLayout(grid);
    return box;
}

QWidget* ObjectRecognitionPanel::seriesBox()
{
    m_offsetX->setRange(0, 100000);
    m_offsetY->setRange(0, 100000);
    m_reference->setRange(0, 1000000);
    m_reference->setSpecialValueText(tr("none"));
    m_reference->setObjectName(QStringLiteral("sbReferenceObject"));
    auto* form = new QFormLayout;
    auto* offsets = new QHBoxLayout;
    offsets->addWidget(m_offsetX);
    offsets->addWidget(m_offsetY);
    form->addRow(tr("Additional center of object drift (x, y)"), offsets);
    auto* number = new QHBoxLayout;
    number->addWidget(m_constant);
    number->addWidget(m_changing);
    form->addRow(tr("Number of objects is"), number);
    auto* background = new QHBoxLayout;
    background->addWidget(m_stable);
    background->addWidget(m_moving);
    form->addRow(tr("Background is"), background);
    form->addRow(tr("Ref-Object"), m_reference);
    for (QRadioButton* button : { m_constant, m_stable })
        connect(button, &QRadioButton::toggled, this, &ObjectRecognitionPanel::collect);
    auto* box = new QGroupBox(tr("Object reidentifying properties"), this);
    box->setLayout(form);
    return box;
}

void ObjectRecognitionPanel::readSettings()
{
    m_effect.readSettings();
    showOptions(m_effect.options());
}

void ObjectRecognitionPanel::showOptions(const ObjectRecognitionOptions& o)
{
    m_showing = true;
    m_type->setCurrentIndex(qBound(0, o.objectType, 2));
    (o.depressions ? m_depressions : m_protrusions)->setChecked(true);
    (o.zRangeMode ? m_zRange : m_floodFill)->setChecked(true);
    m_fill->setValue(o.fillFactor);
    m_zMin->setValue(o.zRangeMinFactor);
    m_zMax->setValue(o.zRangeMaxFactor);
    m_subPlanes->setChecked(o.subPlanes);
    m_inSelection->setChecked(o.onlyInSelection);
    m_mark->setChecked(o.markFoundPixels);
    (o.newObjectsSelected ? m_selected : m_unselected)->setChecked(true);
    m_labelSize->setValue(o.labelSize);
    m_offsetX->setValue(o.offsetX);
    m_offsetY->setValue(o.offsetY);
    (o.numberConstant ? m_constant : m_changing)->setChecked(true);
    (o.backgroundStable ? m_stable : m_moving)->setChecked(true);
    for (const LimitRow& row : qAsConst(m_limits)) {
        row.check->setChecked((o.*row.member).checked);
        row.value->setValue((o.*row.member).value);
    }
    m_showing = false;
}

void ObjectRecognitionPanel::collect()
{
    if (m_showing)
        return;
    ObjectRecognitionOptions o;
    o.objectType = m_type->currentIndex();
    o.depressions = m_depressions->isChecked();
    o.zRangeMode = m_zRange->isChecked();
    o.fillFactor = m_fill->value();
    o.zRangeMinFactor = m_zMin->value();
    o.zRangeMaxFactor = m_zMax->value();
    o.subPlanes = m_subPlanes->isChecked();
    o.onlyInSelection = m_inSelection->isChecked();
    o.markFoundPixels = m_mark->isChecked();
    o.newObjectsSelected = m_selected->isChecked();
    o.labelSize = m_labelSize->value();
    o.offsetX = m_offsetX->value();
    o.offsetY = m_offsetY->value();
    o.numberConstant = m_constant->isChecked();
    o.backgroundStable = m_stable->isChecked();
    for (const LimitRow& row : qAsConst(m_limits))
        o.*row.member = ObjectLimit { row.check->isChecked(), row.value->value() };
    m_effect.setOptions(o);
    emit changed();
}

EffectOperations::Outcome ObjectRecognitionPanel::applyTo(
    Project& project, const QList<QSciImage*>& items, ProgressSink* progress, QString* message)
{
    const ObjectOperations::Outcome outcome
        = ObjectOperations::recognise(project, items, m_effect.options(), m_reference->value(), progress, message);
    if (outcome == ObjectOperations::Outcome::Applied)
        emit objectsFound(items);
    return outcome == ObjectOperations::Outcome::Applied ? EffectOperations::Outcome::Applied
        : outcome == ObjectOperations::Outcome::Stopped  ? EffectOperations::Outcome::Stopped
                                                         : EffectOperations::Outcome::Refused;
}
