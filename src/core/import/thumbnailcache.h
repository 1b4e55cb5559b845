#pragma once

#include "core/import/filepreview.h"

#include <QString>

/**
 * Previews kept on disk, one PNG per browsed file with the facts in its text chunks, named after a hash of
 * the file's path. An entry counts only while the file's size and modification time are those it was made
 * from, so a changed file is read again and its entry replaced. Safe to use from several threads as long as
 * no two threads ask for the same path at once.
 */
class ThumbnailCache final {
public:
    /** @p directory is made on first store; empty: "thumbnails/" in the settings folder. */
    explicit ThumbnailCache(const QString& directory = QString());

    QString directory() const { return m_directory; }
    /** The cached preview of @p path when still valid, else a fresh one (stored for next time). */
    FilePreview preview(const QString& path) const;
    /** The entry file of @p path (which need not exist). */
    QString entryFile(const QString& path) const;

private:
    bool load(const QString& path, FilePreview* preview) const;
    void store(const FilePreview& preview) const;

    QString m_directory;
};
