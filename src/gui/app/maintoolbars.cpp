#include "maintoolbars.h"

#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QSpinBox>
#include <QToolBar>
#include <QToolButton>

#include "mainactions.h"

MainToolBars::MainToolBars(QMainWindow* window, const MainActions& actions)
    : QObject(window)
{
    QToolBar* file = addBar(window, "toolBarFile", tr("File menu"));
    QToolButton* newButton = addButton(file, "tbNew", tr("New"));
    newButton->setMenu(actions.newMenu());
    newButton->setPopupMode(QToolButton::InstantPopup);
    newButton->setEnabled(true);
    file->addAction(actions.get("actionOpen_items"));
    file->addAction(actions.get("actionBrowse"));
    // The project switches this label between saving the selection and saving the current tab.
    m_saveSelection = addButton(file, "pbSaveSelection", tr("Save selected images"));
    file->addAction(actions.get("actionPrint_visible_area"));

    QToolBar* history = addBar(window, "toolBarHistory", tr("History"));
    m_undo = addButton(history, "pbUndo", tr("Undo"));
    m_redo = addButton(history, "pbRedo", tr("Redo"));
    m_history = addButton(history, "pbHistoryOnOff", tr("History on/off"));
    m_history->setCheckable(true);
    m_history->setEnabled(true);

    QToolBar* zoom = addBar(window, "toolBarZoom", tr("Zoom"));
    zoom->addWidget(new QLabel(tr("Zoom:"), zoom));
    m_zoom = new QSpinBox(zoom);
    m_zoom->setObjectName(QStringLiteral("sbZoom"));
    m_zoom->setRange(1, 6400);
    m_zoom->setSuffix(QStringLiteral("%"));
    m_zoom->setValue(100);
    zoom->addWidget(m_zoom);
    m_zoom100 = addButton(zoom, "pbZoom100Percent", tr("100% Zoom"));
    m_zoom100->setToolTip(tr("Reset the current zoom to 100%.") + QLatin1Char('\n')
        + tr("At 100%-zoom, one pixel on the screen equals one data point."));
    m_zoom100->setEnabled(true);

    // Text buttons do not fit one row beside the others at usual window widths.
    window->addToolBarBreak();
    QToolBar* properties = addBar(window, "toolBarItemProperties", tr("Item properties"));
    addButton(properties, "tbColorGradient", tr("Color gradient"))
        ->setToolTip(tr("Select the color gradient for all selected images."));
    addButton(properties, "tbDisplayProperties", tr("Display properties"));
    addButton(properties, "tbAdvancedProperties", tr("Advanced properties"));
    addButton(properties, "tb3dPlot", tr("3D plot"));
    addButton(properties, "pb3dplotOpenGL", tr("3D OpenGL plot"));

    QToolBar* info = addBar(window, "toolBarInfoSettings", tr("Info && Settings"));
    for (const char* name : { "actionProgramOptions", "actionIntroduction", "actionInfo" })
        info->addAction(actions.get(name));
}

QToolBar* MainToolBars::addBar(QMainWindow* window, const char* objectName, const QString& title)
{
    QToolBar* bar = window->addToolBar(title);
    bar->setObjectName(QLatin1String(objectName));
    m_bars.append(bar);
    return bar;
}

QToolButton* MainToolBars::addButton(QToolBar* bar, const char* objectName, const QString& text)
{
    auto* button = new QToolButton(bar);
    button->setObjectName(QLatin1String(objectName));
    button->setText(text);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setEnabled(false);
    bar->addWidget(button);
    return button;
}
