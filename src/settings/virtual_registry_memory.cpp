// Large blocks on large pages, where the system offers them; the hint changes nothing else.
#include "settings/virtual_registry_memory.h"

#include <sys/mman.h>

#include <cstdlib>

namespace {

constexpr size_t kLargePage = size_t(2) << 20;
constexpr size_t kCacheLine = 64;

}  // namespace

void* VirtualRegAllocate(size_t bytes) {
    if (bytes < kLargePage) {
        // A cache line's alignment, which the keys ask for.
        if (void* block = std::aligned_alloc(kCacheLine, (bytes + kCacheLine - 1) / kCacheLine * kCacheLine))
            return block;
        throw std::bad_alloc();
    }
    const size_t rounded = (bytes + kLargePage - 1) / kLargePage * kLargePage;
    void* block = std::aligned_alloc(kLargePage, rounded);
    if (!block) throw std::bad_alloc();
    madvise(block, rounded, MADV_HUGEPAGE);
    return block;
}

void VirtualRegRelease(void* block, size_t /*bytes*/) { std::free(block); }
