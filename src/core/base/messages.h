#pragma once

#include <QString>

/** The user-facing texts shared by several subsystems, translated, formatted "text: path". */
class Messages final {
public:
    static QString fileDoesNotExist(const QString& path);
    static QString unableToOpenFile(const QString& path);
    static QString unableToReadFromFile(const QString& path);
    static QString unableToWriteFile(const QString& path);
    static QString withPath(const QString& text, const QString& path);
    static QString tr(const char* text);
};
