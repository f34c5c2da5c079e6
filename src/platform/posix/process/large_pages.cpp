// Large pages for big blocks: the kernel's transparent huge pages, where it has them.
#include <sys/mman.h>

#include "platform/win32.h"

void ZelPlatformPreferLargePages(void* block, size_t bytes) { madvise(block, bytes, MADV_HUGEPAGE); }
