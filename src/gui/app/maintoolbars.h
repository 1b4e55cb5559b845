#pragma once

#include <QObject>
#include <QVector>

class MainActions;
class QMainWindow;
class QSpinBox;
class QToolBar;
class QToolButton;

/**
 * The five tool bars, in their fixed order "File menu", "History", "Zoom", "Item properties",
 * "Info && Settings", and the buttons on them that are not menu actions (zoom box, history switch,
 * item-property buttons). Buttons whose work is not built yet stay disabled.
 */
class MainToolBars final : public QObject {
    Q_OBJECT

public:
    enum Bar { FileBar, HistoryBar, ZoomBar, ItemPropertiesBar, InfoSettingsBar };

    MainToolBars(QMainWindow* window, const MainActions& actions);

    const QVector<QToolBar*>& bars() const { return m_bars; }
    QToolBar* bar(Bar which) const { return m_bars.at(which); }

    QSpinBox* zoomBox() const { return m_zoom; }
    QToolButton* zoom100Button() const { return m_zoom100; }
    QToolButton* historyButton() const { return m_history; }
    QToolButton* undoButton() const { return m_undo; }
    QToolButton* redoButton() const { return m_redo; }
    QToolButton* saveSelectionButton() const { return m_saveSelection; }

private:
    QToolBar* addBar(QMainWindow* window, const char* objectName, const QString& title);
    QToolButton* addButton(QToolBar* bar, const char* objectName, const QString& text);

    QVector<QToolBar*> m_bars;
    QSpinBox* m_zoom = nullptr;
    QToolButton* m_zoom100 = nullptr;
    QToolButton* m_history = nullptr;
    QToolButton* m_undo = nullptr;
    QToolButton* m_redo = nullptr;
    QToolButton* m_saveSelection = nullptr;
};
