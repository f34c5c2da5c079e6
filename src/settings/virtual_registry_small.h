// What the tree keeps of a key's name and of a value's bytes: short ones in place, so that
// reading them touches nothing else and making them allocates nothing; longer ones in the tree's
// own memory.
#ifndef ZEL_SETTINGS_VIRTUAL_REGISTRY_SMALL_H
#define ZEL_SETTINGS_VIRTUAL_REGISTRY_SMALL_H

#include <zel/wintypes.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

// A key's name, zero-terminated.
class VirtualRegName {
public:
    VirtualRegName() = default;
    VirtualRegName(const VirtualRegName&) = delete;
    VirtualRegName& operator=(const VirtualRegName&) = delete;
    ~VirtualRegName() {
        if (heap_) Release();
    }
    // Out of memory throws, leaving the name as it was.
    VirtualRegName& operator=(std::u16string_view text);

    const char16_t* c_str() const { return heap_ ? heap_ : inline_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    operator std::u16string_view() const { return {c_str(), size_}; }
    bool operator==(std::u16string_view other) const { return std::u16string_view(*this) == other; }

private:
    // Gives the heap text back; only for a name that has one.
    void Release();

    static constexpr size_t kInlineUnits = 13;
    char16_t* heap_ = nullptr;
    uint32_t size_ = 0;
    char16_t inline_[kInlineUnits + 1] = {};
};

// A value's bytes.
class VirtualRegBytes {
public:
    VirtualRegBytes() = default;
    // Out of memory throws.
    VirtualRegBytes(const BYTE* bytes, size_t count);
    VirtualRegBytes(VirtualRegBytes&& other) noexcept : size_(other.size_), place_(other.place_) { other.size_ = 0; }
    VirtualRegBytes& operator=(VirtualRegBytes&& other) noexcept;
    VirtualRegBytes(const VirtualRegBytes&) = delete;
    VirtualRegBytes& operator=(const VirtualRegBytes&) = delete;
    ~VirtualRegBytes() {
        if (size_ > kInlineBytes) Release();
    }

    const BYTE* data() const { return size_ > kInlineBytes ? place_.heap : place_.bytes; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    BYTE operator[](size_t at) const { return data()[at]; }

private:
    // Gives the heap bytes back; only for bytes that have them.
    void Release();

    static constexpr size_t kInlineBytes = 24;
    uint32_t size_ = 0;
    union Place {
        BYTE bytes[kInlineBytes];
        BYTE* heap;
    } place_ = {};
};

#endif  // ZEL_SETTINGS_VIRTUAL_REGISTRY_SMALL_H
