// Short names and bytes in place, longer ones on the heap.
#include <algorithm>
#include <cstring>

#include "settings/virtual_registry_small.h"

VirtualRegName& VirtualRegName::operator=(std::u16string_view text) {
    char16_t* heap = nullptr;
    if (text.size() > kInlineUnits) {
        heap = new char16_t[text.size() + 1];
        std::copy(text.begin(), text.end(), heap);
        heap[text.size()] = 0;
    } else {
        std::copy(text.begin(), text.end(), inline_);
        inline_[text.size()] = 0;
    }
    delete[] heap_;
    heap_ = heap;
    size_ = static_cast<uint32_t>(text.size());
    return *this;
}

VirtualRegBytes::VirtualRegBytes(const BYTE* bytes, size_t count) {
    if (count > kInlineBytes) place_.heap = new BYTE[count];
    if (count) std::memcpy(count > kInlineBytes ? place_.heap : place_.bytes, bytes, count);
    size_ = static_cast<uint32_t>(count);
}

VirtualRegBytes& VirtualRegBytes::operator=(VirtualRegBytes&& other) noexcept {
    if (this == &other) return *this;
    if (size_ > kInlineBytes) delete[] place_.heap;
    size_ = other.size_;
    place_ = other.place_;
    other.size_ = 0;
    return *this;
}
