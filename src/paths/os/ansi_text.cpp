#include "paths/os/ansi_text.h"

#include <zel/codetables.h>
#include <zel/paths.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "strings/wstr.h"

namespace {
// The conversions count in int: a longer text is cut to what that count can hold.
constexpr size_t kLargestCount = INT_MAX;
}  // namespace

bool ZelAnsiMode() {
    const int version = ZelGetWinVersion();
    return version >= 1 && version <= 3;
}

ZelNarrowArg::ZelNarrowArg(const WCHAR* text) {
    if (!text) return;
    const size_t length = wcslen(text);
    size_t bytes = length < (kLargestCount - 4) / 4 ? length * 4 + 4 : kLargestCount;
    char* buffer = local_;
    if (bytes > kLocalBytes) {
        heap_ = static_cast<char*>(std::malloc(bytes));
        if (heap_) {
            buffer = heap_;
        } else {
            bytes = kLocalBytes;
        }
    }
    buffer[0] = 0;
    ZelUnicodeToAnsi(0, 0, text, -1, buffer, static_cast<int>(bytes), nullptr);
    buffer[bytes - 1] = 0;
    text_ = buffer;
}

ZelNarrowArg::~ZelNarrowArg() { std::free(heap_); }

ZelWideResult::ZelWideResult(const char* text, size_t maxBytes) {
    local_[0] = 0;
    if (!text) return;
    const size_t length = strnlen(text, maxBytes < kLargestCount ? maxBytes : kLargestCount);
    size_t units = length < (kLargestCount - 4) / 3 ? (length * 3 + 4) / 2 : kLargestCount / 2;
    if (units > kLocalUnits) {
        heap_ = static_cast<WCHAR*>(std::malloc(units * sizeof(WCHAR)));
        if (heap_) {
            text_ = heap_;
        } else {
            units = kLocalUnits;
        }
    }
    // The length is given rather than -1, so that text without a terminator is read no further.
    text_[0] = 0;
    ZelAnsiToUnicode(0, 0, text, static_cast<int>(length), text_, static_cast<int>(units), 0);
    text_[units - 1] = 0;
}

ZelWideResult::~ZelWideResult() { std::free(heap_); }

void ZelWideResult::CopyTo(WCHAR* buffer, size_t size) const {
    if (!buffer || size == 0) return;
    size_t length = wcslen(text_);
    if (length >= size) length = size - 1;
    std::memcpy(buffer, text_, length * sizeof(WCHAR));
    buffer[length] = 0;
}
