// Memory of the tree's keys and of the indexes of their children. A large tree is read at random:
// its keys and indexes are kept in blocks that a few large pages can map, so that a look-up costs
// cache misses and not also a walk of the page tables for each of them.
#ifndef ZEL_SETTINGS_VIRTUAL_REGISTRY_MEMORY_H
#define ZEL_SETTINGS_VIRTUAL_REGISTRY_MEMORY_H

#include <cstddef>
#include <new>

// A block of bytes, aligned to a cache line; from 2 MB on, aligned to 2 MB and offered to the
// system's large pages. Throws std::bad_alloc.
void* VirtualRegAllocate(size_t bytes);
// bytes as given to VirtualRegAllocate.
void VirtualRegRelease(void* block, size_t bytes);

template <typename T>
struct VirtualRegAllocator {
    using value_type = T;
    constexpr VirtualRegAllocator() = default;
    template <typename U>
    constexpr VirtualRegAllocator(const VirtualRegAllocator<U>&) {}
    T* allocate(size_t count) {
        if (count > size_t(-1) / sizeof(T)) throw std::bad_alloc();
        return static_cast<T*>(VirtualRegAllocate(count * sizeof(T)));
    }
    void deallocate(T* block, size_t count) { VirtualRegRelease(block, count * sizeof(T)); }
    template <typename U>
    bool operator==(const VirtualRegAllocator<U>&) const {
        return true;
    }
};

#endif  // ZEL_SETTINGS_VIRTUAL_REGISTRY_MEMORY_H
