// KChar and the narrow text of a code page, through a wide text of (size x 3) / 2 units.
#include <cstdint>
#include <cstdlib>

#include "codetables/codepage_front.h"
#include "codetables/kchar_internal.h"

namespace {

// The intermediate wide text, on the stack for the sizes of everyday text.
class ScratchWide {
public:
    explicit ScratchWide(int size) {
        long long units = static_cast<long long>(size) * 3 / 2;
        if (units > INT32_MAX / 2) units = INT32_MAX / 2;
        units_ = static_cast<int>(units);
        data_ = units_ <= kLocalUnits ? local_ : static_cast<WCHAR*>(std::malloc(sizeof(WCHAR) * units_));
        if (!data_) units_ = 0;
        if (units_ > 0) data_[0] = 0;
    }
    ~ScratchWide() {
        if (data_ != local_) std::free(data_);
    }
    ScratchWide(const ScratchWide&) = delete;
    ScratchWide& operator=(const ScratchWide&) = delete;
    WCHAR* data() { return data_; }
    int units() const { return units_; }
    // Room for more than a terminator.
    bool usable() const { return units_ > 1; }
    void Terminate(int count) {
        if (units_ > 0) data_[count >= 0 && count < units_ ? count : units_ - 1] = 0;
    }

private:
    static constexpr int kLocalUnits = 2048;
    WCHAR local_[kLocalUnits];
    WCHAR* data_ = nullptr;
    int units_ = 0;
};

template <typename Unit>
bool TooSmall(Unit* buffer, int size) {
    if (size >= 2) return !buffer;
    if (buffer && size == 1) buffer[0] = 0;
    return true;
}

}  // namespace

int ZelKCharToAnsi(DWORD flags, DWORD codePage, const KChar* text, int length, char* buffer, int size,
                   const char* defaultChar) {
    if (TooSmall(buffer, size)) return 0;
    ScratchWide wide(size);
    if (wide.usable()) wide.Terminate(ZelKCharToUnicode(flags, text, length, wide.data(), wide.units(), nullptr));
    return ZelUnicodeToAnsi(flags, codePage, wide.data() ? wide.data() : u"", -1, buffer, size, defaultChar);
}

int ZelAnsiToKChar(DWORD flags, DWORD codePage, const char* text, int length, KChar* buffer, int size,
                   const KChar* substitute) {
    if (TooSmall(buffer, size)) return 0;
    ScratchWide wide(size);
    if (wide.usable() && text) wide.Terminate(CodePageToUnicode(codePage, 1, text, length, wide.data(), wide.units()));
    return ZelUnicodeToKChar(flags, wide.data() ? wide.data() : u"", -1, buffer, size, substitute);
}

int ZelKCharToAnsi(DWORD flags, DWORD codePage, const KChar* text, int length, char* buffer, int size) {
    if (TooSmall(buffer, size)) return 0;
    ScratchWide wide(size);
    if (wide.usable()) wide.Terminate(ZelKCharToUnicode(flags, text, length, wide.data(), wide.units()));
    return ZelUnicodeToAnsi(flags, codePage, wide.data() ? wide.data() : u"", -1, buffer, size);
}

int ZelAnsiToKChar(DWORD flags, DWORD codePage, const char* text, int length, KChar* buffer, int size) {
    if (TooSmall(buffer, size)) return 0;
    ScratchWide wide(size);
    if (wide.usable() && text) {
        const int count = ZelAnsiToUnicode(flags, codePage, text, length, wide.data(), wide.units());
        // A failed conversion by the system leaves no terminator.
        wide.Terminate(count > 0 ? count : 0);
    }
    return ZelUnicodeToKChar(flags, wide.data() ? wide.data() : u"", -1, buffer, size);
}
