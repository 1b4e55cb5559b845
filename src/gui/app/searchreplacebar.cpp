#include "searchreplacebar.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

SearchReplaceBar::SearchReplaceBar(QWidget* parent)
    : QWidget(parent)
    , m_search(new QLineEdit(this))
    , m_replace(new QLineEdit(this))
    , m_caseSensitive(new QCheckBox(tr("Case-sensitive"), this))
{
    setObjectName(QStringLiteral("widgetSearchAndReplace"));
    m_search->setObjectName(QStringLiteral("leSearch"));
    m_replace->setObjectName(QStringLiteral("leReplace"));
    m_caseSensitive->setObjectName(QStringLiteral("cbCaseSensitive"));

    auto* next = new QPushButton(tr("Next occurrence"), this);
    next->setObjectName(QStringLiteral("pbSearchNext"));
    auto* replace = new QPushButton(tr("Replace"), this);
    replace->setObjectName(QStringLiteral("pbReplace"));
    auto* replaceAll = new QPushButton(tr("Replace All"), this);
    replaceAll->setObjectName(QStringLiteral("pbReplaceAll"));
    for (QPushButton* button : { next, replace, replaceAll })
        button->setEnabled(false);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    layout->addWidget(new QLabel(tr("Search:"), this), 0, 0);
    layout->addWidget(m_search, 0, 1);
    layout->addWidget(next, 0, 2);
    layout->addWidget(m_caseSensitive, 0, 3);
    layout->addWidget(new QLabel(tr("Replace:"), this), 1, 0);
    layout->addWidget(m_replace, 1, 1);
    layout->addWidget(replace, 1, 2);
    layout->addWidget(replaceAll, 1, 3);
    layout->setColumnStretch(1, 1);
}
