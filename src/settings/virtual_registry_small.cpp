// Short names and bytes in place, longer ones on the heap.
#include <algorithm>
#include <cstring>

#include "settings/virtual_registry_small.h"

#include "settings/virtual_registry_memory.h"

VirtualRegName& VirtualRegName::operator=(std::u16string_view text) {
    char16_t* heap = nullptr;
    if (text.size() > kInlineUnits) {
        heap = static_cast<char16_t*>(VirtualRegAllocate((text.size() + 1) * sizeof(char16_t)));
        std::copy(text.begin(), text.end(), heap);
        heap[text.size()] = 0;
    } else {
        std::copy(text.begin(), text.end(), inline_);
        inline_[text.size()] = 0;
    }
    if (heap_) Release();
    heap_ = heap;
    size_ = static_cast<uint32_t>(text.size());
    return *this;
}

void VirtualRegName::Release() { VirtualRegRelease(heap_, (size_ + 1) * sizeof(char16_t)); }

void VirtualRegBytes::Release() { VirtualRegRelease(place_.heap, size_); }

VirtualRegBytes::VirtualRegBytes(const BYTE* bytes, size_t count) {
    if (count > kInlineBytes) place_.heap = static_cast<BYTE*>(VirtualRegAllocate(count));
    if (count) std::memcpy(count > kInlineBytes ? place_.heap : place_.bytes, bytes, count);
    size_ = static_cast<uint32_t>(count);
}

VirtualRegBytes& VirtualRegBytes::operator=(VirtualRegBytes&& other) noexcept {
    if (this == &other) return *this;
    if (size_ > kInlineBytes) Release();
    size_ = other.size_;
    place_ = other.place_;
    other.size_ = 0;
    return *this;
}
