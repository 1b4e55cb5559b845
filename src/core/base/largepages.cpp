#include "largepages.h"

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

void LargePages::advise(void* data, std::size_t size)
{
#if defined(Q_OS_LINUX) && defined(MADV_HUGEPAGE)
    // Only whole large pages inside the buffer can be backed so; the edges stay as they are.
    constexpr quintptr Large = quintptr(2) << 20;
    const quintptr begin = (quintptr(data) + Large - 1) & ~(Large - 1);
    const quintptr end = (quintptr(data) + size) & ~(Large - 1);
    if (end > begin)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE); // only advice: failure changes nothing
#else
    Q_UNUSED(data);
    Q_UNUSED(size);
#endif
}
