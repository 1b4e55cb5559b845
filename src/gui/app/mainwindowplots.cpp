// The main window's side of the plot windows: creating them from items and tables, and opening plot files.
#include "mainactions.h"
#include "mainwindow.h"

#include "gui/plots/form3dplot.h"
#include "gui/plots/form3dplotopengl.h"
#include "gui/plots/formplot.h"
#include "gui/tables/tablespanel.h"

#include "core/plots/plot2dfile.h"
#include "core/plots/plot3ddocument.h"

#include <QMenu>

void MainWindow::wirePlotActions()
{
    QMenu* menuNew = findChild<QMenu*>(QStringLiteral("menuNew"));
    if (!menuNew)
        return;
    QAction* action = menuNew->addAction(tr("2D plot"));
    action->setObjectName(QStringLiteral("actionPlot2d"));
    connect(action, &QAction::triggered, this, &MainWindow::newPlot2d);
}

void MainWindow::newPlot2d()
{
    auto* window = new FormPlot(this);
    window->tables = [this] { return m_tablesPanel->allTables(); };
    window->show();
}

void MainWindow::on_tb3dPlot_clicked()
{
    // One window per selected item.
    for (const QSciImage* item : selectedItems())
        (new Form3dPlot(Plot3dDocument::fromItem(*item), this))->show();
}

void MainWindow::on_pb3dplotOpenGL_clicked()
{
    for (const QSciImage* item : selectedItems())
        (new form3dplotOpenGL(*item, this))->show();
}

bool MainWindow::openPlotFile(const QString& path, QString* message)
{
    QWidget* window = nullptr;
    if (Plot2dFile::isPlotFileName(path)) {
        FormPlot* plot = FormPlot::open(path, this, message);
        if (plot)
            plot->tables = [this] { return m_tablesPanel->allTables(); };
        window = plot;
    } else {
        window = Form3dPlot::open(path, this, message);
    }
    if (!window)
        return false;
    window->show();
    return true;
}
