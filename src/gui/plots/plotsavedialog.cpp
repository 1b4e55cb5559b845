#include "plotsavedialog.h"

#include "core/settings/options.h"

#include <QFileDialog>
#include <QFileInfo>

QString PlotSaveDialog::choose(QWidget* parent, const QString& key, const QString& title, const QString& filter)
{
    QString folder = Options::getPath(key, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    const QString chosen = QFileDialog::getSaveFileName(parent, title, folder, filter);
    if (!chosen.isEmpty())
        Options::setString(key, QFileInfo(chosen).absolutePath());
    return chosen;
}
