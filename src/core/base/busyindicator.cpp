#include "busyindicator.h"

namespace {

BusyIndicator* installed = nullptr;
int depth = 0;

} // namespace

void BusyIndicator::install(BusyIndicator* indicator)
{
    if (installed && depth > 0)
        installed->setBusy(false);
    installed = indicator;
    if (installed && depth > 0)
        installed->setBusy(true);
}

BusyIndicator::Scope::Scope()
{
    if (depth++ == 0 && installed)
        installed->setBusy(true);
}

BusyIndicator::Scope::~Scope()
{
    if (--depth == 0 && installed)
        installed->setBusy(false);
}
