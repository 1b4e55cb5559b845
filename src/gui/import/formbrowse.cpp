#include "formbrowse.h"

#include "core/settings/options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <functional>

namespace {

const QString FolderKey = QStringLiteral("FormBrowse.folder");
const QString SubfoldersKey = QStringLiteral("FormBrowse.subfolders");
// A tree as deep as the home folder must not flood the list.
constexpr int MaxFiles = 5000;

QPixmap placeholder()
{
    QPixmap pixmap(FilePreview::ThumbnailSize, FilePreview::ThumbnailSize);
    pixmap.fill(QColor(230, 230, 230));
    return pixmap;
}

/** The thumbnail centred on a square, so that the rows of the list line up; small scans are enlarged. */
QPixmap squared(const QImage& image)
{
    const int side = FilePreview::ThumbnailSize;
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    if (image.isNull())
        return pixmap;
    // Whole multiples keep every data point a sharp square.
    const int factor = std::max(1, side / std::max(image.width(), image.height()));
    const QImage shown = factor > 1
        ? image.scaled(image.width() * factor, image.height() * factor, Qt::IgnoreAspectRatio, Qt::FastTransformation)
        : image;
    QPainter painter(&pixmap);
    painter.drawImage((side - shown.width()) / 2, (side - shown.height()) / 2, shown);
    return pixmap;
}

} // namespace

FormBrowse::FormBrowse(QWidget* parent, const QString& cacheDirectory)
    : QDialog(parent)
    , m_cache(cacheDirectory)
{
    setObjectName(QStringLiteral("FormBrowse"));
    setWindowTitle(tr("Browse"));
    resize(1000, 680);

    m_folders = new QFileSystemModel(this);
    m_folders->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives);
    m_folders->setRootPath(QString());
    m_tree = new QTreeView(this);
    m_tree->setObjectName(QStringLiteral("folderTree"));
    m_tree->setModel(m_folders);
    for (int column = 1; column < m_folders->columnCount(); ++column)
        m_tree->hideColumn(column);
    m_tree->header()->hide();

    m_nameFilter = new QLineEdit(this);
    m_nameFilter->setObjectName(QStringLiteral("nameFilter"));
    m_nameFilter->setPlaceholderText(tr("Filter by name (wildcards * and ?)"));
    m_nameFilter->setClearButtonEnabled(true);
    m_formatFilter = new QComboBox(this);
    m_formatFilter->setObjectName(QStringLiteral("formatFilter"));
    m_formatFilter->addItem(tr("All formats"));
    m_formatFilter->addItems(FilePreview::formatNames());
    m_subfolders = new QCheckBox(tr("Subfolders"), this);
    m_subfolders->setObjectName(QStringLiteral("cbSubfolders"));
    m_subfolders->setChecked(Options::getBool(SubfoldersKey, false));

    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("fileList"));
    m_list->setViewMode(QListView::ListMode);
    m_list->setIconSize(QSize(FilePreview::ThumbnailSize, FilePreview::ThumbnailSize));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setUniformItemSizes(true);
    m_list->setSpacing(2);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("browseStatus"));
    auto* buttons = new QDialogButtonBox(this);
    m_openButton = buttons->addButton(tr("Open"), QDialogButtonBox::AcceptRole);
    m_openButton->setObjectName(QStringLiteral("openButton"));
    m_openButton->setEnabled(false);
    buttons->addButton(QDialogButtonBox::Close);

    auto* filters = new QHBoxLayout;
    filters->addWidget(m_nameFilter, 2);
    filters->addWidget(m_formatFilter, 1);
    filters->addWidget(m_subfolders);
    auto* right = new QWidget(this);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    rightLayout->addLayout(filters);
    rightLayout->addWidget(m_list);
    auto* splitter = new QSplitter(this);
    splitter->addWidget(m_tree);
    splitter->addWidget(right);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({ 260, 740 });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_status, 1);
    bottom->addWidget(buttons);
    layout->addLayout(bottom);

    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
        [this](const QModelIndex& index) { setFolder(m_folders->filePath(index)); });
    connect(m_nameFilter, &QLineEdit::textChanged, this, &FormBrowse::applyFilters);
    connect(m_subfolders, &QCheckBox::toggled, this, [this](bool on) {
        Options::setBool(SubfoldersKey, on);
        if (!m_folder.isEmpty())
            startPreviews();
    });
    connect(m_formatFilter, qOverload<int>(&QComboBox::currentIndexChanged), this, &FormBrowse::applyFilters);
    connect(m_list, &QListWidget::itemSelectionChanged, this,
        [this] { m_openButton->setEnabled(!m_list->selectedItems().isEmpty()); });
    connect(m_list, &QListWidget::itemDoubleClicked, this,
        [this](QListWidgetItem* item) { emit openRequested({ item->data(Qt::UserRole).toString() }); });
    connect(m_openButton, &QPushButton::clicked, this, &FormBrowse::openSelected);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

FormBrowse::~FormBrowse()
{
    stopPreviews();
}

void FormBrowse::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_folder.isEmpty()) {
        QString start = Options::getPath(FolderKey, QString());
        if (start.isEmpty() || !QFileInfo(start).isDir())
            start = Options::homeDir();
        setFolder(start);
    }
}

void FormBrowse::setFolder(const QString& folder)
{
    const QString absolute = QFileInfo(folder).absoluteFilePath();
    if (absolute == m_folder && !m_paths.isEmpty())
        return;
    m_folder = absolute;
    Options::setString(FolderKey, m_folder);
    const QModelIndex index = m_folders->index(m_folder);
    if (index.isValid() && m_tree->currentIndex() != index) {
        const QSignalBlocker blocker(m_tree->selectionModel());
        m_tree->setCurrentIndex(index);
        m_tree->scrollTo(index);
    }
    startPreviews();
}

