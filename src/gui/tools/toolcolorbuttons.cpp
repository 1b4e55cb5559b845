#include "toolcolorbuttons.h"

#include "qtool.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

namespace {

QIcon swatch(const QColor& color)
{
    QPixmap pixmap(24, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.fillRect(pixmap.rect(), color);
    painter.setPen(Qt::darkGray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

} // namespace

ToolColorButtons::ToolColorButtons(QTool* tool, QWidget* parent)
    : QWidget(parent)
    , m_tool(tool)
    , m_left(new QToolButton)
    , m_right(new QToolButton)
{
    m_left->setObjectName(QStringLiteral("tbLeftColor"));
    m_right->setObjectName(QStringLiteral("tbRightColor"));
    m_left->setText(tr("Left"));
    m_right->setText(tr("Right"));
    m_left->setToolTip(tr("Colour of the left mouse button"));
    m_right->setToolTip(tr("Colour of the right mouse button"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QToolButton* button : { m_left, m_right }) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        layout->addWidget(button);
    }
    layout->addStretch(1);
    connect(m_left, &QToolButton::clicked, this, [this] { choose(true); });
    connect(m_right, &QToolButton::clicked, this, [this] { choose(false); });
    connect(tool, &QTool::colorsChanged, this, &ToolColorButtons::refresh);
    refresh();
}

void ToolColorButtons::refresh()
{
    m_left->setIcon(swatch(m_tool->leftColor()));
    m_right->setIcon(swatch(m_tool->rightColor()));
}

void ToolColorButtons::choose(bool left)
{
    const QColor current = left ? m_tool->leftColor() : m_tool->rightColor();
    const QColor chosen = QColorDialog::getColor(current, this,
        left ? tr("Colour of the left mouse button") : tr("Colour of the right mouse button"),
        QColorDialog::ShowAlphaChannel);
    if (!chosen.isValid())
        return;
    if (left)
        m_tool->setLeftColor(chosen);
    else
        m_tool->setRightColor(chosen);
}
