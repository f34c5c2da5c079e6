// Win32's rules for calls that give text into a caller's buffer with a size that counts the
// terminator: size 0 asks for the size, and a short buffer gets nothing.
#ifndef ZEL_PLATFORM_POSIX_TEXT_RESULT_H
#define ZEL_PLATFORM_POSIX_TEXT_RESULT_H

#include <cstring>
#include <string>

#include "platform/win32.h"

// False, with ERROR_INVALID_PARAMETER, for a negative size or a size without a buffer.
inline bool ZelValidOutputSize(const void* buffer, int size) {
    if (size < 0 || (size > 0 && !buffer)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

// The units given or needed, terminator included; 0 with ERROR_INSUFFICIENT_BUFFER when short.
template <typename Char>
int ZelDeliverText(const std::basic_string<Char>& text, Char* buffer, int size) {
    const size_t needed = text.size() + 1;
    if (size == 0) return static_cast<int>(needed);
    if (static_cast<size_t>(size) < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(buffer, text.c_str(), needed * sizeof(Char));
    return static_cast<int>(needed);
}

#endif  // ZEL_PLATFORM_POSIX_TEXT_RESULT_H
