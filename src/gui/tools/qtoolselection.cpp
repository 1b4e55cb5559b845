#include "qtoolselection.h"

#include "core/project/itemoperations.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

QToolSelection::QToolSelection(const QString& identifier, QWidget* parent)
    : QTool(identifier, parent)
    , m_layout(new QVBoxLayout(this))
    , m_mode(new QComboBox)
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_mode->setObjectName(QStringLiteral("cbSelectionMode"));
    m_mode->addItems({ tr("New selection"), tr("Add to selection"), tr("Subtract from selection") });
    m_layout->addWidget(new QLabel(tr("Mode:")));
    m_layout->addWidget(m_mode);
}

void QToolSelection::finishPanel()
{
    const struct {
        const char* name;
        QString text;
        void (QToolSelection::*command)();
    } commands[] = {
        { "pbSelectAllMask", tr("Select all (mask)"), &QToolSelection::selectAllMask },
        { "pbUnselectAllMask", tr("Unselect all (mask)"), &QToolSelection::unselectAllMask },
        { "pbInvertSelectionMask", tr("Invert selection (mask)"), &QToolSelection::invertMask },
    };
    for (const auto& c : commands) {
        auto* button = new QPushButton(c.text);
        button->setObjectName(QLatin1String(c.name));
        connect(button, &QPushButton::clicked, this, c.command);
        m_layout->addWidget(button);
    }
    m_layout->addStretch(1);
    watchPanel();
}

MaskEdit::Mode QToolSelection::mode() const
{
    switch (m_mode->currentIndex()) {
    case 1:
        return MaskEdit::Mode::Add;
    case 2:
        return MaskEdit::Mode::Subtract;
    default:
        return MaskEdit::Mode::New;
    }
}

void QToolSelection::setMode(MaskEdit::Mode mode)
{
    m_mode->setCurrentIndex(mode == MaskEdit::Mode::Add ? 1 : mode == MaskEdit::Mode::Subtract ? 2 : 0);
}

MaskEdit::Mode QToolSelection::gestureMode() const
{
    if (modifiers() & Qt::ShiftModifier)
        return MaskEdit::Mode::Add;
    if (modifiers() & Qt::ControlModifier)
        return MaskEdit::Mode::Subtract;
    return mode();
}

void QToolSelection::selectAllMask()
{
    if (project())
        ItemOperations::selectAllMask(*project(), targetItems());
}

void QToolSelection::unselectAllMask()
{
    if (project())
        ItemOperations::unselectAllMask(*project(), targetItems());
}

void QToolSelection::invertMask()
{
    if (project())
        ItemOperations::invertMask(*project(), targetItems());
}
