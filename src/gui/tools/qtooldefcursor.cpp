#include "qtooldefcursor.h"

#include <QLabel>
#include <QVBoxLayout>

QToolDefCursor::QToolDefCursor(QWidget* parent)
    : QTool(QStringLiteral("DEF_CURSOR"), parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* hint = new QLabel(tr("Select items with a click or a rubber band, move them by dragging."));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    layout->addStretch(1);
}
