#pragma once

#include "qtool.h"

#include "core/items/maskedit.h"

class QComboBox;
class QVBoxLayout;

/**
 * Common panel of the selection tools: how a new selection combines with the mask (new, add, subtract)
 * and the three mask commands, each one history transaction on the current item's mask.
 */
class QToolSelection : public QTool {
    Q_OBJECT

public:
    explicit QToolSelection(const QString& identifier, QWidget* parent = nullptr);

    MaskEdit::Mode mode() const;
    void setMode(MaskEdit::Mode mode);
    /** The mode of the gesture under way: Shift at its press adds, Ctrl subtracts, else the panel's mode. */
    MaskEdit::Mode gestureMode() const;

    void selectAllMask();
    void unselectAllMask();
    void invertMask();

protected:
    /** The panel's layout, for the tools' own options above the mask commands. */
    QVBoxLayout* panelLayout() const { return m_layout; }
    /** Subclasses call this last in their constructors. */
    void finishPanel();

private:
    QVBoxLayout* m_layout;
    QComboBox* m_mode;
};