void FormBrowse::stopPreviews()
{
    if (!m_watcher)
        return;
    // A worker may be inside a large file: the old watcher finishes on its own and goes then.
    m_watcher->disconnect(this);
    m_watcher->cancel();
    connect(m_watcher, &QFutureWatcherBase::finished, m_watcher, &QObject::deleteLater);
    if (m_watcher->isFinished())
        m_watcher->deleteLater();
    m_watcher = nullptr;
}

void FormBrowse::startPreviews()
{
    stopPreviews();
    m_list->clear();
    m_paths.clear();
    m_formats.clear();
    m_ready = 0;
    m_duration = -1;
    m_clock.start();
    QStringList found;
    if (m_subfolders->isChecked()) {
        QDirIterator it(m_folder, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
        while (it.hasNext() && found.size() < MaxFiles)
            found.append(it.next());
        std::sort(found.begin(), found.end(),
            [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    } else {
        for (const QFileInfo& entry :
            QDir(m_folder).entryInfoList(QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase))
            found.append(entry.absoluteFilePath());
    }
    const QPixmap blank = placeholder();
    const QDir base(m_folder);
    for (const QString& path : qAsConst(found)) {
        const QString format = FilePreview::formatOf(path);
        if (format.isEmpty())
            continue;
        m_paths.append(path);
        m_formats.append(format);
        auto* item
            = new QListWidgetItem(QIcon(blank), base.relativeFilePath(path) + QLatin1Char('\n') + format, m_list);
        item->setData(Qt::UserRole, path);
    }
    applyFilters();
    if (m_paths.isEmpty()) {
        m_duration = 0;
        m_status->setText(tr("No readable files in %1").arg(QDir::toNativeSeparators(m_folder)));
        return;
    }
    m_status->setText(tr("Reading %1 files...").arg(m_paths.size()));
    m_watcher = new QFutureWatcher<FilePreview>(this);
    connect(m_watcher, &QFutureWatcherBase::resultReadyAt, this, &FormBrowse::previewReady);
    const ThumbnailCache cache = m_cache;
    // Qt 5's mapped() reads the result type off the function object: a lambda does not say it.
    const std::function<FilePreview(const QString&)> preview
        = [cache](const QString& path) { return cache.preview(path); };
    m_watcher->setFuture(QtConcurrent::mapped(m_paths, preview));
}

void FormBrowse::previewReady(int index)
{
    if (!m_watcher || index < 0 || index >= m_list->count())
        return;
    const FilePreview preview = m_watcher->resultAt(index);
    QListWidgetItem* item = m_list->item(index);
    item->setText(describe(preview));
    if (preview.ok)
        item->setIcon(QIcon(squared(preview.thumbnail)));
    item->setToolTip(preview.ok ? preview.channels.join(QLatin1Char('\n')) : preview.message);
    if (!preview.format.isEmpty())
        m_formats[index] = preview.format;
    item->setHidden(!passesFilters(index));
    ++m_ready;
    if (m_ready == m_paths.size()) {
        m_duration = m_clock.elapsed();
        m_status->setText(tr("%1 files, thumbnails in %2 ms").arg(m_paths.size()).arg(m_duration));
    } else {
        m_status->setText(tr("Reading %1 of %2 files...").arg(m_ready).arg(m_paths.size()));
    }
}

QString FormBrowse::describe(const FilePreview& preview) const
{
    QStringList lines { QDir(m_folder).relativeFilePath(preview.path) };
    if (!preview.ok) {
        lines << preview.format << preview.message;
        return lines.join(QLatin1Char('\n'));
    }
    QString channels = preview.channels.mid(0, 4).join(QStringLiteral(", "));
    if (preview.channels.size() > 1)
        channels = tr("%1 channels: ").arg(preview.channels.size()) + channels;
    if (preview.channels.size() > 4)
        channels += QStringLiteral(", ...");
    lines << preview.format << channels << preview.sizeText()
          << QLocale().toString(preview.modified, QLocale::ShortFormat);
    return lines.join(QLatin1Char('\n'));
}

void FormBrowse::applyFilters()
{
    const QString pattern = m_nameFilter->text().trimmed();
    m_namePattern = QRegularExpression(pattern.contains(QLatin1Char('*')) || pattern.contains(QLatin1Char('?'))
            ? QRegularExpression::wildcardToRegularExpression(pattern)
            : QRegularExpression::escape(pattern),
        QRegularExpression::CaseInsensitiveOption);
    m_format = m_formatFilter->currentIndex() > 0 ? m_formatFilter->currentText() : QString();
    for (int i = 0; i < m_list->count() && i < m_paths.size(); ++i)
        m_list->item(i)->setHidden(!passesFilters(i));
}

bool FormBrowse::passesFilters(int index) const
{
    return (m_namePattern.pattern().isEmpty()
               || m_namePattern.match(QFileInfo(m_paths.at(index)).fileName()).hasMatch())
        && (m_format.isEmpty() || m_formats.at(index) == m_format);
}

QStringList FormBrowse::shownPaths() const
{
    QStringList paths;
    for (int i = 0; i < m_list->count(); ++i)
        if (!m_list->item(i)->isHidden())
            paths.append(m_list->item(i)->data(Qt::UserRole).toString());
    return paths;
}

void FormBrowse::openSelected()
{
    QStringList paths;
    for (int i = 0; i < m_list->count(); ++i) {
        const QListWidgetItem* item = m_list->item(i);
        if (item->isSelected() && !item->isHidden())
            paths.append(item->data(Qt::UserRole).toString());
    }
    if (!paths.isEmpty())
        emit openRequested(paths);
}
