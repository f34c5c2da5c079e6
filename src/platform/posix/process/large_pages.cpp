// Large blocks straight from the system, aligned to 2 MB and offered to the kernel's transparent
// huge pages before their first use: memory that the heap hands out again may already be mapped
// with small pages, which a hint no longer changes.
#include <sys/mman.h>

#include <cstdint>
#include <new>

#include "platform/win32.h"

namespace {

constexpr size_t kLargePage = size_t(2) << 20;

// Up to a whole large page: the system maps and unmaps whole pages, and a block of part of one
// would leave the rest of it mapped when it is released.
uintptr_t Rounded(uintptr_t bytes) { return (bytes + kLargePage - 1) & ~uintptr_t(kLargePage - 1); }

}  // namespace

void* ZelPlatformAllocateLargeBlock(size_t bytes) {
    bytes = Rounded(bytes);
    // Mapped with a large page to spare, then cut to the aligned part.
    const size_t mapped = bytes + kLargePage;
    void* place = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) throw std::bad_alloc();
    const uintptr_t start = reinterpret_cast<uintptr_t>(place), end = start + mapped;
    const uintptr_t aligned = Rounded(start);
    if (aligned > start) munmap(place, aligned - start);
    if (end > aligned + bytes) munmap(reinterpret_cast<void*>(aligned + bytes), end - aligned - bytes);
    madvise(reinterpret_cast<void*>(aligned), bytes, MADV_HUGEPAGE);
    return reinterpret_cast<void*>(aligned);
}

void ZelPlatformReleaseLargeBlock(void* block, size_t bytes) { munmap(block, Rounded(bytes)); }
