#pragma once

#include "core/base/busyindicator.h"

/** Shows the core's busy stretches as the wait cursor over the whole application. */
class BusyCursor final : public BusyIndicator {
public:
    void setBusy(bool busy) override;
};
