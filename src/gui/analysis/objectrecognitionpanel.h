#pragma once

#include "objectrecognitioneffect.h"

#include "gui/processing/effectpanel.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QRadioButton;
class QSpinBox;

/**
 * The object-recognition page of the processing dialog: every option of the search, the series' re-identifying
 * properties and the reference object. Apply adds the objects to the selected items and reports their count;
 * objectsFound() then hands the items on for the measures table.
 */
class ObjectRecognitionPanel final : public EffectPanel {
    Q_OBJECT

public:
    explicit ObjectRecognitionPanel(QWidget* parent = nullptr);

    QSciEffect& effect() override { return m_effect; }
    void readSettings() override;
    EffectOperations::Outcome applyTo(
        Project& project, const QList<QSciImage*>& items, ProgressSink* progress, QString* message) override;

signals:
    void objectsFound(const QList<QSciImage*>& items);

private:
    struct LimitRow {
        QCheckBox* check;
        QDoubleSpinBox* value;
        ObjectLimit ObjectRecognitionOptions::*member;
    };
    QWidget* limitsBox();
    QWidget* seriesBox();
    void showOptions(const ObjectRecognitionOptions& o);
    void collect();

    ObjectRecognitionEffect m_effect;
    bool m_showing = false;
    QComboBox* m_type;
    QRadioButton* m_protrusions;
    QRadioButton* m_depressions;
    QRadioButton* m_floodFill;
    QRadioButton* m_zRange;
    QDoubleSpinBox* m_fill;
    QDoubleSpinBox* m_zMin;
    QDoubleSpinBox* m_zMax;
    QCheckBox* m_subPlanes;
    QCheckBox* m_inSelection;
    QCheckBox* m_mark;
    QRadioButton* m_selected;
    QRadioButton* m_unselected;
    QSpinBox* m_labelSize;
    QSpinBox* m_offsetX;
    QSpinBox* m_offsetY;
    QRadioButton* m_constant;
    QRadioButton* m_changing;
    QRadioButton* m_stable;
    QRadioButton* m_moving;
    QSpinBox* m_reference;
    QList<LimitRow> m_limits;
};
