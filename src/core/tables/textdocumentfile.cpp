#include "textdocumentfile.h"

#include "velmdocumentfile.h"

#include "core/base/taggedtextwriter.h"

QString TextDocumentFile::type(Kind kind)
{
    return kind == Kind::Text ? QStringLiteral("text") : QStringLiteral("output");
}

QString TextDocumentFile::suffix(Kind kind)
{
    return kind == Kind::Text ? QStringLiteral(".text.velm") : QStringLiteral(".output.velm");
}

bool TextDocumentFile::write(
    const QString& path, Kind kind, const QString& title, const QString& text, QString* message)
{
    TaggedTextWriter writer;
    VelmDocumentFile::begin(writer, type(kind));
    writer.addField(QStringLiteral("title"), title);
    writer.addField(QStringLiteral("text"), text);
    return VelmDocumentFile::finish(writer, path, message);
}

bool TextDocumentFile::read(const QString& path, Kind kind, QString* title, QString* text, QString* message)
{
    TaggedTextNode root;
    if (!VelmDocumentFile::readTyped(path, type(kind), &root, message))
        return false;
    const TaggedTextNode* content = root.chapter(QStringLiteral("content"));
    const QString* body = content->findField(QStringLiteral("text"));
    if (!body) {
        if (message)
            *message = VelmDocumentFile::corrupted(path);
        return false;
    }
    if (title)
        *title = content->field(QStringLiteral("title"));
    if (text)
        *text = *body;
    return true;
}
