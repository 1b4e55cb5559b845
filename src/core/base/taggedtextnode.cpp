#include "taggedtextnode.h"

TaggedTextNode::TaggedTextNode(const QString& name)
    : m_name(name)
{
}

void TaggedTextNode::addField(const QString& key, const QString& value)
{
    m_fields.append(Field(key, value));
}

TaggedTextNode& TaggedTextNode::addChapter(const QString& name)
{
    m_chapters.emplace_back(name);
    return m_chapters.back();
}

const QString* TaggedTextNode::findField(const QString& key) const
{
    for (const Field& field : m_fields) {
        if (field.first == key)
            return &field.second;
    }
    return nullptr;
}

QString TaggedTextNode::field(const QString& key, const QString& defaultValue) const
{
    const QString* value = findField(key);
    return value ? *value : defaultValue;
}

const TaggedTextNode* TaggedTextNode::chapter(const QString& name) const
{
    for (const TaggedTextNode& child : m_chapters) {
        if (child.name() == name)
            return &child;
    }
    return nullptr;
}
