// Large blocks on large pages, where the system offers them; the hint changes nothing else.
#include "settings/virtual_registry_memory.h"

#include "platform/win32.h"

namespace {

constexpr size_t kLargePage = size_t(2) << 20;
constexpr size_t kCacheLine = 64;

// A cache line's alignment, which the keys ask for; a large page's for blocks of one or more.
std::align_val_t AlignmentOf(size_t bytes) { return std::align_val_t(bytes < kLargePage ? kCacheLine : kLargePage); }

size_t Rounded(size_t bytes) {
    const size_t unit = size_t(AlignmentOf(bytes));
    return (bytes + unit - 1) / unit * unit;
}

}  // namespace

void* VirtualRegAllocate(size_t bytes) {
    void* block = ::operator new(Rounded(bytes), AlignmentOf(bytes));
    if (bytes >= kLargePage) ZelPlatformPreferLargePages(block, Rounded(bytes));
    return block;
}

void VirtualRegRelease(void* block, size_t bytes) { ::operator delete(block, AlignmentOf(bytes)); }
