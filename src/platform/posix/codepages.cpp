// MultiByteToWideChar and WideCharToMultiByte on iconv, with the Win32 counting rules, and the
// ANSI and OEM code pages of the system's language.
//
// The Unicode forms (UTF-8, UTF-16, UTF-32) are converted here; every other code page goes through
// an iconv descriptor that each thread keeps open. Runs of ASCII skip iconv altogether.
#include <errno.h>
#include <iconv.h>

#include <bit>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include "platform/posix/codepage_names.h"
#include "platform/posix/thread_object.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr WCHAR kReplacement = 0xFFFD;
constexpr const char* kWideName = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";
const iconv_t kNoDescriptor = reinterpret_cast<iconv_t>(-1);

bool IsHighSurrogate(uint32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
bool IsLowSurrogate(uint32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }

// ---------------------------------------------------------------------------------------------
// iconv descriptors, per thread: a descriptor carries conversion state and may not be shared.

struct IconvCache {
    struct Entry {
        UINT codePage = 0;
        bool toWide = false;
        iconv_t cd = kNoDescriptor;
    };
    static constexpr size_t kSize = 8;
    Entry entries[kSize];
    size_t used = 0;
    size_t nextVictim = 0;

    ~IconvCache() {
        for (size_t i = 0; i < used; ++i) iconv_close(entries[i].cd);
    }
};

iconv_t Descriptor(const ZelCodePage& page, bool toWide) {
    IconvCache& cache = ZelThreadObject<IconvCache>();
    for (size_t i = 0; i < cache.used; ++i) {
        const IconvCache::Entry& e = cache.entries[i];
        if (e.codePage == page.codePage && e.toWide == toWide) return e.cd;
    }
    iconv_t cd = toWide ? iconv_open(kWideName, page.iconvName) : iconv_open(page.iconvName, kWideName);
    if (cd == kNoDescriptor) return cd;
    size_t slot;
    if (cache.used < IconvCache::kSize) {
        slot = cache.used++;
    } else {
        slot = cache.nextVictim;
        cache.nextVictim = (cache.nextVictim + 1) % IconvCache::kSize;
        iconv_close(cache.entries[slot].cd);
    }
    cache.entries[slot] = {page.codePage, toWide, cd};
    return cd;
}

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

size_t AsciiPrefix(const unsigned char* s, size_t n) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t word;
        std::memcpy(&word, s + i, 8);
        if (word & 0x8080808080808080ull) break;
    }
    while (i < n && s[i] < 0x80) ++i;
    return i;
}

size_t AsciiPrefix(const WCHAR* s, size_t n) {
    size_t i = 0;
    while (i < n && s[i] < 0x80) ++i;
    return i;
}

// ---------------------------------------------------------------------------------------------
// To 16-bit text

// A buffer of units between a decoder and the sink, so that the sink sees few, large writes.
struct WideStage {
    explicit WideStage(WideSink& target) : sink(target) {}
    WideSink& sink;
    WCHAR units[256];
    size_t n = 0;

    bool Put(uint32_t codePoint) {
        if (n + 2 > std::size(units) && !Flush()) return false;
        if (codePoint >= 0x10000) {
            codePoint -= 0x10000;
            units[n++] = static_cast<WCHAR>(0xD800 + (codePoint >> 10));
            units[n++] = static_cast<WCHAR>(0xDC00 + (codePoint & 0x3FF));
        } else {
            units[n++] = static_cast<WCHAR>(codePoint);
        }
        return true;
    }
    bool Flush() {
        bool ok = sink.Put(units, n);
        n = 0;
        return ok;
    }
};

