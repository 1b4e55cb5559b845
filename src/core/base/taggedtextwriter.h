#pragma once

#include <QString>
#include <QStringList>

/**
 * Writes the tagged text of object records and plot files: chapters "<name|" ... "|name>" and fields
 * "<key|value|key>". Values are escaped ("|", ">", "<", "&" become "&pipe;", "&gt;", "&lt;", "&amp;");
 * names are written as given and must not hold any of those characters.
 */
class TaggedTextWriter final {
public:
    explicit TaggedTextWriter(int reserve = 0);

    void beginChapter(const QString& name);
    /** Closes the innermost open chapter. */
    void endChapter();
    void addField(const QString& key, const QString& value);
    /** Appends a field whose value is known to need no escapes (numbers, point lists). */
    void addPlainField(const QString& key, const QString& value);

    /** The text written so far; chapters still open are not closed. */
    const QString& text() const { return m_text; }
    int openChapters() const { return m_open.size(); }

    static QString escape(const QString& value);

private:
    QString m_text;
    QStringList m_open;
};
