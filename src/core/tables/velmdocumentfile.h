#pragma once

#include "core/base/taggedtextnode.h"

#include <QString>

class TaggedTextWriter;

/**
 * The container of table, text and output files: qCompress framing over a tagged text that begins with a
 * "header" chapter naming the document type. Reading trusts nothing: sizes are checked before anything is
 * allocated, and every failure comes back as the message the user sees.
 */
class VelmDocumentFile final {
public:
    /** The uncompressed text may not exceed this; far above any table a person keeps. */
    static constexpr qint64 MaxTextBytes = qint64(1) << 30;

    /** Starts a document: the header with @p type and the version, then an open "content" chapter. */
    static void begin(TaggedTextWriter& writer, const QString& type);
    /** Closes the content chapter, compresses and replaces @p path as a whole. */
    [[nodiscard]] static bool finish(TaggedTextWriter& writer, const QString& path, QString* message);

    /** Reads and parses @p path; on success @p root holds the whole tree and @p type the header's type. */
    [[nodiscard]] static bool read(const QString& path, TaggedTextNode* root, QString* type, QString* message);
    /** Reads @p path and insists on @p expectedType; the tree is known to hold a "content" chapter. */
    [[nodiscard]] static bool readTyped(
        const QString& path, const QString& expectedType, TaggedTextNode* root, QString* message);

    static QString notVelmData(const QString& path);
    static QString corrupted(const QString& path);
};
