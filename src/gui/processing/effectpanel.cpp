#include "effectpanel.h"

QString EffectPanel::title()
{
    return effect().name();
}

void EffectPanel::pickPoint(const QPoint&) { }
