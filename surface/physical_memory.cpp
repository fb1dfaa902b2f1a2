#include "surface/physical_memory.h"

// The standard library can't tell how much memory there is, so this one file asks the system.
#if defined(_WIN32)
#define NOMINMAX
#include <windows.h>
#elif __has_include(<unistd.h>)
#include <unistd.h>
#endif

namespace tavrik {

std::size_t PhysicalMemory() {
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) != 0 ? std::size_t(status.ullTotalPhys) : 0;
#elif defined(_SC_PHYS_PAGES)
    const long pages = sysconf(_SC_PHYS_PAGES), pageSize = sysconf(_SC_PAGE_SIZE);
    return pages > 0 && pageSize > 0 ? std::size_t(pages) * std::size_t(pageSize) : 0;
#else
    return 0;
#endif
}

}  // namespace tavrik