// The length of a well-formed UTF-8 sequence at s, or 0.
size_t Utf8Sequence(const unsigned char* s, size_t n, uint32_t& codePoint) {
    unsigned char b = s[0];
    size_t length;
    unsigned char low = 0x80, high = 0xBF;
    if (b >= 0xC2 && b <= 0xDF) {
        length = 2;
        codePoint = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        length = 3;
        codePoint = b & 0x0F;
        if (b == 0xE0) low = 0xA0;
        if (b == 0xED) high = 0x9F;  // no surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
        length = 4;
        codePoint = b & 0x07;
        if (b == 0xF0) low = 0x90;
        if (b == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
        return 0;
    }
    if (length > n || s[1] < low || s[1] > high) return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((s[i] & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (s[i] & 0x3F);
    }
    return length;
}

DWORD DecodeUtf8(const unsigned char* s, size_t n, bool strict, WideSink& sink) {
    WideStage stage{sink};
    size_t i = 0;
    while (i < n) {
        if (s[i] < 0x80) {
            size_t run = AsciiPrefix(s + i, n - i);
            if (!stage.Flush() || !sink.PutAscii(s + i, run)) return ERROR_INSUFFICIENT_BUFFER;
            i += run;
            continue;
        }
        uint32_t codePoint;
        size_t length = Utf8Sequence(s + i, n - i, codePoint);
        if (!length) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            codePoint = kReplacement;
            length = 1;
        }
        if (!stage.Put(codePoint)) return ERROR_INSUFFICIENT_BUFFER;
        i += length;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

uint32_t ReadUnit(const unsigned char* s, size_t size, bool bigEndian) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) {
        size_t at = bigEndian ? i : size - 1 - i;
        value = (value << 8) | s[at];
    }
    return value;
}

DWORD DecodeUtf16(const unsigned char* s, size_t n, bool bigEndian, bool strict, WideSink& sink) {
    WideStage stage{sink};
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        uint32_t u = ReadUnit(s + i, 2, bigEndian);
        if (IsHighSurrogate(u) && i + 4 <= n && IsLowSurrogate(ReadUnit(s + i + 2, 2, bigEndian))) {
            uint32_t low = ReadUnit(s + i + 2, 2, bigEndian);
            u = 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
            i += 2;
        } else if (IsHighSurrogate(u) || IsLowSurrogate(u)) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            u = kReplacement;
        }
        if (!stage.Put(u)) return ERROR_INSUFFICIENT_BUFFER;
    }
    if (i < n) {  // half a unit at the end
        if (strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (!stage.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

DWORD DecodeUtf32(const unsigned char* s, size_t n, bool bigEndian, bool strict, WideSink& sink) {
    WideStage stage{sink};
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        uint32_t u = ReadUnit(s + i, 4, bigEndian);
        if (u > 0x10FFFF || IsHighSurrogate(u) || IsLowSurrogate(u)) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            u = kReplacement;
        }
        if (!stage.Put(u)) return ERROR_INSUFFICIENT_BUFFER;
    }
    for (; i < n; ++i) {  // a partial unit at the end: one replacement per byte
        if (strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (!stage.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

DWORD DecodeIconv(const ZelCodePage& page, const char* s, size_t n, bool strict, WideSink& sink) {
    iconv_t cd = Descriptor(page, true);
    if (cd == kNoDescriptor) return ERROR_INVALID_PARAMETER;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    // The Korean combination code page maps byte 0x5C to the won sign; as everywhere else the
    // bytes below 0x80 are ASCII here, so that paths keep their separators.
    const bool wonIsBackslash = page.codePage == 1361;

    char* in = const_cast<char*>(s);
    size_t left = n;
    WCHAR chunk[512];
    bool flushed = false;
    while (!flushed) {
        char* out = reinterpret_cast<char*>(chunk);
        size_t room = sizeof chunk;
        size_t result;
        if (left) {
            result = iconv(cd, &in, &left, &out, &room);
        } else {
            result = iconv(cd, nullptr, nullptr, &out, &room);  // what a stateful decoder still holds
            flushed = true;
        }
        int error = errno;
        size_t produced = (sizeof chunk - room) / sizeof(WCHAR);
        if (wonIsBackslash)
            for (size_t i = 0; i < produced; ++i)
                if (chunk[i] == 0x20A9) chunk[i] = u'\\';
        if (!sink.Put(chunk, produced)) return ERROR_INSUFFICIENT_BUFFER;
        if (result != static_cast<size_t>(-1) || error == E2BIG) continue;
        if (flushed) break;
        // An invalid or incomplete sequence: each of its bytes gives one replacement.
        if (strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (!sink.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
        ++in;
        --left;
    }
    return 0;
}

DWORD Decode(const ZelCodePage& page, const char* s, size_t n, bool strict, WideSink& sink) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(s);
    switch (page.kind) {
    case ZelCodePageKind::Utf8:
        return DecodeUtf8(bytes, n, strict, sink);
    case ZelCodePageKind::Utf16LE:
    case ZelCodePageKind::Utf16BE:
        return DecodeUtf16(bytes, n, page.kind == ZelCodePageKind::Utf16BE, strict, sink);
    case ZelCodePageKind::Utf32LE:
    case ZelCodePageKind::Utf32BE:
        return DecodeUtf32(bytes, n, page.kind == ZelCodePageKind::Utf32BE, strict, sink);
    case ZelCodePageKind::Utf7:
        // iconv takes a zero byte for no UTF-7 at all; here it is the zero character, as a
        // terminator must be, and each stretch between zeros is a text of its own.
        for (size_t i = 0; i < n;) {
            const char* zero = static_cast<const char*>(std::memchr(s + i, 0, n - i));
            size_t end = zero ? static_cast<size_t>(zero - s) : n;
            if (end > i) {
                size_t before = sink.count;
                if (DWORD error = DecodeIconv(page, s + i, end - i, strict, sink)) return error;
                // Shift sequences that carry no whole character are malformed.
                if (sink.count == before) {
                    if (strict) return ERROR_NO_UNICODE_TRANSLATION;
                    if (!sink.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
                }
            }
            if (zero && !sink.Put(u'\0')) return ERROR_INSUFFICIENT_BUFFER;
            i = end + 1;
        }
        return 0;
    case ZelCodePageKind::Iconv: {
        // A byte below 0x80 that no lead byte precedes is a character of its own.
        size_t run = AsciiPrefix(bytes, n);
        if (!sink.PutAscii(bytes, run)) return ERROR_INSUFFICIENT_BUFFER;
        return run == n ? 0 : DecodeIconv(page, s + run, n - run, strict, sink);
    }
    }
    return ERROR_INVALID_PARAMETER;
}

// ---------------------------------------------------------------------------------------------
// From 16-bit text

// The code point at s[i] and the units it takes; a lone surrogate reports itself as invalid.
uint32_t NextCodePoint(const WCHAR* s, size_t n, size_t i, size_t& units, bool& lone) {
    uint32_t u = s[i];
    units = 1;
    lone = false;
    if (IsHighSurrogate(u) && i + 1 < n && IsLowSurrogate(s[i + 1])) {
        units = 2;
        return 0x10000 + ((u - 0xD800) << 10) + (s[i + 1] - 0xDC00u);
    }
    lone = IsHighSurrogate(u) || IsLowSurrogate(u);
    return u;
}

struct ByteStage {
    explicit ByteStage(ByteSink& target) : sink(target) {}
    ByteSink& sink;
    char bytes[512];
    size_t n = 0;

    bool Put(const char* p, size_t k) {
        if (n + k > sizeof bytes && !Flush()) return false;
        std::memcpy(bytes + n, p, k);
        n += k;
        return true;
    }
    bool Flush() {
        bool ok = sink.Put(bytes, n);
        n = 0;
        return ok;
    }
};

size_t EncodeUnicode(ZelCodePageKind kind, uint32_t c, char* out) {
    switch (kind) {
    case ZelCodePageKind::Utf8:
        if (c < 0x80) {
            out[0] = static_cast<char>(c);
            return 1;
        }
        if (c < 0x800) {
            out[0] = static_cast<char>(0xC0 | (c >> 6));
            out[1] = static_cast<char>(0x80 | (c & 0x3F));
            return 2;
        }
        if (c < 0x10000) {
            out[0] = static_cast<char>(0xE0 | (c >> 12));
            out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out[2] = static_cast<char>(0x80 | (c & 0x3F));
            return 3;
        }
        out[0] = static_cast<char>(0xF0 | (c >> 18));
        out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[3] = static_cast<char>(0x80 | (c & 0x3F));
        return 4;
    case ZelCodePageKind::Utf16LE:
    case ZelCodePageKind::Utf16BE: {
        uint32_t units[2];
        size_t count = 1;
        units[0] = c;
        if (c >= 0x10000) {
            units[0] = 0xD800 + ((c - 0x10000) >> 10);
            units[1] = 0xDC00 + ((c - 0x10000) & 0x3FF);
            count = 2;
        }
        bool big = kind == ZelCodePageKind::Utf16BE;
        for (size_t i = 0; i < count; ++i) {
            out[2 * i + (big ? 0 : 1)] = static_cast<char>(units[i] >> 8);
            out[2 * i + (big ? 1 : 0)] = static_cast<char>(units[i] & 0xFF);
        }
        return 2 * count;
    }
    case ZelCodePageKind::Utf32LE:
    case ZelCodePageKind::Utf32BE: {
        bool big = kind == ZelCodePageKind::Utf32BE;
        for (size_t i = 0; i < 4; ++i) out[big ? 3 - i : i] = static_cast<char>((c >> (8 * i)) & 0xFF);
        return 4;
    }
    default:
        return 0;
    }
}

DWORD EncodeUnicode(ZelCodePageKind kind, const WCHAR* s, size_t n, bool strict, ByteSink& sink) {
    ByteStage stage{sink};
    size_t i = 0;
    while (i < n) {
        if (kind == ZelCodePageKind::Utf8 && s[i] < 0x80) {
            size_t run = AsciiPrefix(s + i, n - i);
            if (!stage.Flush() || !sink.PutAscii(s + i, run)) return ERROR_INSUFFICIENT_BUFFER;
            i += run;
            continue;
        }
        size_t units;
        bool lone;
        uint32_t c = NextCodePoint(s, n, i, units, lone);
        if (lone) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            c = kReplacement;
        }
        char bytes[8];
        size_t k = EncodeUnicode(kind, c, bytes);
        if (!stage.Put(bytes, k)) return ERROR_INSUFFICIENT_BUFFER;
        i += units;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

struct DefaultChar {
    char bytes[2];
    size_t length;
    bool used = false;
};

DWORD EncodeIconv(const ZelCodePage& page, const WCHAR* s, size_t n, bool strict, DefaultChar* fallback,
                  ByteSink& sink) {
    iconv_t cd = Descriptor(page, false);
    if (cd == kNoDescriptor) return ERROR_INVALID_PARAMETER;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);

    char* in = reinterpret_cast<char*>(const_cast<WCHAR*>(s));
    size_t left = n * sizeof(WCHAR);
    char chunk[1024];
    bool flushed = false;
    while (!flushed) {
        char* out = chunk;
        size_t room = sizeof chunk;
        size_t result;
        if (left) {
            result = iconv(cd, &in, &left, &out, &room);
        } else {
            result = iconv(cd, nullptr, nullptr, &out, &room);  // closes a shifted state
            flushed = true;
        }
        int error = errno;
        if (!sink.Put(chunk, sizeof chunk - room)) return ERROR_INSUFFICIENT_BUFFER;
        if (result != static_cast<size_t>(-1) || error == E2BIG) continue;
        if (flushed) break;
        // A character the code page lacks, or a lone surrogate: the default character stands
        // for it. iconv stops on character boundaries, so the position is a whole unit.
        size_t at = static_cast<size_t>(in - reinterpret_cast<char*>(const_cast<WCHAR*>(s))) / sizeof(WCHAR);
        size_t units;
        bool lone;
        NextCodePoint(s, n, at, units, lone);
        if (lone && strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (page.codePage == 1361 && s[at] == u'\\') {
            // iconv's table of this page has no backslash: byte 0x5C is one here, as on the way in.
            if (!sink.Put("\\", 1)) return ERROR_INSUFFICIENT_BUFFER;
        } else if (fallback) {
            if (!sink.Put(fallback->bytes, fallback->length)) return ERROR_INSUFFICIENT_BUFFER;
            fallback->used = true;
        }
        in += units * sizeof(WCHAR);
        left -= units * sizeof(WCHAR);
    }
    return 0;
}

DWORD Encode(const ZelCodePage& page, const WCHAR* s, size_t n, bool strict, DefaultChar& fallback,
             ByteSink& sink) {
    switch (page.kind) {
    case ZelCodePageKind::Iconv: {
        size_t run = AsciiPrefix(s, n);
        if (!sink.PutAscii(s, run)) return ERROR_INSUFFICIENT_BUFFER;
        return run == n ? 0 : EncodeIconv(page, s + run, n - run, strict, &fallback, sink);
    }
    case ZelCodePageKind::Utf7: {
        // Lone surrogates are settled first, so that iconv sees only text it can shift into.
        std::u16string clean(s, n);
        for (size_t i = 0; i < n;) {
            size_t units;
            bool lone;
            NextCodePoint(s, n, i, units, lone);
            if (lone) {
                if (strict) return ERROR_NO_UNICODE_TRANSLATION;
                clean[i] = kReplacement;
            }
            i += units;
        }
        // The zero character stays a zero byte rather than a shifted sequence, so that a
        // terminator is one.
        for (size_t i = 0; i < n;) {
            size_t end = i;
            while (end < n && clean[end]) ++end;
            if (end > i)
                if (DWORD error = EncodeIconv(page, clean.data() + i, end - i, strict, nullptr, sink)) return error;
            if (end < n && !sink.Put('\0')) return ERROR_INSUFFICIENT_BUFFER;
            i = end + 1;
        }
        return 0;
    }
    default:
        return EncodeUnicode(page.kind, s, n, strict, sink);
    }
}

// ---------------------------------------------------------------------------------------------
// Arguments

const ZelCodePage* Resolve(UINT codePage) {
    switch (codePage) {
    case CP_ACP:
    case CP_THREAD_ACP:
        codePage = GetACP();
        break;
    case CP_OEMCP:
        codePage = GetOEMCP();
        break;
    case CP_MACCP:
        codePage = 10000;
        break;
    default:
        break;
    }
    return ZelFindCodePage(codePage);
}

bool IsUnicode(const ZelCodePage& page) { return page.kind != ZelCodePageKind::Iconv; }

bool Overlaps(const void* a, size_t aSize, const void* b, size_t bSize) {
    auto x = reinterpret_cast<uintptr_t>(a);
    auto y = reinterpret_cast<uintptr_t>(b);
    return x < y + bSize && y < x + aSize;
}

int Fail(DWORD error) {
    SetLastError(error);
    return 0;
}

// A code page from the environment: decimal, and one that the conversions know.
UINT CodePageFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || !*value) return 0;
    char* end = nullptr;
    unsigned long number = std::strtoul(value, &end, 10);
    if (*end || number > UINT_MAX || !ZelFindCodePage(static_cast<UINT>(number))) return 0;
    return static_cast<UINT>(number);
}

// The ANSI code page that Windows gives a system of this language.
UINT LanguageAnsiCodePage(LANGID language) {
    switch (PRIMARYLANGID(language)) {
    case LANG_KOREAN:
        return 949;
    case LANG_JAPANESE:
        return 932;
    case LANG_CHINESE:
        switch (SUBLANGID(language)) {
        case 0x01:  // Taiwan
        case 0x03:  // Hong Kong
        case 0x05:  // Macao
            return 950;
        default:  // PRC, Singapore
            return 936;
        }
    default:
        return 1252;
    }
}

}  // namespace

UINT GetACP() {
    if (UINT fromEnvironment = CodePageFromEnvironment("ZEL_ACP")) return fromEnvironment;
    return LanguageAnsiCodePage(LANGIDFROMLCID(GetSystemDefaultLCID()));
}

UINT GetOEMCP() {
    if (UINT fromEnvironment = CodePageFromEnvironment("ZEL_OEMCP")) return fromEnvironment;
    UINT ansi = LanguageAnsiCodePage(LANGIDFROMLCID(GetSystemDefaultLCID()));
    return ansi == 1252 ? 437 : ansi;  // the East Asian systems use one code page for both
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByte, int multiByteCount, LPWSTR wide,
                        int wideCount) {
    if (!multiByte || multiByteCount == 0 || multiByteCount < -1 || wideCount < 0 || (wideCount > 0 && !wide))
        return Fail(ERROR_INVALID_PARAMETER);
    const ZelCodePage* page = Resolve(codePage);
    if (!page) return Fail(ERROR_INVALID_PARAMETER);

    constexpr DWORD known = MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS;
    DWORD allowed = known;
    if (page->kind == ZelCodePageKind::Utf7)
        allowed = 0;
    else if (IsUnicode(*page))
        allowed = MB_ERR_INVALID_CHARS;
    if ((flags & ~allowed) || ((flags & MB_PRECOMPOSED) && (flags & MB_COMPOSITE)))
        return Fail(ERROR_INVALID_FLAGS);

    size_t length;
    if (multiByteCount >= 0) {
        length = static_cast<size_t>(multiByteCount);
    } else if (page->kind == ZelCodePageKind::Utf16LE || page->kind == ZelCodePageKind::Utf16BE ||
               page->kind == ZelCodePageKind::Utf32LE || page->kind == ZelCodePageKind::Utf32BE) {
        // Terminated by a zero unit of the code page's own size.
        size_t unit = (page->kind == ZelCodePageKind::Utf16LE || page->kind == ZelCodePageKind::Utf16BE) ? 2 : 4;
        length = 0;
        for (;; length += unit) {
            size_t k = 0;
            while (k < unit && multiByte[length + k] == 0) ++k;
            if (k == unit) break;
        }
        length += unit;
    } else {
        length = std::strlen(multiByte) + 1;
    }
    if (length > static_cast<size_t>(INT_MAX)) return Fail(ERROR_INVALID_PARAMETER);
    if (wideCount > 0 && Overlaps(multiByte, length, wide, static_cast<size_t>(wideCount) * sizeof(WCHAR)))
        return Fail(ERROR_INVALID_PARAMETER);

    WideSink sink{wideCount > 0 ? wide : nullptr, static_cast<size_t>(wideCount)};
    if (DWORD error = Decode(*page, multiByte, length, (flags & MB_ERR_INVALID_CHARS) != 0, sink))
        return Fail(error);
    if (sink.count > static_cast<size_t>(INT_MAX)) return Fail(ERROR_ARITHMETIC_OVERFLOW);
    return static_cast<int>(sink.count);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR multiByte,
                        int multiByteCount, LPCSTR defaultChar, LPBOOL usedDefaultChar) {
    if (!wide || wideCount == 0 || wideCount < -1 || multiByteCount < 0 || (multiByteCount > 0 && !multiByte))
        return Fail(ERROR_INVALID_PARAMETER);
    const ZelCodePage* page = Resolve(codePage);
    if (!page) return Fail(ERROR_INVALID_PARAMETER);
    // The Unicode forms have no default character: every character has a form.
    if (IsUnicode(*page) && (defaultChar || usedDefaultChar)) return Fail(ERROR_INVALID_PARAMETER);

    constexpr DWORD known = WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR | WC_ERR_INVALID_CHARS |
                            WC_NO_BEST_FIT_CHARS;
    DWORD allowed = known;
    if (page->kind == ZelCodePageKind::Utf7)
        allowed = 0;
    else if (IsUnicode(*page))
        allowed = WC_ERR_INVALID_CHARS;
    if (flags & ~allowed) return Fail(ERROR_INVALID_FLAGS);

    size_t length = wideCount >= 0 ? static_cast<size_t>(wideCount) : wcslen(wide) + 1;
    if (length > static_cast<size_t>(INT_MAX)) return Fail(ERROR_INVALID_PARAMETER);
    if (multiByteCount > 0 &&
        Overlaps(wide, length * sizeof(WCHAR), multiByte, static_cast<size_t>(multiByteCount)))
        return Fail(ERROR_INVALID_PARAMETER);

    DefaultChar fallback{{'?', 0}, 1};
    if (defaultChar) {
        fallback.bytes[0] = defaultChar[0];
        // A lead byte and its trail in a double-byte code page.
        if (page->doubleByte && static_cast<unsigned char>(defaultChar[0]) >= 0x80 && defaultChar[1]) {
            fallback.bytes[1] = defaultChar[1];
            fallback.length = 2;
        }
    }

    ByteSink sink{multiByteCount > 0 ? multiByte : nullptr, static_cast<size_t>(multiByteCount)};
    if (DWORD error = Encode(*page, wide, length, (flags & WC_ERR_INVALID_CHARS) != 0, fallback, sink))
        return Fail(error);
    if (sink.count > static_cast<size_t>(INT_MAX)) return Fail(ERROR_ARITHMETIC_OVERFLOW);
    if (usedDefaultChar) *usedDefaultChar = fallback.used ? TRUE : FALSE;
    return static_cast<int>(sink.count);
}

ZelAnsiArg ZelPlatformAnsiToWide(LPCSTR text) {
    ZelAnsiArg result;
    if (!text) return result;
    result.null = false;
    // No byte of any code page gives more than one 16-bit unit.
    size_t length = std::strlen(text);
    result.text.resize(length + 1);
    int n = MultiByteToWideChar(CP_ACP, 0, text, static_cast<int>(length + 1), result.text.data(),
                                static_cast<int>(length + 1));
    result.text.resize(n > 0 ? static_cast<size_t>(n) - 1 : 0);
    return result;
}

std::string ZelPlatformWideToAnsi(LPCWSTR text) {
    if (!text) return {};
    int length = static_cast<int>(wcslen(text)) + 1;
    int size = WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, length, result.data(), size, nullptr, nullptr);
    result.resize(static_cast<size_t>(size) - 1);
    return result;
}
