#pragma once

#include <QWidget>

class QTool;
class QToolButton;

/** The left and right colours of a tool as two swatches; a click opens the colour dialog. */
class ToolColorButtons final : public QWidget {
    Q_OBJECT

public:
    explicit ToolColorButtons(QTool* tool, QWidget* parent = nullptr);

private:
    void refresh();
    void choose(bool left);

    QTool* m_tool;
    QToolButton* m_left;
    QToolButton* m_right;
};
