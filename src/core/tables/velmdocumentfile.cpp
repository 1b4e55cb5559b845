#include "velmdocumentfile.h"

#include "core/base/atomicfile.h"
#include "core/base/compressedblock.h"
#include "core/base/messages.h"
#include "core/base/taggedtextreader.h"
#include "core/base/taggedtextwriter.h"

#include <QFile>
#include <QFileInfo>

namespace {

const QLatin1String Prefix("<header|<type|");

} // namespace

QString VelmDocumentFile::notVelmData(const QString& path)
{
    return Messages::withPath(Messages::tr("File does not contain .velm data."), path);
}

QString VelmDocumentFile::corrupted(const QString& path)
{
    return Messages::withPath(Messages::tr("File corrupted."), path);
}

void VelmDocumentFile::begin(TaggedTextWriter& writer, const QString& type)
{
    writer.beginChapter(QStringLiteral("header"));
    writer.addField(QStringLiteral("type"), type);
    writer.addField(QStringLiteral("version"), QStringLiteral("1"));
    writer.addField(QStringLiteral("program"), QStringLiteral("Velmora " VELMORA_VERSION));
    writer.endChapter();
    writer.beginChapter(QStringLiteral("content"));
}

bool VelmDocumentFile::finish(TaggedTextWriter& writer, const QString& path, QString* message)
{
    while (writer.openChapters() > 0)
        writer.endChapter();
    const QByteArray data = CompressedBlock::compress(writer.text().toUtf8(), 6).toByteArray();
    return AtomicFile::write(path, data, message);
}

bool VelmDocumentFile::read(const QString& path, TaggedTextNode* root, QString* type, QString* message)
{
    auto fail = [&](const QString& text) {
        if (message)
            *message = text;
        return false;
    };
    if (!QFileInfo::exists(path))
        return fail(Messages::fileDoesNotExist(path));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(Messages::unableToOpenFile(path));
    // Deflate cannot shrink 1 GiB of text below about 1 MiB; a larger file cannot be ours either.
    if (file.size() > MaxTextBytes)
        return fail(notVelmData(path));
    const QByteArray block = file.readAll();
    if (block.size() != file.size())
        return fail(Messages::unableToReadFromFile(path));
    const qint64 stated = CompressedBlock::statedSize(block.constData(), block.size());
    if (stated < 0 || stated > MaxTextBytes || !CompressedBlock::isPlausible(stated, block.size()))
        return fail(notVelmData(path));
    // The frame looked right, so a stream that breaks off is damage rather than a foreign file.
    QByteArray bytes;
    if (!CompressedBlock::uncompress(block, &bytes, MaxTextBytes, nullptr))
        return fail(corrupted(path));
    const QString text = QString::fromUtf8(bytes);
    bytes.clear();
    if (!text.startsWith(Prefix))
        return fail(notVelmData(path));
    TaggedTextNode parsed;
    if (!TaggedTextReader::parse(text, &parsed))
        return fail(corrupted(path));
    const TaggedTextNode* header = parsed.chapter(QStringLiteral("header"));
    if (!header || !header->findField(QStringLiteral("type")))
        return fail(corrupted(path));
    if (type)
        *type = header->field(QStringLiteral("type"));
    *root = std::move(parsed);
    return true;
}

bool VelmDocumentFile::readTyped(
    const QString& path, const QString& expectedType, TaggedTextNode* root, QString* message)
{
    QString type;
    if (!read(path, root, &type, message))
        return false;
    if (type != expectedType) {
        if (message)
            *message = Messages::withPath(Messages::tr("File holds no %1 but a %2").arg(expectedType, type), path);
        return false;
    }
    if (!root->chapter(QStringLiteral("content"))) {
        if (message)
            *message = corrupted(path);
        return false;
    }
    return true;
}
