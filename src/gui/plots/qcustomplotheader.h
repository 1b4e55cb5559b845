#pragma once

// The library's header still uses foreach, which the project's strict defines switch off: a range-for stands in.
#ifndef foreach
#define foreach(variable, container) for (variable : qAsConst(container))
#define VELMORA_DEFINED_FOREACH
#endif
#include <qcustomplot.h>
#ifdef VELMORA_DEFINED_FOREACH
#undef foreach
#undef VELMORA_DEFINED_FOREACH
#endif
