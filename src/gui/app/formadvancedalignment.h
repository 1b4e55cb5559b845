#pragma once

#include "core/project/itemarrangement.h"

#include <QDialog>

class QButtonGroup;
class QSpinBox;

/**
 * "Advanced alignment...": lays the selected items out in a row or a column. Asks for the layout and the
 * spacing between neighbours in data points; both are remembered under `FormAdvancedAlignment.*`.
 */
class FormAdvancedAlignment final : public QDialog {
    Q_OBJECT

public:
    explicit FormAdvancedAlignment(QWidget* parent = nullptr);

    /** Hides QWidget::layout() on purpose: the window's callers ask the dialog for the chosen layout. */
    ItemArrangement::Layout layout() const;
    void setChosenLayout(ItemArrangement::Layout layout);
    int spacing() const;

public slots:
    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void loadSettings();

    QButtonGroup* m_layouts;
    QSpinBox* m_spacing;
};
