#include "messages.h"

#include <QCoreApplication>

QString Messages::tr(const char* text)
{
    return QCoreApplication::translate("Velmora", text);
}

QString Messages::withPath(const QString& text, const QString& path)
{
    return text + QStringLiteral(": ") + path;
}

QString Messages::fileDoesNotExist(const QString& path)
{
    return withPath(tr("File does not exist"), path);
}

QString Messages::unableToOpenFile(const QString& path)
{
    return withPath(tr("Unable to open file"), path);
}

QString Messages::unableToReadFromFile(const QString& path)
{
    return withPath(tr("Unable to read from file"), path);
}

QString Messages::unableToWriteFile(const QString& path)
{
    return withPath(tr("Unable to write file"), path);
}
