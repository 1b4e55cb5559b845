#include "effectpanel.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QGroupBox>
#include <QVBoxLayout>

QString EffectPanel::title()
{
    return effect().name();
}

void EffectPanel::pickPoint(const QPoint&) { }

QWidget* EffectPanel::choiceGroup(
    const QString& title, std::initializer_list<QAbstractButton*> buttons, const std::function<void()>& chosen)
{
    auto* box = new QGroupBox(title, this);
    auto* layout = new QVBoxLayout(box);
    auto* group = new QButtonGroup(box);
    for (QAbstractButton* button : buttons) {
        layout->addWidget(button);
        group->addButton(button);
        connect(button, &QAbstractButton::toggled, this, [chosen](bool on) {
            if (on)
                chosen();
        });
    }
    return box;
}

EffectOperations::Outcome EffectPanel::applyTo(
    Project& project, const QList<QSciImage*>& items, ProgressSink* progress, QString* message)
{
    return EffectOperations::apply(project, items, effect(), progress, message);
}
