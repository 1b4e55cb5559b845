#pragma once

#include "core/base/taggedtextnode.h"

#include <QString>

/**
 * Parses tagged text (see TaggedTextWriter) into a tree in one linear pass, without recursion. Anything
 * malformed (an unclosed or wrongly closed chapter, a stray character between tags, "<" or ">" inside a
 * value, chapters nested deeper than 1000) fails with a message naming the offset.
 */
class TaggedTextReader final {
public:
    [[nodiscard]] static bool parse(const QString& text, TaggedTextNode* root, QString* message = nullptr);

    /** Reverses the writer's escapes; an "&" that starts none of them is kept as it is. */
    static QString unescape(QStringView value);
};
