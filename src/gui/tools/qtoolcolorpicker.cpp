#include "qtoolcolorpicker.h"

#include "toolcolorbuttons.h"

#include <QVBoxLayout>

QToolColorPicker::QToolColorPicker(QWidget* parent)
    : QTool(QStringLiteral("PICK_COLOR"), parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    layout->addStretch(1);
}

void QToolColorPicker::endDrag(const QPoint& point, Qt::MouseButton button)
{
    const QSciImage* source = item();
    if (!source || !source->picture().rect().contains(point))
        return;
    const QColor color = source->picture().pixelColor(point);
    if (button == Qt::RightButton)
        setRightColor(color);
    else
        setLeftColor(color);
}
