// What a profile read finds, before it meets the caller's buffer, and the Win32 rules by which it
// goes there. The W calls deliver it in units, the A calls in bytes of the ANSI code page.
#ifndef ZEL_PLATFORM_POSIX_PROFILE_ANSWER_H
#define ZEL_PLATFORM_POSIX_PROFILE_ANSWER_H

#include <algorithm>
#include <string>
#include <vector>

#include <zel/wintypes.h>

namespace zelprofile {

struct ProfileAnswer {
    bool list = false;                 // names of sections or keys, rather than one value
    std::vector<std::u16string> items;  // the names, or the one value (or default)
};

// The value of a key, its default, or the list that a null section or key asks for. The last
// error is ERROR_FILE_NOT_FOUND when the file or the key does not exist, else ERROR_SUCCESS or why
// the file could not be read (the answer is then that of a missing file).
ProfileAnswer QueryProfile(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPCWSTR fileName);

// The integer of a value: blanks, a sign, then digits in base 16, 8 or 2 after "0x", "0o" or
// "0b", else decimal, as far as they go; 0 when no digit follows. Wraps around in 32 bits.
UINT ParseProfileInt(const std::u16string& text);

// Puts the answer into the caller's buffer. A value that does not fit is cut to size - 1 with its
// terminator and gives size - 1; a list that does not fit is cut to size - 2 and ended by two
// zeros, giving size - 2. fit(text, limit) gives the longest prefix of text, at most limit long,
// that ends between two characters. Nothing is written outside size, nor with size 0.
template <typename Char, typename Fit>
DWORD DeliverProfileAnswer(const std::vector<std::basic_string<Char>>& items, bool list, Char* buffer, DWORD size,
                           Fit fit) {
    if (!buffer || size == 0) return 0;
    if (!list) {
        const std::basic_string<Char> empty;
        const std::basic_string<Char>& text = items.empty() ? empty : items.front();
        if (text.size() < size) {
            std::copy(text.begin(), text.end(), buffer);
            buffer[text.size()] = 0;
            return static_cast<DWORD>(text.size());
        }
        const size_t kept = fit(text, size - 1);
        std::copy(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(kept), buffer);
        std::fill(buffer + kept, buffer + size, Char{0});
        return size - 1;
    }
    size_t total = 0;
    for (const auto& item : items) total += item.size() + 1;
    if (total < size) {
        Char* at = buffer;
        for (const auto& item : items) {
            at = std::copy(item.begin(), item.end(), at);
            *at++ = 0;
        }
        *at = 0;
        // An empty list is ended by two zeros where they fit.
        if (items.empty() && size > 1) buffer[1] = 0;
        return static_cast<DWORD>(total);
    }
    if (size < 2) {
        buffer[0] = 0;
        return 0;
    }
    const size_t limit = size - 2;
    size_t at = 0;
    for (const auto& item : items) {
        if (at + item.size() + 1 <= limit) {
            std::copy(item.begin(), item.end(), buffer + at);
            at += item.size();
            buffer[at++] = 0;
            continue;
        }
        const size_t kept = fit(item, limit - at);
        std::copy(item.begin(), item.begin() + static_cast<std::ptrdiff_t>(kept), buffer + at);
        at += kept;
        break;
    }
    std::fill(buffer + at, buffer + size, Char{0});
    return size - 2;
}

}  // namespace zelprofile

#endif  // ZEL_PLATFORM_POSIX_PROFILE_ANSWER_H
