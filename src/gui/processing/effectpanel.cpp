#include "effectpanel.h"

QString EffectPanel::title()
{
    return effect().name();
}
