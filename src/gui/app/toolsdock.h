#pragma once

#include <QDockWidget>

class QTreeWidget;

/** The "Toolbox" dock: the tool list under its four headings, and the option area of the current tool. */
class ToolsDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit ToolsDock(QWidget* parent = nullptr);

    QTreeWidget* toolList() const { return m_toolList; }
    /** Where the current tool shows its options; it has a vertical layout. */
    QWidget* optionArea() const { return m_options; }

private:
    QTreeWidget* m_toolList;
    QWidget* m_options;
};
