// The File menu: items, projects, exports and printing. Every file dialog goes through chooseFiles(), every
// message through showMessage(), so that tests can answer both.

#include "mainwindow.h"

#include <memory>

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsView>
#include <QMimeData>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSet>

#include "centralarea.h"
#include "collectiontabpage.h"
#include "core/base/atomicfile.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/itemfile.h"
#include "core/items/latexcodes.h"
#include "core/items/textmatrix.h"
#include "core/project/collectiontab.h"
#include "core/project/itemarrangement.h"
#include "core/project/project.h"
#include "core/project/projectfile.h"
#include "core/tables/projectdocuments.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/settings/options.h"
#include "decoratedpicturewriter.h"
#include "formnewimage.h"
#include "gui/tables/tablespanel.h"
#include "gui/tables/textspanel.h"
#include "gui/import/fileimport.h"
#include "gui/import/formbrowse.h"
#include "gui/media/movieactions.h"
#include "itemrenderer.h"
#include "mainactions.h"
#include "postscriptwriter.h"
#include "progressdialogsink.h"

namespace {

enum ItemExport { ZMatrices, Masks, Pictures, DecoratedPng, DecoratedPdf, DecoratedPostScript };
enum AreaExport { AreaPng, AreaPdf, AreaPostScript };

/** A file name made of @p name that is safe on every system, not yet in @p used and not in @p folder (with "/"). */
QString uniqueFileName(const QString& folder, const QString& name, const QString& suffix, QSet<QString>* used)
{
    QString base = name.trimmed();
    for (const QChar c : { QLatin1Char('/'), QLatin1Char('\\'), QLatin1Char(':'), QLatin1Char('*'), QLatin1Char('?'),
             QLatin1Char('"'), QLatin1Char('<'), QLatin1Char('>'), QLatin1Char('|') })
        base.replace(c, QLatin1Char('_'));
    if (base.isEmpty())
        base = QStringLiteral("item");
    QString candidate = base + suffix;
    for (int n = 2; used->contains(candidate.toLower()) || QFile::exists(folder + candidate); ++n)
        candidate = base + QLatin1Char('_') + QString::number(n) + suffix;
    used->insert(candidate.toLower());
    return candidate;
}

QByteArray pngBytes(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QString withSuffix(const QString& path, const QString& suffix)
{
    return path.endsWith(suffix, Qt::CaseInsensitive) ? path : path + suffix;
}

} // namespace

void MainWindow::wireFileActions()
{
    m_actions->wire("actionOpen_items", this, &MainWindow::openItems);
    m_actions->wire("actionItem_blank", this, &MainWindow::newBlankItem);
    m_actions->wire("actionSave_selected_items", this, &MainWindow::saveSelectedItems);
    m_actions->wire("actionSave_items_on_current_tab", this, &MainWindow::saveItemsOnCurrentTab);
    m_actions->wire("actionProject", this, &MainWindow::newProjectAsked);
    m_actions->wire("actionOpen_project", this, &MainWindow::openProjectAsked);
    m_actions->wire("actionSave_project", this, &MainWindow::saveProjectAsked);
    m_actions->wire("actionSave_project_as", this, &MainWindow::saveProjectAsAsked);
    m_actions->wire("action_reopen_last_project", this, &MainWindow::reopenLastProject);
    m_actions->wire("actionZ_Matrices", this, &MainWindow::exportZMatrices);
    m_actions->wire("actionMasks", this, &MainWindow::exportMasks);
    m_actions->wire("actionLaTeX_Codes", this, &MainWindow::exportLatexCodes);
    m_actions->wire("actionPictures_without_display_elements", this, &MainWindow::exportPictures);
    for (const char* name : { "actionPictures_s", "actionPictures_with_display_elements" })
        m_actions->wire(name, this, [this] { exportItems(DecoratedPng); });
    m_actions->wire("actionPdf_files", this, [this] { exportItems(DecoratedPdf); });
    m_actions->wire("actionPostscript_ps_files", this, [this] { exportItems(DecoratedPostScript); });
    m_actions->wire("actionVisible_area_as_image", this, &MainWindow::exportVisibleAreaPng);
    m_actions->wire("actionPdf_file", this, &MainWindow::exportVisibleAreaPdf);
    m_actions->wire("actionPostscript_file", this, &MainWindow::exportVisibleAreaPostScript);
    m_actions->wire("actionPrint_visible_area", this, &MainWindow::printVisibleArea);
    auto* movies = new MovieActions(this, m_project,
        { [this](QDialog* dialog) { return runDialog(dialog); },
            [this](const QString& title, const QString& text) { showMessage(title, text); },
            [this](const QString& html) { appendOutput(html); }, [this] { return selectedItems(); } });
    m_actions->wire("actionImport_movie", movies, &MovieActions::importMovie);
    m_actions->wire("actionExport_movie", movies, &MovieActions::exportMovie);
    m_actions->wire("actionBrowse", this, [this] {
        m_formBrowse->show();
        m_formBrowse->raise();
        m_formBrowse->activateWindow();
    });
}

void MainWindow::openBrowsedFiles(const QStringList& paths)
{
    for (const QString& path : paths) {
        QString message;
        if (!openFile(path, &message) || !message.isEmpty())
            showMessage(tr("Open"), message);
    }
}

// ---- hooks ---------------------------------------------------------------------------------------------------

QStringList MainWindow::chooseFiles(FileChoice kind, const QString& title, const QString& folder, const QString& filter)
{
    switch (kind) {
    case FileChoice::OpenFiles:
        return QFileDialog::getOpenFileNames(this, title, folder, filter);
    case FileChoice::OpenFolder:
    case FileChoice::ChooseFolder: {
        const QString chosen = QFileDialog::getExistingDirectory(this, title, folder);
        return chosen.isEmpty() ? QStringList() : QStringList { chosen };
    }
    case FileChoice::SaveFile: {
        const QString chosen = QFileDialog::getSaveFileName(this, title, folder, filter);
        return chosen.isEmpty() ? QStringList() : QStringList { chosen };
    }
    }
    return QStringList();
}

void MainWindow::showMessage(const QString& title, const QString& text)
{
    QMessageBox::warning(this, title, text, QMessageBox::Ok);
}

QMessageBox::StandardButton MainWindow::askQuestion(const QString& title, const QString& text)
{
    return QMessageBox::question(
        this, title, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
}

int MainWindow::runDialog(QDialog* dialog)
{
    return dialog->exec();
}

bool MainWindow::choosePrinter(QPrinter* printer)
{
    QPrintDialog dialog(printer, this);
    return dialog.exec() == QDialog::Accepted;
}

QStringList MainWindow::chooseList(FileChoice kind, const char* pathKey, const QString& title, const QString& filter)
{
    const QString key = QLatin1String("MainWindow.") + QLatin1String(pathKey);
    QString folder = Options::getPath(key, QString());
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Options::homeDir();
    QStringList chosen = chooseFiles(kind, title, folder, filter);
    chosen.removeAll(QString());
    if (chosen.isEmpty())
        return chosen;
    const QFileInfo first(chosen.first());
    const bool isFolder = kind == FileChoice::OpenFolder || kind == FileChoice::ChooseFolder;
    Options::setString(key, isFolder ? first.absoluteFilePath() : first.absolutePath());
    return chosen;
}

QString MainWindow::chooseOne(FileChoice kind, const char* pathKey, const QString& title, const QString& filter)
{
    return chooseList(kind, pathKey, title, filter).value(0);
}

// ---- items ---------------------------------------------------------------------------------------------------

void MainWindow::openItems()
{
    const QStringList chosen = chooseList(FileChoice::OpenFiles, "openMainDialogPath", tr("Open"),
        FileImport::openFilter(tr("Velmora files (*.img.velm *.project.velm *.table.velm *.text.velm *.output.velm "
                                  "*.plot2d.velm *.plot3d.velm)")));
    for (const QString& path : chosen) {
        QString message;
        if (!openFile(path, &message) || !message.isEmpty())
            showMessage(tr("Open"), message);
    }
}

bool MainWindow::openFile(const QString& path, QString* message)
{
    message->clear();
    const QFileInfo info(path);
    if (info.isDir() || path.endsWith(QLatin1String(".project.velm"), Qt::CaseInsensitive)) {
        // A project replaces the open one: the user's unsaved work gets its question first.
        if (!askToSaveModified(tr("Open project")))
            return true;
        return openProject(info.isDir() ? info.absoluteFilePath() : info.absolutePath(), message);
    }
    if (path.endsWith(QLatin1String(".table.velm"), Qt::CaseInsensitive))
        return m_tablesPanel->openTableFile(path, message);
    if (path.endsWith(QLatin1String(".text.velm"), Qt::CaseInsensitive))
        return m_textsPanel->openTextFile(path, message);
    if (path.endsWith(QLatin1String(".output.velm"), Qt::CaseInsensitive))
        return m_textsPanel->openOutput(path, message);
    if (path.endsWith(QLatin1String(".plot2d.velm"), Qt::CaseInsensitive)
        || path.endsWith(QLatin1String(".plot3d.velm"), Qt::CaseInsensitive))
        return openPlotFile(path, message);

    if (!ItemFile::isNativeFileName(path) && info.exists())
        return openImported(path, message);
    auto item = std::make_unique<QSciImage>();
    if (!ItemFile::load(*item, path, true, true, message))
        return false;
    addNewItem(item.release(), tr("Open"));
    return true;
}

bool MainWindow::openImported(const QString& path, QString* message)
{
    QList<QSciImage*> items;
    if (!m_fileImport->read(
            path, [this](QDialog* dialog) { return runDialog(dialog); }, &items, message))
        return false;
    constexpr int gap = 10;
    QRect occupied;
    if (CollectionTab* tab = m_project->currentTab()) {
        for (const QSciImage* other : tab->items())
            occupied |= other->tabRect();
    }
    FileImport::layOut(items, occupied.isNull() ? QPoint() : QPoint(occupied.right() + 1 + gap, occupied.top()), gap);
    for (QSciImage* item : qAsConst(items))
        addNewItem(item, tr("Open"));
    return true;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    for (const QUrl& url : event->mimeData()->urls()) {
        if (!url.isLocalFile())
            continue;
        QString message;
        if (!openFile(url.toLocalFile(), &message) || !message.isEmpty())
            showMessage(tr("Open"), message);
    }
    event->acceptProposedAction();
}

void MainWindow::addNewItem(QSciImage* item, const QString& operationName)
{
    CollectionTab* tab = m_project->currentTab() ? m_project->currentTab() : m_project->addTab();
    ItemArrangement::addNew(*m_project, tab, item, operationName);
}

void MainWindow::newBlankItem()
{
    if (runDialog(m_formNewImage) != QDialog::Accepted)
        return;
    auto* item = new QSciImage(m_formNewImage->width(), m_formNewImage->height(), m_formNewImage->color());
    item->setName(tr("New item"));
    item->setCreationTime(QDateTime::currentDateTime());
    addNewItem(item, tr("Create new image"));
}

void MainWindow::saveSelectedItems()
{
    saveItems(selectedItems());
}

void MainWindow::saveItemsOnCurrentTab()
{
    if (const CollectionTab* tab = m_project->currentTab())
        saveItems(tab->items());
}

void MainWindow::saveItems(const QList<QSciImage*>& items)
{
    if (items.isEmpty())
        return;
    const QString folder = chooseOne(FileChoice::ChooseFolder, "saveCurrentTabOrSelectedImages",
        items.size() == 1 ? tr("Save item") : tr("Save items"), QString());
    if (folder.isEmpty())
        return;
    QSet<QString> used;
    QStringList failures;
    for (QSciImage* item : items) {
        const QString path = QDir(folder).filePath(
            uniqueFileName(QDir(folder).absolutePath() + QLatin1Char('/'), item->name(), ItemFile::suffix(), &used));
        QString message;
        if (!ItemFile::save(*item, path, QSciImage::AllParts, false, true, &message))
            failures.append(message);
    }
    if (!failures.isEmpty())
        showMessage(tr("Save items"), failures.join(QLatin1Char('\n')));
}

// ---- projects ------------------------------------------------------------------------------------------------

bool MainWindow::openProject(const QString& folder, QString* message)
{
    message->clear();
    ProgressDialogSink progress(this, tr("Open project"));
    if (!ProjectFile::load(*m_project, folder, &progress, message))
        return false;
    loadProjectDocuments(folder, message);
    rememberLastProject(m_project->fileName());
    return true;
}

void MainWindow::loadProjectDocuments(const QString& folder, QString* message)
{
    m_tablesPanel->closeAll();
    m_textsPanel->closeAll();
    std::vector<ProjectDocuments::LoadedTable> tables;
    QVector<ProjectDocuments::Text> texts;
    QStringList problems;
    ProjectDocuments::load(folder, &tables, &texts, &problems);
    for (auto& table : tables)
        m_tablesPanel->addTable(std::move(table.table), table.title);
    for (const auto& text : qAsConst(texts))
        m_textsPanel->newText(text.first, text.second);
    if (!problems.isEmpty())
        *message += (message->isEmpty() ? QString() : QStringLiteral("\n")) + problems.join(QLatin1Char('\n'));
    m_project->setModified(false);
}

bool MainWindow::saveProject(const QString& folder, QString* message)
{
    ProgressDialogSink progress(this, tr("Save project"));
    if (!ProjectFile::save(*m_project, folder, &progress, message)
        || !ProjectDocuments::save(folder, m_tablesPanel->allTables(), m_textsPanel->allTexts(), message))
        return false;
    m_project->setModified(false);
    rememberLastProject(m_project->fileName());
    return true;
}

void MainWindow::clearProject()
{
    QSciHistoryManager::instance()->forget(m_project);
    m_project->clear();
    m_tablesPanel->closeAll();
    m_textsPanel->closeAll();
    m_project->addTab();
    m_project->setCurrentIndex(0);
    m_project->setFileName(QString());
    m_project->setModified(false);
    updateWindowTitle();
}

bool MainWindow::askToSaveModified(const QString& title)
{
    if (!m_project->isModified())
        return true;
    switch (askQuestion(title, tr("Do you want to save the current project?"))) {
    case QMessageBox::Yes:
        return saveProjectInteractively(false);
    case QMessageBox::No:
        return true;
    default:
        return false;
    }
}

bool MainWindow::saveProjectInteractively(bool askForName)
{
    const QString folder = !askForName && !m_project->fileName().isEmpty()
        ? m_project->fileName()
        : chooseOne(FileChoice::SaveFile, "saveMainDialogPath", tr("Save project as"), tr("project directory (*)"));
    if (folder.isEmpty())
        return false;
    QString message;
    if (!saveProject(folder, &message)) {
        showMessage(tr("Save project"), message);
        return false;
    }
    return true;
}

bool MainWindow::openProjectReportingErrors(const QString& folder)
{
    QString message;
    const bool opened = openProject(folder, &message);
    // A project that opened may still name items it could not read.
    if (!message.isEmpty())
        showMessage(tr("Open project"), message);
    return opened;
}

void MainWindow::newProjectAsked()
{
    if (askToSaveModified(tr("New project")))
        clearProject();
}

void MainWindow::openProjectAsked()
{
    if (!askToSaveModified(tr("Open project")))
        return;
    const QString folder = chooseOne(FileChoice::OpenFolder, "openMainDialogPath", tr("Open project"), QString());
    if (!folder.isEmpty())
        openProjectReportingErrors(folder);
}

void MainWindow::saveProjectAsked()
{
    saveProjectInteractively(false);
}

void MainWindow::saveProjectAsAsked()
{
    saveProjectInteractively(true);
}

void MainWindow::reopenLastProject()
{
    if (!m_lastProjectFilename.isEmpty() && askToSaveModified(tr("(Re-)open last project")))
        openProjectReportingErrors(m_lastProjectFilename);
}

// ---- exports -------------------------------------------------------------------------------------------------

void MainWindow::exportZMatrices()
{
    exportItems(ZMatrices);
}

void MainWindow::exportMasks()
{
    exportItems(Masks);
}

void MainWindow::exportPictures()
{
    exportItems(Pictures);
}

void MainWindow::exportItems(int kind)
{
    QList<QSciImage*> items = selectedItems();
    if (items.isEmpty() && currentItem())
        items = { currentItem() };
    if (items.isEmpty())
        return;
    const QString titles[]
        = { tr("Z-Matrices (text-files)"), tr("Masks (1,0 text-map)"), tr("Images without display elements as pngs"),
              tr(".png-files"), tr(".pdf-files"), tr("postscript(.ps)-files") };
    const QString folder = chooseOne(FileChoice::ChooseFolder, "exportPath", titles[kind], QString());
    if (folder.isEmpty())
        return;
    const QString suffixes[] = { QStringLiteral(".txt"), QStringLiteral("_mask.txt"), QStringLiteral(".png"),
        DecoratedPictureWriter::suffix(DecoratedPictureWriter::Png),
        DecoratedPictureWriter::suffix(DecoratedPictureWriter::Pdf),
        DecoratedPictureWriter::suffix(DecoratedPictureWriter::PostScript) };
    QSet<QString> used;
    QStringList failures;
    for (const QSciImage* item : items) {
        const QString path = QDir(folder).filePath(
            uniqueFileName(QDir(folder).absolutePath() + QLatin1Char('/'), item->name(), suffixes[kind], &used));
        const QByteArray bytes = kind == ZMatrices ? TextMatrix::write(item->zData(), item->width(), item->height())
            : kind == Masks ? TextMatrix::writeMask(item->maskData(), item->width(), item->height())
            : kind == Pictures
            ? pngBytes(ItemRenderer::base(*item))
            : DecoratedPictureWriter::write(*item, DecoratedPictureWriter::Format(kind - DecoratedPng));
        QString message;
        if (!AtomicFile::write(path, bytes, &message))
            failures.append(message);
    }
    if (!failures.isEmpty())
        showMessage(titles[kind], failures.join(QLatin1Char('\n')));
}

void MainWindow::exportVisibleAreaPng()
{
    exportVisibleArea(AreaPng);
}

void MainWindow::exportVisibleAreaPdf()
{
    exportVisibleArea(AreaPdf);
}

void MainWindow::exportVisibleAreaPostScript()
{
    exportVisibleArea(AreaPostScript);
}

void MainWindow::exportVisibleArea(int kind)
{
    CollectionTabPage* page = m_central->currentPage();
    if (!page)
        return;
    const QString titles[] = { tr(".png-file"), tr(".pdf-file"), tr("postscript(.ps)-file") };
    const QString filters[]
        = { tr("PNG image (*.png)"), tr("PDF document (*.pdf)"), tr("PostScript document (*.ps *.eps)") };
    const QString suffixes[] = { QStringLiteral(".png"), QStringLiteral(".pdf"), QStringLiteral(".ps") };
    QString path = chooseOne(FileChoice::SaveFile, "exportPath", titles[kind], filters[kind]);
    if (path.isEmpty())
        return;
    if (kind != AreaPostScript || !path.endsWith(QLatin1String(".eps"), Qt::CaseInsensitive))
        path = withSuffix(path, suffixes[kind]);

    // One point of the page per screen pixel: the file shows what the window shows, at its size.
    const QSize size = page->view()->viewport()->size();
    QByteArray bytes;
    if (kind == AreaPdf) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setCreator(QStringLiteral("Velmora"));
        writer.setResolution(72);
        writer.setPageSize(QPageSize(QSizeF(size), QPageSize::Point, QString(), QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF());
        QPainter painter(&writer);
        page->renderVisibleArea(&painter, QRectF(QPointF(), QSizeF(size)));
    } else {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            page->renderVisibleArea(&painter, QRectF(image.rect()));
        }
        bytes = kind == AreaPng ? pngBytes(image) : PostScriptWriter::fromImage(image, QFileInfo(path).fileName());
    }
    QString message;
    if (!AtomicFile::write(path, bytes, &message))
        showMessage(titles[kind], message);
}

void MainWindow::printVisibleArea()
{
    CollectionTabPage* page = m_central->currentPage();
    if (!page)
        return;
    QPrinter printer(QPrinter::HighResolution);
    if (!choosePrinter(&printer))
        return;
    QPainter painter(&printer);
    page->renderVisibleArea(&painter, QRectF(QPointF(), printer.pageRect(QPrinter::DevicePixel).size()));
}

void MainWindow::exportLatexCodes()
{
    QList<QSciImage*> items = selectedItems();
    if (items.isEmpty() && currentItem())
        items = { currentItem() };
    if (items.isEmpty())
        return;
    const QString title = tr("LaTeX-Codes");
    const QString folder = chooseOne(FileChoice::ChooseFolder, "exportPath", title, QString());
    if (folder.isEmpty())
        return;
    QSet<QString> used;
    QStringList failures;
    for (const QSciImage* item : qAsConst(items)) {
        const QString path = QDir(folder).filePath(
            uniqueFileName(QDir(folder).absolutePath() + QLatin1Char('/'), item->name(), LatexCodes::suffix(), &used));
        QString message;
        if (!AtomicFile::write(path, LatexCodes::document(*item).toUtf8(), &message))
            failures.append(message);
    }
    if (!failures.isEmpty())
        showMessage(title, failures.join(QLatin1Char('\n')));
}
