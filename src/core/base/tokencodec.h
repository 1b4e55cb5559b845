#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/**
 * The length-prefixed text units of the native formats: "<length>|<text>", no other separators.
 * Shared by colour gradients, item headers and panel state strings.
 */
class TokenCodec final {
public:
    /** Appends one token holding @p text to @p out. */
    static void append(QString& out, const QString& text);
    static QString encode(const QString& text);
    /** Encodes key, value, key, value, ... */
    static QString encodePairs(const QList<QPair<QString, QString>>& pairs);
    /** Reads a whole string as key/value pairs; a trailing key without value is dropped, repeats keep the last. */
    static QHash<QString, QString> decodeMap(const QString& input);
};

/**
 * Sequential reader over a token string. A malformed or non-positive length yields an empty token
 * and consumes exactly two characters; files written by older builds rely on that rule.
 */
class TokenReader final {
public:
    explicit TokenReader(const QString& input)
        : m_input(input)
    {
    }
    bool atEnd() const { return m_pos >= m_input.size(); }
    int position() const { return m_pos; }
    QString next();

private:
    const QString& m_input;
    int m_pos = 0;
};
