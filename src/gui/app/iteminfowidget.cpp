#include "iteminfowidget.h"

#include <QHBoxLayout>
#include <QLabel>

ItemInfoWidget::ItemInfoWidget(QWidget* parent)
    : QFrame(parent)
    , m_info(new QLabel(this))
{
    setObjectName(QStringLiteral("itemInfoWidget"));
    setFrameShape(QFrame::StyledPanel);
    auto* caption = new QLabel(tr("Item info:"), this);
    m_info->setObjectName(QStringLiteral("lbItemInfo"));
    m_info->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(caption);
    layout->addWidget(m_info, 1);
}

void ItemInfoWidget::setInfo(const QString& text)
{
    m_info->setText(text);
}
