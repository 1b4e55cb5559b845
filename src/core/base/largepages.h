#pragma once

#include <cstddef>

/**
 * Fresh buffers of tens of megabytes are filled once, at once: a file's matrices, say. Touched 4 KiB page by
 * 4 KiB page, the kernel's page faults cost as much as a fifth of a load; asking for 2 MiB pages spares most.
 */
class LargePages final {
public:
    /** Asks the kernel to back the not yet touched buffer at @p data with large pages; elsewhere does nothing. */
    static void advise(void* data, std::size_t size);
};
