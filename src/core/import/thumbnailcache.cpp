#include "thumbnailcache.h"

#include "core/base/tokencodec.h"
#include "core/settings/options.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>

namespace {

// Bumped when the rendering changes, so old entries are made again rather than shown.
const QString CacheVersion = QStringLiteral("2");

QString key(const char* name)
{
    return QString::fromLatin1(name);
}

// PNG text chunks come back with their white space simplified: texts travel as base64 of UTF-8.
QString pack(const QString& text)
{
    return QString::fromLatin1(text.toUtf8().toBase64());
}

QString unpack(const QString& text)
{
    return QString::fromUtf8(QByteArray::fromBase64(text.toLatin1()));
}

} // namespace

ThumbnailCache::ThumbnailCache(const QString& directory)
    : m_directory(directory.isEmpty() ? QDir(Options::settingsDir()).filePath(QStringLiteral("thumbnails")) : directory)
{
}

QString ThumbnailCache::entryFile(const QString& path) const
{
    const QByteArray hash
        = QCryptographicHash::hash(QFileInfo(path).absoluteFilePath().toUtf8(), QCryptographicHash::Sha1).toHex();
    return QDir(m_directory).filePath(QString::fromLatin1(hash) + QStringLiteral(".png"));
}

FilePreview ThumbnailCache::preview(const QString& path) const
{
    FilePreview result;
    if (load(path, &result))
        return result;
    result = FilePreview::make(path);
    // A file that cannot be read is tried again next time: it may be still being written.
    if (result.ok)
        store(result);
    return result;
}

bool ThumbnailCache::load(const QString& path, FilePreview* preview) const
{
    const QFileInfo source(path);
    if (!source.isFile())
        return false;
    QImageReader reader(entryFile(path), "png");
    if (!reader.canRead())
        return false;
    if (reader.text(key("version")) != CacheVersion || unpack(reader.text(key("path"))) != source.absoluteFilePath()
        || reader.text(key("size")) != QString::number(source.size())
        || reader.text(key("modified")) != QString::number(source.lastModified().toMSecsSinceEpoch()))
        return false;
    FilePreview p;
    p.path = path;
    p.ok = true;
    p.format = unpack(reader.text(key("format")));
    const QString channels = unpack(reader.text(key("channels")));
    TokenReader tokens(channels);
    while (!tokens.atEnd())
        p.channels.append(tokens.next());
    p.width = reader.text(key("width")).toInt();
    p.height = reader.text(key("height")).toInt();
    p.xSize = reader.text(key("xSize")).toDouble();
    p.ySize = reader.text(key("ySize")).toDouble();
    p.xUnit = unpack(reader.text(key("xUnit")));
    p.yUnit = unpack(reader.text(key("yUnit")));
    p.modified = source.lastModified();
    p.fromCache = true;
    if (!reader.read(&p.thumbnail))
        return false;
    *preview = p;
    return true;
}

void ThumbnailCache::store(const FilePreview& preview) const
{
    const QFileInfo source(preview.path);
    if (!QDir().mkpath(m_directory))
        return;
    QImage image = preview.thumbnail.isNull() ? QImage(1, 1, QImage::Format_ARGB32) : preview.thumbnail;
    if (preview.thumbnail.isNull())
        image.fill(Qt::transparent);
    image.setText(key("version"), CacheVersion);
    image.setText(key("path"), pack(source.absoluteFilePath()));
    image.setText(key("size"), QString::number(source.size()));
    image.setText(key("modified"), QString::number(source.lastModified().toMSecsSinceEpoch()));
    image.setText(key("format"), pack(preview.format));
    QString channels;
    for (const QString& channel : preview.channels)
        TokenCodec::append(channels, channel);
    image.setText(key("channels"), pack(channels));
    image.setText(key("width"), QString::number(preview.width));
    image.setText(key("height"), QString::number(preview.height));
    image.setText(key("xSize"), QString::number(preview.xSize, 'g', 17));
    image.setText(key("ySize"), QString::number(preview.ySize, 'g', 17));
    image.setText(key("xUnit"), pack(preview.xUnit));
    image.setText(key("yUnit"), pack(preview.yUnit));
    // Written aside and renamed: a browser in another window never reads half an entry.
    QSaveFile file(entryFile(preview.path));
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG"))
        return;
    file.commit();
}
