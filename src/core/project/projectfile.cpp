#include "projectfile.h"

#include "collectiontab.h"
#include "project.h"

#include "core/base/atomicfile.h"
#include "core/base/messages.h"
#include "core/base/progresssink.h"
#include "core/base/tokencodec.h"
#include "core/history/qscihistorymanager.h"
#include "core/items/itemfile.h"
#include "core/items/qsciimage.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

namespace {

const QString formatTag = QStringLiteral("VelmoraProject");

/** Each save writes new names, so a save that fails half-way leaves the last manifest's files intact. */
QString itemFileName(int generation, int tab, int index, const QString& name)
{
    static const QRegularExpression unsafe(QStringLiteral("[^A-Za-z0-9._-]+"));
    QString safe = name;
    safe.replace(unsafe, QStringLiteral("_"));
    return QStringLiteral("t%1_i%2_%3.g%4.img.velm").arg(tab).arg(index).arg(safe.left(60)).arg(generation);
}

QStringList manifestItemFiles(const QString& manifest)
{
    QStringList files;
    TokenReader reader(manifest);
    while (!reader.atEnd()) {
        const QString token = reader.next();
        if (token.endsWith(QLatin1String(".img.velm")))
            files.append(token);
    }
    return files;
}

QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

QString ProjectFile::manifestName()
{
    return QStringLiteral("project.project.velm");
}

bool ProjectFile::save(Project& project, const QString& folder, ProgressSink* progress, QString* message)
{
    NullProgressSink none;
    ProgressSink& sink = progress ? *progress : none;
    QDir dir(folder);
    if (!dir.exists() && !QDir().mkpath(folder)) {
        *message = Messages::unableToOpenFile(folder);
        return false;
    }
    QFile old(dir.filePath(manifestName()));
    const QString oldManifest = old.open(QIODevice::ReadOnly) ? QString::fromUtf8(old.readAll()) : QString();
    old.close();
    const QStringList oldFiles = manifestItemFiles(oldManifest);
    int generation = 0;
    {
        TokenReader reader(oldManifest);
        if (reader.next() == formatTag) {
            reader.next(); // format number
            generation = reader.next().toInt() + 1;
        }
    }

    QString manifest;
    TokenCodec::append(manifest, formatTag);
    TokenCodec::append(manifest, QStringLiteral("1"));
    TokenCodec::append(manifest, QString::number(generation));
    TokenCodec::append(manifest, QString::number(project.tabs().size()));
    TokenCodec::append(manifest, QString::number(project.currentIndex()));
    QSet<QString> written;
    const QList<QSciImage*> all = project.allItems();
    sink.begin(Messages::tr("Save project"), all.size());
    int done = 0;
    for (int t = 0; t < project.tabs().size(); ++t) {
        const CollectionTab* tab = project.tabs().at(t);
        TokenCodec::append(manifest, tab->name());
        TokenCodec::append(manifest, QString::number(tab->count()));
        for (int i = 0; i < tab->count(); ++i) {
            QSciImage* item = tab->items().at(i);
            const QString file = itemFileName(generation, t, i, item->name());
            if (!ItemFile::write(*item, dir.filePath(file), QSciImage::AllParts, false, message)) {
                sink.end();
                for (const QString& done : qAsConst(written))
                    dir.remove(done);
                return false;
            }
            written.insert(file);
            for (const QString& value :
                { file, QString::number(item->left()), QString::number(item->top()), flag(item->isSelected()),
                    flag(item->isVisible()), item->creationTime().toString(Qt::ISODateWithMs) })
                TokenCodec::append(manifest, value);
            sink.step(++done);
        }
    }
    sink.end();
    if (!AtomicFile::write(dir.filePath(manifestName()), manifest.toUtf8(), message)) {
        for (const QString& done : qAsConst(written))
            dir.remove(done);
        return false;
    }
    for (QSciImage* item : all)
        item->setSaved(true);
    // Files of the previous save that this one no longer lists.
    for (const QString& file : oldFiles) {
        if (!written.contains(file) && !file.contains(QLatin1Char('/')))
            dir.remove(file);
    }
    project.setFileName(QDir(folder).absolutePath());
    project.setModified(false);
    return true;
}

bool ProjectFile::load(Project& project, const QString& folder, ProgressSink* progress, QString* message)
{
    NullProgressSink none;
    ProgressSink& sink = progress ? *progress : none;
    const QDir dir(folder);
    const QString path = dir.filePath(manifestName());
    if (!QFile::exists(path)) {
        *message = Messages::fileDoesNotExist(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *message = Messages::unableToOpenFile(path);
        return false;
    }
    const QString manifest = QString::fromUtf8(file.readAll());
    TokenReader reader(manifest);
    const bool tagged = reader.next() == formatTag;
    reader.next(); // format number
    reader.next(); // generation of the file names
    bool ok = false;
    const int tabCount = reader.next().toInt(&ok);
    const int current = reader.next().toInt();
    if (!tagged || !ok || tabCount < 0) {
        *message = Messages::unableToReadFromFile(path);
        return false;
    }
    QStringList failures;
    // The old items go, and with them every undo step that could bring them back.
    QSciHistoryManager::instance()->forget(&project);
    project.clear();
    sink.begin(Messages::tr("Open project"), tabCount);
    for (int t = 0; t < tabCount && !reader.atEnd(); ++t) {
        CollectionTab* tab = project.addTab(reader.next());
        const int count = reader.next().toInt();
        for (int i = 0; i < count && !reader.atEnd(); ++i) {
            const QString name = reader.next();
            const int left = reader.next().toInt();
            const int top = reader.next().toInt();
            const bool selected = reader.next() == QLatin1String("1");
            const bool visible = reader.next() == QLatin1String("1");
            const QDateTime created = QDateTime::fromString(reader.next(), Qt::ISODateWithMs);
            auto* item = new QSciImage();
            QString itemMessage;
            if (name.contains(QLatin1Char('/'))
                || !ItemFile::load(*item, dir.filePath(name), false, true, &itemMessage)) {
                failures.append(
                    itemMessage.isEmpty() ? Messages::unableToReadFromFile(dir.filePath(name)) : itemMessage);
                delete item;
                continue;
            }
            item->setPosition(left, top);
            item->setSelected(selected);
            item->setVisible(visible);
            item->setCreationTime(created);
            tab->addItem(item);
        }
        sink.step(t + 1);
    }
    sink.end();
    if (project.tabs().isEmpty())
        project.addTab();
    project.setCurrentIndex(qBound(0, current, project.tabs().size() - 1));
    project.setFileName(QDir(folder).absolutePath());
    project.setModified(false);
    if (!failures.isEmpty())
        *message = failures.join(QLatin1Char('\n'));
    return true;
}
