#pragma once

#include <QPair>
#include <QString>
#include <QVector>
#include <vector>

/**
 * One chapter of a parsed tagged text: its fields in order and its child chapters in order. The root
 * of a parsed text has an empty name and holds the top-level chapters and fields. A chapter name may
 * repeat; lookups return the first match.
 *
 * "<x||x>" is read as a field with an empty value: the syntax cannot tell it from an empty chapter.
 */
class TaggedTextNode final {
public:
    using Field = QPair<QString, QString>;

    explicit TaggedTextNode(const QString& name = QString());

    const QString& name() const { return m_name; }
    const QVector<Field>& fields() const { return m_fields; }
    const std::vector<TaggedTextNode>& chapters() const { return m_chapters; }

    void addField(const QString& key, const QString& value);
    /** The new child; valid until the next child is added to this node. */
    TaggedTextNode& addChapter(const QString& name);

    /** The first field named @p key, or nullptr. */
    const QString* findField(const QString& key) const;
    QString field(const QString& key, const QString& defaultValue = QString()) const;
    /** The first child chapter named @p name, or nullptr. */
    const TaggedTextNode* chapter(const QString& name) const;

private:
    QString m_name;
    QVector<Field> m_fields;
    std::vector<TaggedTextNode> m_chapters;
};
