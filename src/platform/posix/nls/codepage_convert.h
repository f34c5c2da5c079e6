// The machinery that MultiByteToWideChar and WideCharToMultiByte share: the output sinks, the
// iconv descriptor of each thread, and the conversions in either direction.
#ifndef ZEL_PLATFORM_POSIX_CODEPAGE_CONVERT_H
#define ZEL_PLATFORM_POSIX_CODEPAGE_CONVERT_H

#include <iconv.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/posix/nls/codepage_names.h"

namespace zelcp {

constexpr WCHAR kReplacement = 0xFFFD;
const iconv_t kNoDescriptor = reinterpret_cast<iconv_t>(-1);

inline bool IsHighSurrogate(uint32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
inline bool IsLowSurrogate(uint32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }

// The calling thread's descriptor from the code page to 16-bit text (toWide) or back, or
// kNoDescriptor when iconv has no such conversion.
iconv_t Descriptor(const ZelCodePage& page, bool toWide);

// ---------------------------------------------------------------------------------------------
// Output: counts only when there is no buffer, otherwise writes and reports when it is full.

template <typename T>
struct Sink {
    T* out;
    size_t capacity;
    size_t count = 0;

    bool Put(const T* items, size_t n) {
        if (out) {
            if (n > capacity - count) return false;
            std::memcpy(out + count, items, n * sizeof(T));
        }
        count += n;
        return true;
    }
    bool Put(T item) { return Put(&item, 1); }

    // Bytes below 0x80 and 16-bit units below 0x80 are the same characters.
    template <typename S>
    bool PutAscii(const S* items, size_t n) {
        if (out) {
            if (n > capacity - count) return false;
            T* d = out + count;
            for (size_t i = 0; i < n; ++i) d[i] = static_cast<T>(items[i]);
        }
        count += n;
        return true;
    }
};
using WideSink = Sink<WCHAR>;
using ByteSink = Sink<char>;

// What stands for a character the code page lacks, and whether it stood for one.
struct DefaultChar {
    char bytes[2];
    size_t length;
    bool used = false;
};

// Converts n bytes of the code page; strict fails on malformed input rather than replacing it.
DWORD Decode(const ZelCodePage& page, const char* s, size_t n, bool strict, WideSink& sink);

// Converts n units to the code page; strict fails on lone surrogates rather than replacing them.
DWORD Encode(const ZelCodePage& page, const WCHAR* s, size_t n, bool strict, DefaultChar& fallback,
             ByteSink& sink);

}  // namespace zelcp

#endif  // ZEL_PLATFORM_POSIX_CODEPAGE_CONVERT_H
