// Memory of the tree: keys, their value arrays, long names and bytes, and the indexes of their
// children. Not locked: like the tree, the memory of all trees of the process is used by one
// thread at a time.
#ifndef ZEL_SETTINGS_VIRTUAL_REGISTRY_MEMORY_H
#define ZEL_SETTINGS_VIRTUAL_REGISTRY_MEMORY_H

#include <cstddef>
#include <new>

// The free lists must outlive every block taken from them: the tree calls this before it makes
// its first key, so that the library's unload, which goes in the reverse order of building,
// releases the tree first.
void VirtualRegPrepareMemory();

// A block of bytes, aligned to 16; from 2 MB on, from the system as ZelPlatformAllocateLargeBlock
// gives it. Up to 1 KB, a released block serves the next one of its size. Throws std::bad_alloc.
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
